#include <zorvan/hosts/internal/TableWidget.h>

#include <zorvan/hosts/internal/CellDelegate.h>
#include <zorvan/hosts/internal/viewGeometry.h>
#include <zorvan/interface/NSTableViewObserver.h>

namespace zorvan::internal {

class TableWidget::RowMirror : public Mirror<TableWidget, NSTableViewObserver> {
public:
    using Mirror::Mirror;

    void updatesDidBegin() override {
        if (own())
            ++own()->updateDepth_;
        if (own())
            own()->model_.setReading(false);
    }
    void updatesDidEnd() override {
        // The widget may have come in the middle of the updates.
        if (!own() || (own()->updateDepth_ = std::max(own()->updateDepth_ - 1, 0)) > 0)
            return;
        own()->model_.setReading(true);
        own()->applyChanges();
    }
    void rowsInserted(const IndexSet& at, NSTableView::AnimationOptions) override {
        change(RowChange::inserting(at));
    }
    void rowsRemoved(const IndexSet& at, NSTableView::AnimationOptions) override {
        change(RowChange::removing(at));
    }
    void rowMoved(std::int64_t from, std::int64_t to) override {
        change(RowChange::moving({from}, to > from ? to + 1 : to));
    }
    void rowsMoved(const IndexSet& from, std::int64_t to) override {
        change(RowChange::moving(from, to));
    }
    void cellsReloaded(const IndexSet& rows, const IndexSet& columns) override {
        if (!own())
            return;
        own()->model_.reloadCells(rows, columns);
        own()->showCellsLater();
    }
    void reloaded() override {
        if (own())
            own()->reload();
    }
    void rowHeightsDidChange(const IndexSet& rows) override {
        if (own())
            own()->followHeights(rows);
    }
    void selectionDidChange() override {
        if (own() && own()->changes_.empty())
            own()->selectionMirror().mirror();
    }
    void scrolledTo(std::int64_t row) override {
        if (own() && own()->changes_.empty())
            own()->scrollTo(own()->model_.index(static_cast<int>(row), 0));
    }

private:
    void change(RowChange change) {
        if (own())
            own()->change(std::move(change));
    }
};

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
    adopt(model_);
    const auto mirror = std::make_shared<RowMirror>(table, *this);
    ViewMirror::attach(mirror);
    table->addObserver(std::static_pointer_cast<NSTableViewObserver>(mirror));
    followColumns();
    followHeights(IndexSet(IndexSet::Range{0, model_.rowCount()}));
    selectionMirror().mirror();
}

// Rows

void TableWidget::change(RowChange change) {
    changes_.push_back(std::move(change));
    if (updateDepth_ == 0)
        applyChanges();
}

void TableWidget::applyChanges() {
    if (changes_.empty())
        return selectionMirror().mirror();
    selectionMirror().forget();
    const std::vector<RowChange> changes = std::exchange(changes_, {});
    model_.change(changes, table_->numberOfRows());
    if (table_->delegate())
        followHeights(IndexSet(IndexSet::Range{0, model_.rowCount()}));
    selectionMirror().mirror();
    showCellsLater();
}

void TableWidget::reload() {
    changes_.clear();
    const int top = verticalScrollBar()->value();
    const QModelIndex current = currentIndex();
    model_.reset(table_->numberOfRows());
    followHeights(IndexSet(IndexSet::Range{0, model_.rowCount()}));
    if (const QModelIndex same = model_.index(current.row(), current.column()); same.isValid())
        selectionModel()->setCurrentIndex(same, QItemSelectionModel::NoUpdate);
    selectionMirror().mirror();
    verticalScrollBar()->setValue(top);
    showCellsLater();
}

void TableWidget::followHeights(const IndexSet& ofRows) {
    QHeaderView& header = *verticalHeader();
    if (const int height = wholeLength(table_->rowHeight()); height != header.defaultSectionSize())
        header.setDefaultSectionSize(height);
    // Sections keep their sizes also when there is no one any more who gave them.
    const bool hadOwnHeights = std::exchange(hasOwnHeights_, table_->delegate() != nullptr);
    if (!hasOwnHeights_ && !hadOwnHeights)
        return;
    for (const std::int64_t row :
         ofRows.intersection(IndexSet(IndexSet::Range{0, model_.rowCount()}))) {
        const int height = wholeLength(askSafely([&] { return table_->heightOfRow(row); }));
        if (header.sectionSize(static_cast<int>(row)) != height)
            header.resizeSection(static_cast<int>(row), height);
    }
}

// What the person does

QItemSelection TableWidget::toItems(const IndexSet& rows) const {
    QItemSelection items;
    const int last = model_.columnCount() - 1;
    for (const IndexSet::Range range : rows.ranges())
        if (last >= 0 && range.lower < model_.rowCount())
            items.push_back(QItemSelectionRange(
                model_.index(static_cast<int>(range.lower), 0),
                model_.index(
                    static_cast<int>(std::min<std::int64_t>(range.upper, model_.rowCount())) - 1,
                    last)));
    return items;
}

IndexSet TableWidget::fromItems(const QItemSelection& items) const { return rowsOf(items); }

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

bool TableWidget::acceptsDrop(const std::vector<URL>& urls) const {
    const auto source = table_->dataSource();
    return source && askSafely([&] { return source->acceptsDrop(*table_, urls); });
}

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
    const IndexSet rows = model_.movable(selection());
    const auto source = table_->dataSource();
    if (source && !rows.isEmpty())
        source->rowsDragged(*table_, rows, dropRow(at));
}

void TableWidget::urlsDropped(const std::vector<URL>& urls, QPoint at) {
    if (const auto source = table_->dataSource())
        source->urlsDropped(*table_, urls, dropRow(at));
}

// Cells

std::vector<QModelIndex> TableWidget::indexesInSight() const {
    std::vector<QModelIndex> indexes;
    const int first = rowAt(0), end = model_.rowCount();
    const int bottom = viewport()->height();
    if (first < 0 || !table_->delegate())
        return indexes;
    for (int row = first; row < end && rowViewportPosition(row) < bottom; ++row)
        for (int column = 0; column < model_.columnCount(); ++column)
            indexes.push_back(model_.index(row, column));
    return indexes;
}

} // namespace zorvan::internal
