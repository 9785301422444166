#include <zorvan/hosts/internal/CollectionWidget.h>

#include <zorvan/hosts/internal/CellDelegate.h>

#include <QApplication>
#include <QPainter>
#include <QStyleOptionRubberBand>
#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

namespace zorvan::internal {

CollectionWidget::CollectionWidget(const std::shared_ptr<NSCollectionView>& view, QWidget* parent)
    : HostedItemView(view, parent) {
    setItemDelegate(new CellDelegate(this));
    setViewMode(IconMode);
    setMovement(Static);
    setWordWrap(true);
    verticalScrollBar()->setSingleStep(20);
    begin<NSCollectionViewObserver>(*this);
    selectionMirror().mirror();
}

// Following the view

void CollectionWidget::itemsUpdated(const NSCollectionView::Updates& updates, bool) {
    selectionMirror().forget();
    model_.update(updates);
    layoutDidChange();
}

void CollectionWidget::reloaded() {
    model_.reload();
    layoutDidChange();
}

void CollectionWidget::layoutDidChange() {
    selectionMirror().mirror();
    updateGeometries();
    viewport()->update();
}

// Place

CGRect CollectionWidget::contentOf(const QRect& part) const {
    const int left = isRightToLeft() ? viewport()->width() - part.x() - part.width() : part.x();
    return {static_cast<double>(left + horizontalScrollBar()->value()),
            static_cast<double>(part.y() + verticalOffset()), static_cast<double>(part.width()),
            static_cast<double>(part.height())};
}

std::vector<QModelIndex> CollectionWidget::indexesIn(const CGRect& content) const {
    std::vector<QModelIndex> indexes;
    for (const IndexPath path : view_->indexPathsForItems(content))
        if (const QModelIndex index = model_.indexOf(path); index.isValid())
            indexes.push_back(index);
    return indexes;
}

CGRect CollectionWidget::frameOf(const QModelIndex& index) const {
    const auto& layout = view_->collectionViewLayout();
    return index.isValid() && layout ? layout->frameOfItem(model_.path(index.row())) : CGRect();
}

QRect CollectionWidget::visualRect(const QModelIndex& index) const {
    const CGRect frame = frameOf(index);
    const QRect place = QRectF(frame.x(), frame.y(), frame.width(), frame.height())
                            .translated(-horizontalScrollBar()->value(), -verticalOffset())
                            .toRect();
    return QStyle::visualRect(layoutDirection(), viewport()->rect(), place);
}

QModelIndex CollectionWidget::indexAt(const QPoint& point) const {
    const auto found = indexesIn(contentOf(QRect(point, QSize(1, 1))));
    return found.empty() ? QModelIndex() : found.back();
}

void CollectionWidget::scrollTo(const QModelIndex& index, ScrollHint) {
    const QRect place = visualRect(index);
    if (place.isEmpty())
        return;
    const auto go = [](QScrollBar& bar, int from, int to, int room) {
        if (from < 0)
            bar.setValue(bar.value() + from);
        else if (to > room)
            bar.setValue(bar.value() + std::min(from, to - room));
    };
    go(*verticalScrollBar(), place.top(), place.bottom() + 1, viewport()->height());
    const QRect logical = QStyle::visualRect(layoutDirection(), viewport()->rect(), place);
    go(*horizontalScrollBar(), logical.left(), logical.right() + 1, viewport()->width());
}

void CollectionWidget::updateGeometries() {
    if (isFitting_)
        return;
    fitView();
    const auto& layout = view_->collectionViewLayout();
    const CGSize content = layout ? layout->contentSize() : CGSize();
    fitBar(*verticalScrollBar(), content.height, viewport()->height());
    fitBar(*horizontalScrollBar(), content.width, viewport()->width());
    geometriesDidChange();
    updateEditorGeometries();
}

/// Gives the view the width that is seen and the height that its content takes then, which is the
/// result.
double CollectionWidget::layOut() {
    const CGRect before = view_->frame();
    const double width = viewport()->width(), least = viewport()->height();
    view_->setFrame({before.origin, CGSize(width, before.height())});
    const auto& layout = view_->collectionViewLayout();
    const double height = layout ? layout->contentSize().height : 0;
    view_->setFrame({before.origin, CGSize(width, std::max(height, least))});
    return height;
}

/// In a scroll view the layout has the width that is seen, and the scroll bar comes and goes with
/// what it takes. Where the content is too high without the bar, and fits beside it, the bar stays.
void CollectionWidget::fitView() {
    if (!std::dynamic_pointer_cast<NSClipView>(view_->superview()))
        return;
    const QScopedValueRollback guard(isFitting_, true);
    const bool hadBar = verticalScrollBarPolicy() == Qt::ScrollBarAlwaysOn;
    if (hadBar == (layOut() > viewport()->height()))
        return;
    if (hadBar)
        setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    if (layOut() <= viewport()->height())
        return;
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    layOut();
}

// Drawing

void CollectionWidget::paintEvent(QPaintEvent* event) {
    QPainter painter(viewport());
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    const QStyle::State plain = option.state & ~QStyle::State_HasFocus;
    const IndexSet selected = selection();
    for (const QModelIndex& index : indexesIn(contentOf(event->rect()))) {
        option.rect = visualRect(index);
        option.state = plain;
        option.state.setFlag(QStyle::State_Selected, selected.contains(index.row()));
        option.state.setFlag(QStyle::State_HasFocus, hasFocus() && index == currentIndex());
        itemDelegateForIndex(index)->paint(&painter, option, index);
    }
    paintMark(painter);
    if (band_.isEmpty())
        return;
    QStyleOptionRubberBand bandOption;
    bandOption.initFrom(this);
    bandOption.shape = QRubberBand::Rectangle;
    bandOption.opaque = false;
    bandOption.rect = band_.translated(-horizontalOffset(), -verticalOffset());
    style()->drawControl(QStyle::CE_RubberBand, &bandOption, &painter);
}

// What the person does

CGPoint CollectionWidget::placeInView(QPoint at, const QModelIndex&) const {
    return contentOf(QRect(at, QSize(1, 1))).origin;
}

void CollectionWidget::mousePressEvent(QMouseEvent* event) {
    // A menu may have got the release of the last press.
    bandStart_.reset();
    band_ = {};
    if (event->button() == Qt::LeftButton && !indexAt(event->pos()).isValid())
        bandStart_ = event->pos() + QPoint(horizontalOffset(), verticalOffset());
    HostedItemView::mousePressEvent(event);
}

void CollectionWidget::mouseMoveEvent(QMouseEvent* event) {
    QAbstractItemView::mouseMoveEvent(event);
    if (!bandStart_ || !(event->buttons() & Qt::LeftButton))
        return;
    const QPoint here = event->pos() + QPoint(horizontalOffset(), verticalOffset());
    band_ = QRect(*bandStart_, here).normalized();
    viewport()->update();
}

void CollectionWidget::mouseReleaseEvent(QMouseEvent* event) {
    bandStart_.reset();
    band_ = {};
    viewport()->update();
    QAbstractItemView::mouseReleaseEvent(event);
}

QModelIndex CollectionWidget::moveCursor(CursorAction action, Qt::KeyboardModifiers) {
    const QModelIndex current = currentIndex();
    const int last = model_.rowCount() - 1, row = current.row();
    if (last < 0 || !current.isValid())
        return model_.index(0, 0);
    const double line = frameOf(current).height(), page = viewport()->height();
    const std::map<CursorAction, double> downward{
        {MoveUp, -line}, {MoveDown, line}, {MovePageUp, -page}, {MovePageDown, page}};
    if (const auto distance = downward.find(action); distance != downward.end())
        return neighbour(current, distance->second);
    const int back = isRightToLeft() ? 1 : -1;
    const std::map<CursorAction, int> rows{{MoveLeft, row + back}, {MoveRight, row - back},
                                           {MoveHome, 0},          {MoveEnd, last},
                                           {MoveNext, row + 1},    {MovePrevious, row - 1}};
    return model_.index(std::clamp(rows.at(action), 0, last), 0);
}

QModelIndex CollectionWidget::neighbour(const QModelIndex& from, double distance) const {
    const CGRect own = frameOf(from);
    const double length = std::abs(distance) + own.height();
    // All that lies beyond the item's line, up to the distance and a line.
    const CGRect beyond(0, distance < 0 ? own.minY() - length : own.maxY(),
                        horizontalScrollBar()->maximum() + viewport()->width(), length);
    QModelIndex nearest = from;
    double least = std::numeric_limits<double>::infinity();
    for (const QModelIndex& index : indexesIn(beyond)) {
        const CGRect frame = frameOf(index);
        // The line at that distance comes before the place in the line.
        const double off = std::abs(frame.midY() - own.midY() - distance) * 1e3 +
                           std::abs(frame.midX() - own.midX());
        if (off < least) {
            least = off;
            nearest = index;
        }
    }
    return nearest;
}

void CollectionWidget::setSelection(const QRect& rect,
                                    QItemSelectionModel::SelectionFlags command) {
    // A range by the shift key is drawn from item to item, in their order; a band by what it holds.
    IndexSet rows;
    if (bandStart_) {
        for (const QModelIndex& index : indexesIn(contentOf(rect.normalized())))
            rows.insert(index.row());
    } else {
        const QModelIndex from = indexAt(rect.topLeft()), to = indexAt(rect.bottomRight());
        if (from.isValid() && to.isValid())
            rows = IndexSet(IndexSet::Ends{.i1 = from.row(), .i2 = to.row()});
    }
    selectionMirror().select(toItems(rows), command);
}

QRegion CollectionWidget::visualRegionForSelection(const QItemSelection& items) const {
    QRegion region;
    const IndexSet rows = fromItems(items);
    for (const QModelIndex& index : indexesIn(contentOf(viewport()->rect())))
        if (rows.contains(index.row()))
            region += visualRect(index);
    return region;
}

IndexSet CollectionWidget::selection() const {
    IndexSet rows;
    for (const IndexPath path : view_->selectionIndexPaths())
        if (const std::int64_t row = model_.row(path); row >= 0)
            rows.insert(row);
    return rows;
}

void CollectionWidget::select(const IndexSet& items) {
    std::set<IndexPath> paths;
    for (const std::int64_t row : items)
        paths.insert(paths.end(), model_.path(row));
    view_->setSelectionIndexPaths(std::move(paths));
}

void CollectionWidget::open(const QModelIndex& index) {
    if (const auto source = view_->dataSource())
        source->itemOpened(*view_, model_.path(index.row()));
}

// Dragging

std::pair<QModelIndex, bool> CollectionWidget::dropNeighbour(QPoint at) const {
    const auto inLine = indexesIn(contentOf(QRect(0, at.y(), viewport()->width(), 1)));
    for (const QModelIndex& index : inLine) {
        const int middle = visualRect(index).center().x();
        if (isRightToLeft() ? at.x() > middle : at.x() < middle)
            return {index, false};
    }
    return {inLine.empty() ? model_.index(model_.rowCount() - 1, 0) : inLine.back(), true};
}

IndexPath CollectionWidget::dropPath(QPoint at) const {
    const auto [index, isAfter] = dropNeighbour(at);
    if (!index.isValid())
        return {0, 0};
    const IndexPath path = model_.path(index.row());
    return {path.item + (isAfter ? 1 : 0), path.section};
}

QRect CollectionWidget::dropMark(QPoint at) const {
    const auto [index, isAfter] = dropNeighbour(at);
    const QRect place = visualRect(index);
    const bool isAtRight = isAfter != isRightToLeft();
    return {std::max(isAtRight ? place.right() + 2 : place.left() - 1, 1), place.top(), 0,
            place.height()};
}

void CollectionWidget::selectionDropped(QPoint at) {
    std::set<IndexPath> items;
    for (const QModelIndex& index : movableSelection())
        items.insert(model_.path(index.row()));
    const auto source = view_->dataSource();
    if (source && !items.empty())
        source->itemsDragged(*view_, items, dropPath(at));
}

void CollectionWidget::urlsDropped(const std::vector<URL>& urls, QPoint at) {
    if (const auto source = view_->dataSource())
        source->urlsDropped(*view_, urls, dropPath(at));
}

// Items

std::vector<QModelIndex> CollectionWidget::indexesInSight() const {
    return indexesIn(contentOf(viewport()->rect()));
}

void CollectionWidget::letGoOfOthers(const std::vector<QModelIndex>& inSight) {
    std::set<IndexPath> paths;
    for (const QModelIndex& index : inSight)
        paths.insert(model_.path(index.row()));
    view_->keepViews(paths);
}

// What a screen reader is told

void CollectionWidget::announce(QAccessible::Event event, const QModelIndex& index) {
    if (!index.isValid() || !QAccessible::isActive())
        return;
    QAccessibleEvent told(this, event);
    told.setChild(index.row());
    QAccessible::updateAccessibility(&told);
}

void CollectionWidget::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    HostedItemView::currentChanged(current, previous);
    if (hasFocus())
        announce(QAccessible::Focus, current);
}

void CollectionWidget::selectionChanged(const QItemSelection& selected,
                                        const QItemSelection& deselected) {
    HostedItemView::selectionChanged(selected, deselected);
    if (!deselected.isEmpty())
        announce(QAccessible::SelectionRemove, deselected.first().topLeft());
    if (!selected.isEmpty())
        announce(QAccessible::SelectionAdd, selected.first().topLeft());
}

} // namespace zorvan::internal
