#pragma once

#include <zorvan/hosts/rows/RowList.h>

#include <QAbstractTableModel>
#include <QItemSelection>
#include <QMimeData>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <utility>

class QItemSelectionModel;

namespace zorvan {

/// What the models of lists have in common, whatever the items: rows that follow their list, and
/// its selection. `QtListModel` is the one to make.
///
/// Every change of the list is told as what it is. Insertions and removals are told as ranges of
/// rows, the last range of a removal first; moves, sorts, reversals and filters as one change of
/// the layout, in which the persistent indexes follow their items, equal ones too, and become
/// invalid when their item is out of sight. So is a removal of more than `maximumRangeCount`
/// ranges, because Qt goes through all that it keeps for each range. The model is never reset,
/// except when somebody throws while a managed list tells of a change to come.
///
/// Slots that are told that rows are about to change must not change the list. Main thread only.
class QtRowModel : public QAbstractTableModel, private RowFollower {
public:
    /// Whether the row is selected, as a truth value that can be set, too; named "selected" in QML.
    static constexpr int selectedRole = Qt::UserRole + 0x53454c;
    /// How many ranges a removal may have that is told as such.
    static constexpr int maximumRangeCount = 64;

    /// Mirrors the selection of the list, both ways, as whole rows; a row is selected when any of
    /// its cells is. Give it to the views: `view->setSelectionModel(model->selectionModel())`. It
    /// stays the model's.
    QItemSelectionModel* selectionModel() const noexcept { return selectionModel_; }

    /// What QML calls the roles; "selected" comes by itself. Before a view is given the model.
    void setRoleNames(QHash<int, QByteArray> names) { roleNames_ = std::move(names); }
    /// What `setRoleNames` was given, else Qt's names; with "selected" in any case.
    QHash<int, QByteArray> roleNames() const override;

    /// Tells the views that items in these rows were changed where they stand; no roles stand for
    /// all of them. Rows outside the list are passed over.
    void itemsDidChange(const IndexSet& rows, const QList<int>& roles = {});

    /// 0 inside of a cell, which holds no rows.
    /// @{
    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : rowCount_;
    }
    int columnCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : columnCount_;
    }
    /// @}
    /// Invalid for a cell that is not there.
    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override {
        const bool isCell = row >= 0 && row < rowCount_ && column >= 0 && column < columnCount_;
        return isCell && !parent.isValid() ? createIndex(row, column) : QModelIndex();
    }
    /// Every row can be dragged, and be dropped between rows.
    Qt::ItemFlags flags(const QModelIndex& index) const override {
        return index.isValid() ? cellFlags : Qt::ItemIsDropEnabled;
    }

    /// Asks the list. False for rows that are not there, while a change is being told, and when the
    /// list has not removed them on return.
    bool removeRows(int row, int count, const QModelIndex& parent = {}) override;
    /// The selection follows the rows, unlike when the list itself is asked to move.
    bool moveRows(const QModelIndex& sourceParent, int row, int count,
                  const QModelIndex& destinationParent, int to) override;

    /// Drag and drop: rows of this very model move, within it; other models are given copies of
    /// what the roles say.
    /// @{
    Qt::DropActions supportedDragActions() const override {
        return Qt::CopyAction | Qt::MoveAction;
    }
    Qt::DropActions supportedDropActions() const override { return Qt::MoveAction; }
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                         const QModelIndex& parent) const override;
    /// @}
    /// Moves the rows. False also when it has: a view takes true for a sign that it is to remove
    /// the rows that were dragged.
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;

protected:
    /// Of every cell, whatever its column.
    static constexpr Qt::ItemFlags cellFlags =
        Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsDragEnabled | Qt::ItemNeverHasChildren;

    /// Fewer than one column stops the program.
    QtRowModel(int columnCount, QObject* parent);

    /// Once, when the list is there. It must outlive the last change that it tells of.
    void show(RowList& rows);
    /// What the rows are to tell of their changes.
    RowFollower& follower() noexcept { return *this; }

    /// Where in the list the item of a row stands; -1 when it is gone from there. While the list
    /// changes, it may lie outside.
    std::int64_t positionOf(int row) const {
        return isCatchingUp_ ? positionWhileCatchingUp(row) : row;
    }
    /// Whether the list has the row selected. Once asked, changes of that are told for
    /// `selectedRole`, too.
    bool isSelected(int row) const {
        isSelectedRoleRead_ = true;
        return rows_->selection().contains(row);
    }
    /// Asks the list, which may refuse; the rest of the selection stays.
    void setSelected(int row, bool isSelected);

private:
    void rowsWillChange(const RowChange& change) override;
    void rowsDidChange(const RowChange& change,
                       const std::function<Reordering()>& reordering) override;
    void rowsWereLost(const RowChange& change) override;

    void tellComing(const RowChange& change);
    void tellRemoval(std::span<const IndexSet::Range> ranges);
    void catchUp(const RowChange& change, const std::function<Reordering()>& reordering);
    void tellEnd(const RowChange& change);
    void movePersistentIndexes(const std::function<Reordering()>& reordering);
    void takeRows();
    std::int64_t positionWhileCatchingUp(int row) const;

    void moveShownSelection(const RowChange& change);
    bool showSelection();
    void takeSelection();

    RowList* rows_ = nullptr;
    int rowCount_ = 0;
    const int columnCount_;
    QHash<int, QByteArray> roleNames_;
    QItemSelectionModel* const selectionModel_;
    /// The rows that were shown as selected.
    IndexSet shownSelection_;
    mutable bool isSelectedRoleRead_ = false;
    /// From the announcement of a change until Qt has been told that it happened.
    bool isChanging_ = false;

    // While Qt is told of one range after the other of what the list does at once, or of what a
    // list has done that could not tell before: where to find the items of the rows that Qt knows
    // of.
    bool isCatchingUp_ = false;
    IndexSet untold_;   // positions in the list that are no rows yet, or not any more
    IndexSet goneRows_; // rows still, whose items are not in the list any more
    std::optional<Reordering> reordering_; // from rows to positions
};

} // namespace zorvan
