#include <zorvan/hosts/internal/ItemSelection.h>

#include <QScopedValueRollback>
#include <QSignalBlocker>

namespace zorvan::internal {

ItemSelection::ItemSelection(QAbstractItemModel& model, SelectionOwner& owner)
    : QItemSelectionModel(&model), owner_(owner) {}

void ItemSelection::mirror() {
    const IndexSet wanted = owner_.selection();
    const IndexSet shown = owner_.fromItems(selection());
    if (wanted == shown)
        return;
    show(wanted);
    emit selectionChanged(owner_.toItems(wanted.subtracting(shown)),
                          owner_.toItems(shown.subtracting(wanted)));
    const IndexSet current = owner_.fromItems(QItemSelection(currentIndex(), currentIndex()));
    if (!isPassing_ && !wanted.isEmpty() && !wanted.contains(current))
        setCurrentIndex(owner_.toItems({*wanted.first()}).value(0).topLeft(), NoUpdate);
}

void ItemSelection::forget() { show({}); }

/// By way of no selection: Qt compares each old range with each new one.
void ItemSelection::show(const IndexSet& members) {
    const QSignalBlocker blocker(this);
    const QScopedValueRollback guard(isMirroring_, true);
    QItemSelectionModel::select(QItemSelection(), Clear);
    if (!members.isEmpty())
        QItemSelectionModel::select(owner_.toItems(members), Select);
}

void ItemSelection::select(const QItemSelection& items, SelectionFlags command) {
    if (isMirroring_)
        return QItemSelectionModel::select(items, command);
    if (command == NoUpdate)
        return;
    const bool goesOn = (command & Current) && owner_.selection() == drawn_;
    if (!goesOn)
        base_ = owner_.selection();
    if (command & Clear)
        base_.removeAll();
    const QScopedValueRollback guard(isPassing_, true);
    pass(owner_.fromItems(items), command);
    drawn_ = owner_.selection();
}

void ItemSelection::pass(const IndexSet& members, SelectionFlags command) {
    if (command & Select)
        owner_.select(base_.union_(members));
    else if (command & Deselect)
        owner_.select(base_.subtracting(members));
    else if (command & Toggle)
        owner_.select(base_.symmetricDifference(members));
    else
        owner_.select(base_);
}

void ItemSelection::reset() {
    const QScopedValueRollback guard(isMirroring_, true);
    QItemSelectionModel::reset();
}

} // namespace zorvan::internal
