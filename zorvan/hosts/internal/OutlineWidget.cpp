#include <zorvan/hosts/internal/OutlineWidget.h>

#include <zorvan/hosts/internal/CellDelegate.h>
#include <zorvan/hosts/internal/viewGeometry.h>
#include <zorvan/interface/NSOutlineViewObserver.h>

namespace zorvan::internal {

class OutlineWidget::RowMirror : public Mirror<OutlineWidget, NSOutlineViewObserver> {
public:
    using Mirror::Mirror;

    void itemExpanded(const NSOutlineView::Item&, bool) override {
        if (own())
            own()->followExpansion();
    }
    void itemCollapsed(const NSOutlineView::Item&) override {
        if (own())
            own()->followExpansion();
    }
    void reloaded() override { reload(); }
    // Rows of an outline are its data source's: changed by themselves they are read anew.
    void rowsInserted(const IndexSet&, NSTableView::AnimationOptions) override { reload(); }
    void rowsRemoved(const IndexSet&, NSTableView::AnimationOptions) override { reload(); }
    void rowsMoved(const IndexSet&, std::int64_t) override { reload(); }
    void rowMoved(std::int64_t, std::int64_t) override { reload(); }
    void cellsReloaded(const IndexSet&, const IndexSet&) override {
        if (!own())
            return;
        own()->viewport()->update();
        own()->showCellsLater();
    }
    void rowHeightsDidChange(const IndexSet&) override {
        if (own())
            own()->scheduleDelayedItemsLayout();
    }
    void selectionDidChange() override {
        if (own())
            own()->selectionMirror().mirror();
    }
    void scrolledTo(std::int64_t row) override {
        if (own())
            own()->scrollTo(own()->model_.indexOfRow(row));
    }

private:
    void reload() {
        if (own())
            own()->reload();
    }
};

/// Rows are as high as the outline says.
class OutlineWidget::Delegate : public CellDelegate {
public:
    explicit Delegate(OutlineWidget& widget) : CellDelegate(&widget), widget_(widget) {}

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        const NSOutlineView& outline = *widget_.table_;
        const double height = askSafely([&] {
            return outline.delegate() ? outline.heightOfRow(widget_.model_.rowOf(index))
                                      : outline.rowHeight();
        });
        return {CellDelegate::sizeHint(option, index).width(), wholeLength(height)};
    }

private:
    const OutlineWidget& widget_;
};

OutlineWidget::OutlineWidget(const std::shared_ptr<NSOutlineView>& outline, QWidget* parent)
    : HostedTable(outline, parent) {
    setItemDelegate(new Delegate(*this));
    setExpandsOnDoubleClick(false); // it opens
    adopt(model_);
    const auto tell = [this](const QModelIndex& index, bool isExpanded) {
        if (isExpanding_)
            return;
        table_->setExpanded(isExpanded, model_.item(index));
        followExpansion(); // the outline may know better
    };
    connect(this, &QTreeView::expanded, this,
            [tell](const QModelIndex& index) noexcept { tell(index, true); });
    connect(this, &QTreeView::collapsed, this,
            [tell](const QModelIndex& index) noexcept { tell(index, false); });
    const auto mirror = std::make_shared<RowMirror>(outline, *this);
    ViewMirror::attach(mirror);
    outline->addObserver(std::static_pointer_cast<NSOutlineViewObserver>(mirror));
    followColumns();
    followExpansion();
}

void OutlineWidget::reload() {
    const int top = verticalScrollBar()->value();
    const auto current = model_.item(currentIndex());
    model_.reset();
    followExpansion();
    if (const QModelIndex same = model_.indexOfRow(current ? table_->row(current) : -1);
        same.isValid())
        selectionModel()->setCurrentIndex(same, QItemSelectionModel::NoUpdate);
    verticalScrollBar()->setValue(top);
}

void OutlineWidget::followExpansion() {
    const QScopedValueRollback guard(isExpanding_, true);
    model_.followRows();
    for (std::int64_t row = 0; row < model_.rowCountOfOutline(); ++row) {
        const QModelIndex index = model_.indexOfRow(row);
        const bool isOpen = table_->isItemExpanded(model_.item(index));
        if (isExpanded(index) != isOpen)
            setExpanded(index, isOpen);
    }
    selectionMirror().mirror();
    showCellsLater();
}

