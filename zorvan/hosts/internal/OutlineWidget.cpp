#include <zorvan/hosts/internal/OutlineWidget.h>

#include <zorvan/hosts/internal/CellDelegate.h>
#include <zorvan/hosts/internal/viewGeometry.h>

namespace zorvan::internal {

/// Rows are as high as the outline says.
class OutlineWidget::Delegate : public CellDelegate {
public:
    explicit Delegate(OutlineWidget& widget) : CellDelegate(&widget), widget_(widget) {}

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        const NSOutlineView& outline = *widget_.view_;
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
    begin<NSOutlineViewObserver>(*this);
    const auto tell = [this](const QModelIndex& index, bool isExpanded) {
        if (isExpanding_)
            return;
        view_->setExpanded(isExpanded, model_.item(index));
        followExpansion(); // the outline may know better
    };
    connect(this, &QTreeView::expanded, this,
            [tell](const QModelIndex& index) noexcept { tell(index, true); });
    connect(this, &QTreeView::collapsed, this,
            [tell](const QModelIndex& index) noexcept { tell(index, false); });
    followColumns();
    followExpansion();
}

void OutlineWidget::reloaded() {
    const int top = verticalScrollBar()->value();
    const auto current = model_.item(currentIndex());
    model_.reset();
    followExpansion();
    if (const QModelIndex same = model_.indexOfRow(current ? view_->row(current) : -1);
        same.isValid())
        selectionModel()->setCurrentIndex(same, QItemSelectionModel::NoUpdate);
    verticalScrollBar()->setValue(top);
}

void OutlineWidget::followExpansion() {
    const QScopedValueRollback guard(isExpanding_, true);
    model_.followRows();
    scheduleDelayedItemsLayout(); // else each row that opens lays out those below it
    for (std::int64_t row = 0; row < model_.rowCountOfOutline(); ++row) {
        const QModelIndex index = model_.indexOfRow(row);
        const bool isOpen = view_->isItemExpanded(model_.item(index));
        if (isExpanded(index) != isOpen)
            setExpanded(index, isOpen);
    }
    executeDelayedItemsLayout();
    selectionMirror().mirror();
    showCellsLater();
}

void OutlineWidget::cellsReloaded(const IndexSet&, const IndexSet&) {
    viewport()->update();
    showCellsLater();
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

bool OutlineWidget::isBelow(QModelIndex index, const QModelIndexList& others) const {
    while (index.isValid() && !others.contains(index))
        index = index.parent();
    return index.isValid();
}

void OutlineWidget::selectionDropped(QPoint at) {
    const DropPlace place = dropPlace(at);
    const QModelIndexList moved = movableSelection();
    const auto source = view_->outlineDataSource();
    if (!source || moved.isEmpty() || isBelow(place.holder, moved))
        return;
    std::vector<NSOutlineView::Item> items;
    for (const QModelIndex& index : moved)
        if (!isBelow(index.parent(), moved)) // else it goes along
            items.push_back(model_.item(index));
    source->itemsDragged(*view_, items, model_.item(place.holder), place.before);
}

void OutlineWidget::urlsDropped(const std::vector<URL>& urls, QPoint at) {
    const DropPlace place = dropPlace(at);
    if (const auto source = view_->outlineDataSource())
        source->urlsDropped(*view_, urls, model_.item(place.holder), place.before);
}

std::vector<QModelIndex> OutlineWidget::indexesInSight() const {
    std::vector<QModelIndex> indexes;
    if (!view_->delegate())
        return indexes;
    for (QModelIndex index = indexAt({0, 0});
         index.isValid() && visualRect(index).top() < viewport()->height();
         index = indexBelow(index))
        for (int column = 0; column < model_.columnCount(); ++column)
            indexes.push_back(index.siblingAtColumn(column));
    return indexes;
}

} // namespace zorvan::internal
