#pragma once

#include <zorvan/platform/foundation/internal/UTF8.h>

#include <algorithm>
#include <cstddef>
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

/// "photo (3).jpg" of "photo.jpg" and 3. With a longest size in bytes, the title loses as many
/// characters at its end as it takes; the number and the extension stay.
inline std::string numberedName(std::string_view name, std::int64_t number,
                                std::size_t longest = std::string_view::npos) {
    const std::string_view extension = pathExtensionOfName(name);
    std::string end = " (" + std::to_string(number) + ")";
    if (!extension.empty()) {
        name.remove_suffix(extension.size() + 1);
        end.append(".").append(extension);
    }
    const std::size_t room = longest - std::min(longest, end.size());
    return std::string(name.substr(0, internal::utf8PrefixLength(name, room))) + end;
}

} // namespace zorvan::files
