#include <zorvan/interface/ManagedListViewReloader.h>

namespace zorvan {

namespace {

void reloadRows(const ManagedListViewReloader& reloader, NSTableView& view) {
    using Action = ManagedListEdition::Action;
    const ManagedListEdition& edition = reloader.edition;
    switch (edition.action) {
    case Action::insert:
        if (edition.insertedIndexes) {
            view.beginUpdates();
            view.insertRows(*edition.insertedIndexes, reloader.tableViewAnimation);
            view.endUpdates();
        }
        break;
    case Action::remove:
        if (edition.removedIndexes) {
            view.beginUpdates();
            view.removeRows(*edition.removedIndexes, reloader.tableViewAnimation);
            view.endUpdates();
        }
        break;
    case Action::select:
        break;
    case Action::move:
    case Action::sort:
        view.reloadData({.forRowIndexes = IndexSet(IndexSet::Range{0, view.numberOfRows()}),
                         .columnIndexes = IndexSet(IndexSet::Range{0, view.numberOfColumns()})});
        break;
    case Action::filter:
        view.reloadData();
        break;
    }
}

} // namespace

void ManagedListViewReloader::reload(NSTableView& view) const {
    reloadRows(*this, view);
    if (edition.newSelection && *edition.newSelection != view.selectedRowIndexes())
        view.selectRowIndexes(*edition.newSelection, false);
}

} // namespace zorvan
