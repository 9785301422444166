#pragma once

#include <zorvan/collections/ManagedListEdition.h>
#include <zorvan/interface/NSCollectionView.h>
#include <zorvan/interface/NSTableView.h>

#include <utility>

namespace zorvan {

/// Shows an edition of a managed list in a table view or a collection view.
struct ManagedListViewReloader {
    /// With the animation below.
    explicit ManagedListViewReloader(ManagedListEdition shown) : edition(std::move(shown)) {}

    /// What is shown: the edition of a change that has been made.
    ManagedListEdition edition;
    /// For inserted and removed rows.
    NSTableView::AnimationOptions tableViewAnimation = NSTableView::AnimationOptions::effectFade;

    /// Inserts and removes rows; shows moves and sorts as a reload of every row, and a filter as a
    /// reload of the table. Then gives the table the list's selection, when it has another one.
    void reload(NSTableView& view) const;

    /// The same in section 0 of a collection view, which shows insertions, removals and moves as
    /// such, and a sort or a filter as a reload of its data.
    void reload(NSCollectionView& view) const;
};

} // namespace zorvan
