#pragma once

#include <zorvan/interface/NSCollectionView.h>
#include <zorvan/interface/internal/RowChange.h>

#include <map>
#include <optional>

namespace zorvan::internal {

/// Where the items of a collection view stand after a batch.
class ItemChange {
public:
    explicit ItemChange(const NSCollectionView::Updates& updates);

    /// Absent for an item that has gone.
    std::optional<IndexPath> place(IndexPath item) const;

private:
    std::map<IndexPath, IndexPath> moved_;
    /// What was neither deleted nor moved, in each section that the batch has changed.
    std::map<std::int64_t, RowChange> kept_;
};

} // namespace zorvan::internal