// What the person does

QItemSelection OutlineWidget::toItems(const IndexSet& rows) const {
    QItemSelection items;
    const int last = model_.columnCount() - 1;
    for (const std::int64_t row : rows)
        if (const QModelIndex index = model_.indexOfRow(row); index.isValid() && last >= 0)
            items.push_back(QItemSelectionRange(index, index.siblingAtColumn(last)));
    return items;
}

IndexSet OutlineWidget::fromItems(const QItemSelection& items) const {
    std::vector<std::int64_t> rows;
    for (const QItemSelectionRange& range : items)
        for (int place = range.top(); range.isValid() && place <= range.bottom(); ++place)
            rows.push_back(model_.rowOf(model_.index(place, 0, range.parent())));
    std::erase(rows, -1); // below something that is collapsed
    return IndexSet::of(rows);
}

// Dragging

bool OutlineWidget::isDragged(const QModelIndex& index) const {
    const auto source = table_->outlineDataSource();
    const auto carried = [&] { return source->draggedURL(*table_, model_.item(index)); };
    return source && askSafely(carried).has_value();
}

bool OutlineWidget::isMovable(const QModelIndex& index) const {
    const auto source = table_->outlineDataSource();
    return source && askSafely([&] { return source->isMovable(*table_, model_.item(index)); });
}

bool OutlineWidget::acceptsDrop(const std::vector<URL>& urls) const {
    const auto source = table_->outlineDataSource();
    return source && askSafely([&] { return source->acceptsDrop(*table_, urls); });
}

/// Above an item, below it, or, in its middle, to the end of what it holds.
OutlineWidget::DropPlace OutlineWidget::dropPlace(QPoint at) const {
    const QModelIndex index = indexAt(at).siblingAtColumn(0);
    const int width = viewport()->width();
    if (!index.isValid()) {
        const QModelIndex last = model_.indexOfRow(model_.rowCountOfOutline() - 1);
        return {{}, model_.rowCount(), {0, visualRect(last).bottom() + 1, width, 0}};
    }
    const QRect row = visualRect(index);
    const int edge = row.height() / 4;
    if (at.y() < row.top() + edge)
        return {index.parent(), index.row(), {row.left(), row.top(), width, 0}};
    if (at.y() <= row.bottom() - edge)
        return {index, model_.rowCount(index), row};
    if (isExpanded(index) && model_.rowCount(index) > 0)
        return {index, 0, {row.left(), row.bottom() + 1, width, 0}};
    return {index.parent(), index.row() + 1, {row.left(), row.bottom() + 1, width, 0}};
}

QRect OutlineWidget::dropMark(QPoint at) const { return dropPlace(at).mark; }

bool OutlineWidget::isBelow(QModelIndex index, const QModelIndexList& others) const {
    while (index.isValid() && !others.contains(index))
        index = index.parent();
    return index.isValid();
}

void OutlineWidget::selectionDropped(QPoint at) {
    const DropPlace place = dropPlace(at);
    QModelIndexList moved;
    for (const std::int64_t row : selection())
        if (const QModelIndex index = model_.indexOfRow(row); isMovable(index))
            moved.append(index);
    const auto source = table_->outlineDataSource();
    if (!source || moved.isEmpty() || isBelow(place.holder, moved))
        return;
    std::vector<NSOutlineView::Item> items;
    for (const QModelIndex& index : moved)
        if (!isBelow(index.parent(), moved)) // else it goes along
            items.push_back(model_.item(index));
    source->itemsDragged(*table_, items, model_.item(place.holder), place.before);
}

void OutlineWidget::urlsDropped(const std::vector<URL>& urls, QPoint at) {
    const DropPlace place = dropPlace(at);
    if (const auto source = table_->outlineDataSource())
        source->urlsDropped(*table_, urls, model_.item(place.holder), place.before);
}

// Cells

std::vector<QModelIndex> OutlineWidget::indexesInSight() const {
    std::vector<QModelIndex> indexes;
    if (!table_->delegate())
        return indexes;
    for (QModelIndex index = indexAt({0, 0});
         index.isValid() && visualRect(index).top() < viewport()->height();
         index = indexBelow(index))
        for (int column = 0; column < model_.columnCount(); ++column)
            indexes.push_back(index.siblingAtColumn(column));
    return indexes;
}

} // namespace zorvan::internal
