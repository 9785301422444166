#pragma once

#include <zorvan/collections/ManagedListEdition.h>
#include <zorvan/interface/NSTableView.h>

#include <utility>

namespace zorvan {

/// Shows an edition of a managed list in a table view.
struct ManagedListViewReloader {
    explicit ManagedListViewReloader(ManagedListEdition shown) : edition(std::move(shown)) {}

    ManagedListEdition edition;
    /// For inserted and removed rows.
    NSTableView::AnimationOptions tableViewAnimation = NSTableView::AnimationOptions::effectFade;

    /// Inserts and removes rows; shows moves and sorts as a reload of every row, and a filter as a
    /// reload of the table. Then gives the table the list's selection, when it has another one.
    void reload(NSTableView& view) const;
};

} // namespace zorvan
