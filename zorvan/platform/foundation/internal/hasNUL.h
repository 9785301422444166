#pragma once

#include <string_view>

namespace zorvan::internal {

/// Whether the system would cut a path, and so take another file than the one that is meant.
inline bool hasNUL(std::string_view path) noexcept {
    return path.find('\0') != std::string_view::npos;
}

} // namespace zorvan::internal
