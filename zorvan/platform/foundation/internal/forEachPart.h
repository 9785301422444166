#pragma once

#include <algorithm>
#include <string_view>

namespace zorvan::internal {

/// Calls `visit` with each part of `text` between `separator`s, empty ones left out.
template <class Visit>
void forEachPart(std::string_view text, char separator, Visit visit) {
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(separator), text.size());
        if (end > 0)
            visit(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

} // namespace zorvan::internal
