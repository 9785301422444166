#pragma once

#include <zorvan/collections/IndexSet.h>

#include <QItemSelectionModel>

namespace zorvan::internal {

/// Whose selection is shown: a view that counts what can be selected from 0.
class SelectionOwner {
public:
    virtual ~SelectionOwner() = default;

    virtual IndexSet selection() const = 0;
    virtual void select(const IndexSet& members) = 0;
    virtual QItemSelection toItems(const IndexSet& members) const = 0;
    virtual IndexSet fromItems(const QItemSelection& items) const = 0;
};

/// Mirrors the selection of a view for a widget. What the person selects goes to the view, and
/// comes back from there.
class ItemSelection : public QItemSelectionModel {
public:
    ItemSelection(QAbstractItemModel& model, SelectionOwner& owner);

    /// Shows the owner's selection; costs the number of its ranges. Only what differs is announced.
    /// The keyboard goes on from what is selected, unless it is the person who selects.
    void mirror();
    /// Before the model changes, so that nothing is carried over that the owner carries itself.
    void forget();

    using QItemSelectionModel::select;
    void select(const QItemSelection& items, SelectionFlags command) override;
    void reset() override;

private:
    void show(const IndexSet& members);
    void pass(const IndexSet& members, SelectionFlags command);

    SelectionOwner& owner_;
    /// What was selected before the range that the person is drawing.
    IndexSet base_;
    /// What the owner has made of the range so far; when it has another selection by now, that is
    /// the base of the next range.
    IndexSet drawn_;
    bool isMirroring_ = false;
    bool isPassing_ = false;
};

} // namespace zorvan::internal
