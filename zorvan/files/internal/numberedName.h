#pragma once

#include <zorvan/files/internal/pathExtension.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace zorvan::files {

/// "photo (3).jpg" of "photo.jpg" and 3.
inline std::string numberedName(std::string_view name, std::int64_t number) {
    const std::string_view extension = pathExtensionOfName(name);
    const std::string end = extension.empty() ? "" : '.' + std::string(extension);
    name.remove_suffix(end.size());
    return std::string(name) + " (" + std::to_string(number) + ")" + end;
}

} // namespace zorvan::files
