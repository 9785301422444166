#pragma once

#include <string>
#include <string_view>

namespace zorvan::internal {

/// Whether the system would cut a path, and so take another file than the one that is meant.
inline bool hasNUL(std::string_view path) noexcept {
    return path.find('\0') != std::string_view::npos;
}

/// A path for the system; for one that it would cut, that of nothing.
inline const char* systemPath(const std::string& path) noexcept {
    return hasNUL(path) ? "" : path.c_str();
}
const char* systemPath(std::string&&) = delete;

} // namespace zorvan::internal
