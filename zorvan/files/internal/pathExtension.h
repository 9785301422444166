#pragma once

#include <string_view>

namespace zorvan::files {

/// The extension of a file name, by the rule of `URL::pathExtension()`, without making a URL.
inline std::string_view pathExtensionOfName(std::string_view name) noexcept {
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0 || name.find_first_not_of('.') > dot)
        return {};
    return name.substr(dot + 1);
}

} // namespace zorvan::files
