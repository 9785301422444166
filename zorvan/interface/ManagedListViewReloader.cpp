#include <zorvan/interface/ManagedListViewReloader.h>

#include <zorvan/interface/internal/updateRows.h>

namespace zorvan {

namespace {

void reloadRows(const ManagedListViewReloader& reloader, NSTableView& view) {
    using Action = ManagedListEdition::Action;
    const ManagedListEdition& edition = reloader.edition;
    switch (edition.action) {
    case Action::insert:
        if (edition.insertedIndexes)
            internal::updateRows(view, [&] {
                view.insertRows(*edition.insertedIndexes, reloader.tableViewAnimation);
            });
        break;
    case Action::remove:
        if (edition.removedIndexes)
            view.reloadEditedData(SelectableArrayEdition::Remove{*edition.removedIndexes},
                                  reloader.tableViewAnimation);
        break;
    case Action::select:
        break;
    case Action::move:
    case Action::sort:
        view.reloadData(NSTableView::Rows{IndexSet(IndexSet::Range{0, view.numberOfRows()})});
        break;
    case Action::filter:
        view.reloadData();
        break;
    }
}

void reloadItems(const ManagedListEdition& edition, NSCollectionView& view) {
    using Action = ManagedListEdition::Action;
    const auto paths = [](const std::optional<IndexSet>& positions) {
        return positions.value_or(IndexSet()).mapToIndexPaths();
    };
    switch (edition.action) {
    case Action::insert:
        view.animator().performBatchUpdates(
            [&] { view.insertItems(paths(edition.insertedIndexes)); });
        break;
    case Action::remove:
        view.animator().performBatchUpdates(
            [&] { view.deleteItems(paths(edition.removedIndexes)); });
        break;
    case Action::select:
        break;
    case Action::move:
        view.animator().performBatchUpdates([&] {
            const auto from = paths(edition.movedFromIndexes), to = paths(edition.movedToIndexes);
            for (auto origin = from.begin(), place = to.begin();
                 origin != from.end() && place != to.end(); ++origin, ++place)
                view.moveItem(*origin, *place);
        });
        break;
    case Action::sort:
    case Action::filter:
        view.reloadData();
        break;
    }
}

} // namespace

void ManagedListViewReloader::reload(NSTableView& view) const {
    // Whoever is told of the selection may let the view go.
    const auto keptAlive = view.weak_from_this().lock();
    reloadRows(*this, view);
    if (edition.newSelection && *edition.newSelection != view.selectedRowIndexes())
        view.selectRowIndexes(*edition.newSelection, false);
}

void ManagedListViewReloader::reload(NSCollectionView& view) const {
    const auto keptAlive = view.weak_from_this().lock();
    reloadItems(edition, view);
    if (edition.newSelection)
        view.setSelectionIndexPaths(edition.newSelection->mapToIndexPaths());
}

} // namespace zorvan
