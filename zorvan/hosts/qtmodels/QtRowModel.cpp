#include <zorvan/hosts/qtmodels/QtRowModel.h>

#include <zorvan/hosts/qtmodels/internal/rowSelections.h>
#include <zorvan/platform/foundation/fatalError.h>

#include <QItemSelectionModel>
#include <QMimeData>
#include <QPointer>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

namespace zorvan {

namespace {

using internal::rowsOf;
using internal::wholeRows;
using Kind = RowChange::Kind;
using Range = IndexSet::Range;

/// What is dragged: the rows themselves, wherever they go meanwhile.
class DraggedRows : public QMimeData {
public:
    DraggedRows(const QAbstractItemModel* model, const QModelIndexList& indexes)
        : model_(model), rows_(indexes.begin(), indexes.end()) {}

    bool isFrom(const QAbstractItemModel* model) const { return model_ == model; }
    IndexSet rows() const {
        std::vector<std::int64_t> rows;
        for (const QPersistentModelIndex& index : rows_)
            if (index.isValid())
                rows.push_back(index.row());
        return IndexSet::of(rows);
    }

private:
    const QPointer<const QAbstractItemModel> model_;
    const QList<QPersistentModelIndex> rows_;
};

/// The range as Qt's functions take one, the last row included.
struct Rows {
    explicit Rows(Range range)
        : first(static_cast<int>(range.lower)), last(static_cast<int>(range.upper) - 1) {}
    int first, last;
};

/// Whether the change is told to Qt as one of the layout.
bool isLayoutChange(const RowChange& change) {
    const bool isScattered = change.kind == Kind::remove &&
                             std::ssize(change.rows.ranges()) > QtRowModel::maximumRangeCount;
    return change.kind == Kind::reorder || isScattered;
}

} // namespace

QtRowModel::QtRowModel(int columnCount, QObject* parent)
    : QAbstractTableModel(parent), columnCount_(columnCount),
      selectionModel_(new QItemSelectionModel(this, this)) {
    if (columnCount < 1)
        fatalError("A model of rows has at least one column.");
    connect(selectionModel_, &QItemSelectionModel::selectionChanged, this,
            [this] { takeSelection(); });
}

void QtRowModel::show(RowList& rows) {
    rows_ = &rows;
    takeRows();
    showSelection();
}

/// From now on the rows are those of the list.
void QtRowModel::takeRows() {
    isCatchingUp_ = false;
    untold_.removeAll();
    goneRows_.removeAll();
    reordering_.reset();
    if (rows_->count() > std::numeric_limits<int>::max())
        fatalError("A model of Qt has at most 2147483647 rows.");
    rowCount_ = static_cast<int>(rows_->count());
}

QHash<int, QByteArray> QtRowModel::roleNames() const {
    QHash<int, QByteArray> names =
        roleNames_.isEmpty() ? QAbstractTableModel::roleNames() : roleNames_;
    if (!names.contains(selectedRole))
        names.insert(selectedRole, "selected");
    return names;
}

// Following the list.

void QtRowModel::rowsWillChange(const RowChange& change) {
    isChanging_ = true;
    tellComing(change);
}

void QtRowModel::rowsDidChange(const RowChange& change,
                               const std::function<Reordering()>& reordering) {
    const bool isLayout = isLayoutChange(change);
    const bool hadCurrent = selectionModel_->currentIndex().isValid();
    const std::int64_t selectedBefore = shownSelection_.count();
    if (!std::exchange(isChanging_, true))
        catchUp(change, reordering);
    takeRows();
    if (isLayout)
        movePersistentIndexes(reordering);
    moveShownSelection(change);
    isChanging_ = false;
    tellEnd(change);
    const bool isSelectionTold = showSelection();
    if (!isLayout)
        return;
    // What goes out of sight takes its selection and the current index along, without a word of Qt.
    if (!isSelectionTold && rows_->selection().count() != selectedBefore)
        emit selectionModel_->selectionChanged({}, {});
    if (hadCurrent && !selectionModel_->currentIndex().isValid()) {
        emit selectionModel_->currentChanged({}, {});
        emit selectionModel_->currentRowChanged({}, {});
        emit selectionModel_->currentColumnChanged({}, {});
    }
}

/// Qt waits for the end of what has begun: it is told of it as if it had happened, and then that
/// anything may have.
void QtRowModel::rowsWereLost(const RowChange& change) {
    isCatchingUp_ = true;
    if (isLayoutChange(change))
        movePersistentIndexes([] { return Reordering::removingAll(); });
    else if (change.kind == Kind::insert) {
        goneRows_ = rows_->count() == rowCount_ ? change.rows : IndexSet();
        rowCount_ += static_cast<int>(change.rows.count());
    } else {
        rowCount_ -= static_cast<int>(change.rows.ranges().front().count());
        untold_ = rows_->count() == rowCount_ ? IndexSet() : change.rows;
    }
    tellEnd(change);
    beginResetModel();
    takeRows();
    endResetModel();
    isChanging_ = false;
    showSelection();
}

/// All that Qt is told before the rows change.
void QtRowModel::tellComing(const RowChange& change) {
    if (isLayoutChange(change)) {
        emit layoutAboutToBeChanged();
    } else if (change.kind == Kind::insert) {
        const Rows rows(change.rows.ranges().front());
        beginInsertRows({}, rows.first, rows.last);
    } else if (change.kind == Kind::remove) {
        tellRemoval(change.rows.ranges());
    }
}

/// The last range first, so that the others keep their numbers. The last word about the first range
/// is left for when the list has changed.
void QtRowModel::tellRemoval(std::span<const Range> ranges) {
    for (std::size_t i = ranges.size() - 1; i > 0; --i) {
        const Rows rows(ranges[i]);
        beginRemoveRows({}, rows.first, rows.last);
        isCatchingUp_ = true;
        if (goneRows_.isEmpty())
            untold_.insert(ranges[i]);
        else
            goneRows_.remove(ranges[i]);
        rowCount_ -= static_cast<int>(ranges[i].count());
        endRemoveRows();
    }
    const Rows rows(ranges.front());
    beginRemoveRows({}, rows.first, rows.last);
}

/// Tells what should have been told before the list changed.
void QtRowModel::catchUp(const RowChange& change, const std::function<Reordering()>& reordering) {
    isCatchingUp_ = true;
    if (isLayoutChange(change))
        reordering_ = reordering();
    else if (change.kind == Kind::insert)
        untold_ = change.rows;
    else if (change.kind == Kind::remove)
        goneRows_ = change.rows;
    tellComing(change);
}

std::int64_t QtRowModel::positionWhileCatchingUp(int row) const {
    if (reordering_)
        return reordering_->newPosition(row).value_or(-1);
    if (goneRows_.contains(row))
        return -1;
    std::int64_t position = row - goneRows_.count(Range{0, row});
    for (const Range range : untold_.ranges())
        if (range.lower <= position)
            position += range.count();
    return position;
}

void QtRowModel::tellEnd(const RowChange& change) {
    if (isLayoutChange(change))
        emit layoutChanged();
    else if (change.kind == Kind::insert)
        endInsertRows();
    else if (change.kind == Kind::remove)
        endRemoveRows();
    else if (change.kind == Kind::replace)
        itemsDidChange(change.rows);
}

void QtRowModel::movePersistentIndexes(const std::function<Reordering()>& reordering) {
    const QModelIndexList from = persistentIndexList();
    if (from.isEmpty())
        return;
    const Reordering places = reordering();
    QModelIndexList to;
    to.reserve(from.size());
    for (const QModelIndex& index : from) {
        const std::optional<std::int64_t> row = places.newPosition(index.row());
        to.append(row ? createIndex(static_cast<int>(*row), index.column()) : QModelIndex());
    }
    changePersistentIndexList(from, to);
}

void QtRowModel::itemsDidChange(const IndexSet& rows, const QList<int>& roles) {
    const IndexSet there = rows.intersection(IndexSet(Range{0, rowCount_}));
    for (const Range range : there.ranges()) {
        const Rows changed(range);
        emit dataChanged(index(changed.first, 0), index(changed.last, columnCount_ - 1), roles);
    }
}

// The selection.

/// To where the rows stand now that were shown as selected.
void QtRowModel::moveShownSelection(const RowChange& change) {
    if (isLayoutChange(change)) // after which everything is read again
        shownSelection_ = rows_->selection();
    else if (change.kind == Kind::insert)
        shownSelection_.shift(*change.rows.first(), change.rows.count());
    else if (change.kind == Kind::remove)
        shownSelection_ = shownSelection_.afterRemoving(change.rows);
}

/// Shows what the list has selected; whether the selection model had something to tell.
bool QtRowModel::showSelection() {
    const IndexSet selection = rows_->selection();
    const bool isOther = rowsOf(selectionModel_->selection()) != selection;
    if (isOther)
        selectionModel_->select(wholeRows(*this, selection), QItemSelectionModel::ClearAndSelect);
    const IndexSet changed =
        std::exchange(shownSelection_, selection).symmetricDifference(selection);
    if (isSelectedRoleRead_ && !changed.isEmpty())
        itemsDidChange(IndexSet({.i1 = *changed.first(), .i2 = *changed.last()}), {selectedRole});
    return isOther;
}

/// What was selected in a view.
void QtRowModel::takeSelection() {
    // In the middle of a change Qt's selection has rows that are no positions of the list.
    if (isChanging_)
        return;
    const IndexSet selection = rowsOf(selectionModel_->selection());
    rows_->select(selection);
    if (rows_->selection() != selection) // the list may refuse
        showSelection();
}

void QtRowModel::setSelected(int row, bool isSelected) {
    const IndexSet& selection = rows_->selection();
    rows_->select(isSelected ? selection.union_({row}) : selection.subtracting({row}));
}

// What views ask for.

bool QtRowModel::removeRows(int row, int count, const QModelIndex& parent) {
    if (isChanging_ || parent.isValid() || row < 0 || count < 1 || count > rowCount_ - row)
        return false;
    const int before = rowCount_;
    rows_->remove(IndexSet({.loc = row, .len = count}));
    return rowCount_ == before - count;
}

bool QtRowModel::moveRows(const QModelIndex& sourceParent, int row, int count,
                          const QModelIndex& destinationParent, int to) {
    const bool isInside = row >= 0 && count >= 1 && count <= rowCount_ - row;
    const bool isElsewhere = to >= 0 && to <= rowCount_ && (to < row || to > row + count);
    if (isChanging_ || sourceParent.isValid() || destinationParent.isValid() || !isInside ||
        !isElsewhere)
        return false;
    const IndexSet rows({.loc = row, .len = count});
    const IndexSet selection = rows_->selection().afterMoving(rows, to);
    rows_->move(rows, to);
    rows_->select(selection);
    return true;
}

QMimeData* QtRowModel::mimeData(const QModelIndexList& indexes) const {
    const std::unique_ptr<QMimeData> values(QAbstractTableModel::mimeData(indexes));
    if (!values)
        return nullptr;
    auto* dragged = new DraggedRows(this, indexes);
    for (const QString& format : values->formats())
        dragged->setData(format, values->data(format));
    return dragged;
}

bool QtRowModel::canDropMimeData(const QMimeData* data, Qt::DropAction action, int, int,
                                 const QModelIndex&) const {
    const auto* dragged = dynamic_cast<const DraggedRows*>(data);
    return action == Qt::MoveAction && dragged && dragged->isFrom(this);
}

bool QtRowModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                              const QModelIndex& parent) {
    if (isChanging_ || !canDropMimeData(data, action, row, column, parent))
        return false;
    const int place = parent.isValid() ? parent.row() : row;
    const int to = place < 0 || place > rowCount_ ? rowCount_ : place;
    rows_->move(static_cast<const DraggedRows*>(data)->rows(), to);
    return false;
}

} // namespace zorvan
