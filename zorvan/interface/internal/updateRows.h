#pragma once

#include <zorvan/interface/NSTableView.h>

#include <cstdint>

namespace zorvan::internal {

/// Makes the change within updates of the table, which end also when something throws.
template <class Change>
void updateRows(NSTableView& table, const Change& change) {
    const std::int64_t depth = table.updateDepth_;
    try {
        table.beginUpdates();
        change();
        table.endUpdates();
    } catch (...) {
        table.abandonUpdates(depth);
        throw;
    }
}

} // namespace zorvan::internal
