#include <zorvan/hosts/internal/TableWidget.h>

#include <zorvan/hosts/internal/CellDelegate.h>
#include <zorvan/hosts/internal/viewGeometry.h>

namespace zorvan::internal {

TableWidget::TableWidget(const std::shared_ptr<NSTableView>& table, QWidget* parent)
    : HostedTable(table, parent) {
    setItemDelegate(new CellDelegate(this));
    setSelectionBehavior(SelectRows);
    setShowGrid(false);
    setAlternatingRowColors(true);
    setWordWrap(false);
    setCornerButtonEnabled(false);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setMinimumSectionSize(0);
    verticalHeader()->setDefaultSectionSize(wholeLength(table->rowHeight()));
    begin<NSTableViewObserver>(*this);
    followColumns();
    followHeights(allRows());
    selectionMirror().mirror();
}

// Following the table

void TableWidget::updatesDidBegin() {
    ++updateDepth_;
    model_.setReading(false);
}

void TableWidget::updatesDidEnd() {
    // The widget may have come in the middle of the updates.
    updateDepth_ = std::max(updateDepth_ - 1, 0);
    if (updateDepth_ > 0)
        return;
    model_.setReading(true);
    applyChanges();
}

void TableWidget::rowsInserted(const IndexSet& at, NSTableView::AnimationOptions) {
    change(RowChange::inserting(at));
}

void TableWidget::rowsRemoved(const IndexSet& at, NSTableView::AnimationOptions) {
    change(RowChange::removing(at));
}

void TableWidget::rowMoved(std::int64_t from, std::int64_t to) {
    change(RowChange::moving({from}, to > from ? to + 1 : to));
}

void TableWidget::rowsMoved(const IndexSet& from, std::int64_t to) {
    change(RowChange::moving(from, to));
}

void TableWidget::cellsReloaded(const IndexSet& rows, const IndexSet& columns) {
    model_.reloadCells(rows, columns);
    showCellsLater();
}

void TableWidget::selectionDidChange() {
    if (changes_.empty())
        selectionMirror().mirror();
}

void TableWidget::scrolledTo(std::int64_t row) {
    wantedRow_ = row;
    if (changes_.empty())
        scrollToWantedRow();
}

void TableWidget::scrollToWantedRow() {
    const QModelIndex wanted = model_.indexOfRow(std::exchange(wantedRow_, -1));
    if (!wanted.isValid())
        return;
    updateGeometries(); // rows may have come that the scroll bar does not count yet
    scrollTo(wanted);
}

void TableWidget::change(RowChange change) {
    wantedRow_ = wantedRow_ < 0 ? -1 : change.place(wantedRow_);
    changes_.push_back(std::move(change));
    if (updateDepth_ == 0)
        applyChanges();
}

void TableWidget::applyChanges() {
    if (changes_.empty())
        return selectionMirror().mirror();
    selectionMirror().forget();
    const std::vector<RowChange> changes = std::exchange(changes_, {});
    model_.change(changes, view_->numberOfRows());
    if (view_->delegate())
        followHeights(allRows());
    selectionMirror().mirror();
    scrollToWantedRow();
    showCellsLater();
}

void TableWidget::reloaded() {
    changes_.clear();
    wantedRow_ = -1;
    const int top = verticalScrollBar()->value();
    const QModelIndex current = currentIndex();
    model_.reset(view_->numberOfRows());
    followHeights(allRows());
    if (const QModelIndex same = model_.index(current.row(), current.column()); same.isValid())
        selectionModel()->setCurrentIndex(same, QItemSelectionModel::NoUpdate);
    selectionMirror().mirror();
    verticalScrollBar()->setValue(top);
    showCellsLater();
}

void TableWidget::followHeights(const IndexSet& ofRows) {
    QHeaderView& header = *verticalHeader();
    if (const int height = wholeLength(view_->rowHeight()); height != header.defaultSectionSize())
        header.setDefaultSectionSize(height);
    // Sections keep their sizes also when there is no one any more who gave them.
    const bool hadOwnHeights = std::exchange(hasOwnHeights_, view_->delegate() != nullptr);
    if (!hasOwnHeights_ && !hadOwnHeights)
        return;
    header.setUpdatesEnabled(false); // else each row draws those below it anew
    for (const std::int64_t row : ofRows.intersection(allRows())) {
        const int height = wholeLength(askSafely([&] { return view_->heightOfRow(row); }));
        if (header.sectionSize(static_cast<int>(row)) != height)
            header.resizeSection(static_cast<int>(row), height);
    }
    header.setUpdatesEnabled(true);
}

// What the person does

void TableWidget::keyboardSearch(const QString& text) {
    const QModelIndex current = currentIndex();
    if (current.column() > 0)
        selectionModel()->setCurrentIndex(current.siblingAtColumn(0),
                                          QItemSelectionModel::NoUpdate);
    HostedTable::keyboardSearch(text);
}

QModelIndex TableWidget::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
    if (action != MoveHome && action != MoveEnd)
        return HostedTable::moveCursor(action, modifiers);
    return model_.index(action == MoveHome ? 0 : model_.rowCount() - 1,
                        std::max(currentIndex().column(), 0));
}

// Dragging

int TableWidget::dropRow(QPoint at) const {
    const int row = rowAt(at.y());
    if (row < 0)
        return model_.rowCount();
    return at.y() < rowViewportPosition(row) + rowHeight(row) / 2 ? row : row + 1;
}

QRect TableWidget::dropMark(QPoint at) const {
    const int row = dropRow(at), last = model_.rowCount() - 1;
    const int y =
        row > last ? rowViewportPosition(last) + rowHeight(last) : rowViewportPosition(row);
    return {0, std::max(y, 1), viewport()->width(), 0};
}

void TableWidget::selectionDropped(QPoint at) {
    IndexSet rows;
    for (const QModelIndex& index : movableSelection())
        rows.insert(index.row());
    const auto source = view_->dataSource();
    if (source && !rows.isEmpty())
        source->rowsDragged(*view_, rows, dropRow(at));
}

void TableWidget::urlsDropped(const std::vector<URL>& urls, QPoint at) {
    if (const auto source = view_->dataSource())
        source->urlsDropped(*view_, urls, dropRow(at));
}

// Cells

std::vector<QModelIndex> TableWidget::indexesInSight() const {
    std::vector<QModelIndex> indexes;
    const int first = rowAt(0), end = model_.rowCount();
    const int bottom = viewport()->height();
    if (first < 0 || !view_->delegate())
        return indexes;
    for (int row = first; row < end && rowViewportPosition(row) < bottom; ++row)
        for (int column = 0; column < model_.columnCount(); ++column)
            indexes.push_back(model_.index(row, column));
    return indexes;
}

} // namespace zorvan::internal
