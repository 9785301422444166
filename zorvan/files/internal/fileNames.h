#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zorvan::files {

/// Whether a folder can hold an item of that name.
inline bool isFileName(std::string_view name) noexcept {
    return !name.empty() && name != "." && name != ".." &&
           name.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos;
}

/// The extension of a file name, by the rule of `URL::pathExtension()`, without making a URL.
inline std::string_view pathExtensionOfName(std::string_view name) noexcept {
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0 || name.find_first_not_of('.') > dot)
        return {};
    return name.substr(dot + 1);
}

/// "photo (3).jpg" of "photo.jpg" and 3.
inline std::string numberedName(std::string_view name, std::int64_t number) {
    const std::string_view extension = pathExtensionOfName(name);
    const std::string end = extension.empty() ? "" : '.' + std::string(extension);
    name.remove_suffix(end.size());
    return std::string(name) + " (" + std::to_string(number) + ")" + end;
}

} // namespace zorvan::files
