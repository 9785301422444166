#pragma once

#include <zorvan/hosts/internal/HostedWidget.h>
#include <zorvan/hosts/internal/ItemSelection.h>
#include <zorvan/hosts/internal/QtMenus.h>
#include <zorvan/hosts/internal/askSafely.h>
#include <zorvan/hosts/internal/clipboard.h>
#include <zorvan/hosts/internal/dragging.h>
#include <zorvan/hosts/internal/makeWidget.h>
#include <zorvan/hosts/internal/qtEvents.h>
#include <zorvan/hosts/internal/viewGeometry.h>
#include <zorvan/interface/NSControl.h>
#include <zorvan/platform/appkit/NSScrollView.h>

#include <QAbstractItemView>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <algorithm>
#include <memory>
#include <set>
#include <utility>
#include <vector>

namespace zorvan::internal {

/// Whether the mouse means something to the view or to one inside it.
inline bool takesTheMouse(const NSView& view) {
    const auto& inner = view.subviews();
    return dynamic_cast<const NSControl*>(&view) ||
           std::any_of(inner.begin(), inner.end(),
                       [](const auto& subview) { return takesTheMouse(*subview); });
}

/// What the item views of Qt have in common where they show a view of ours: selection, keys, the
/// scroll view around it, and the views of the cells that are in sight.
template <class ItemView, class View, class Model>
class HostedItemView : public HostedWidget<ItemView, View>, protected SelectionOwner {
public:
    HostedItemView(const std::shared_ptr<View>& view, QWidget* parent)
        : HostedWidget<ItemView, View>(view, parent), model_(view) {
        ItemView::setEditTriggers(QAbstractItemView::NoEditTriggers);
        ItemView::setSelectionMode(QAbstractItemView::ExtendedSelection);
        ItemView::setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
        ItemView::setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
        ItemView::setTabKeyNavigation(false);
        if ((clipView_ = std::dynamic_pointer_cast<NSClipView>(view->superview())))
            clipView_->addObserver(this->template untilItGoes<NSViewObserver>(*this));
    }

    ItemSelection& selectionMirror() const {
        return *static_cast<ItemSelection*>(ItemView::selectionModel());
    }

    /// When all changes of this turn have been made.
    void showCellsLater() {
        if (!std::exchange(willShowCells_, true))
            QMetaObject::invokeMethod(
                this, [this]() noexcept { showCells(); }, Qt::QueuedConnection);
    }

    /// Of the clip view around.
    void boundsOriginDidChange(bool) override { followClipView(); }

protected:
    /// A person opens what is at the index.
    virtual void open(const QModelIndex& index) = 0;
    /// A press, or what asks for a menu, is about the index, which is invalid outside of all.
    virtual void choose(const QModelIndex&) {}
    /// A point of the viewport, at the index, in the coordinates of the view.
    virtual CGPoint placeInView(QPoint at, const QModelIndex& index) const = 0;

    // Dragging, to somewhere in the viewport.

    /// Shows where a drop would go.
    virtual QRect dropMark(QPoint at) const = 0;
    virtual void selectionDropped(QPoint at) = 0;
    virtual void urlsDropped(const std::vector<URL>& urls, QPoint at) = 0;

    virtual std::vector<QModelIndex> indexesInSight() const = 0;
    virtual void letGoOfOthers(const std::vector<QModelIndex>& inSight) = 0;

    /// Once the widget is whole: shows the model, and follows the view.
    template <class Observer>
    void begin(Observer& observer) {
        ItemView::setModel(&model_);
        QItemSelectionModel* const plain = ItemView::selectionModel();
        ItemView::setSelectionModel(new ItemSelection(model_, *this));
        delete plain;
        ItemView::viewport()->setAcceptDrops(true);
        this->follow();
        view_->addObserver(this->template untilItGoes<Observer>(observer));
    }

    /// Before the model goes; what the view shows stays as it is.
    void leave() {
        isScrolling_ = true;
        ItemView::setModel(nullptr);
    }

    QItemSelection toItems(const IndexSet& rows) const override { return model_.toItems(rows); }
    IndexSet fromItems(const QItemSelection& items) const override {
        return model_.fromItems(items);
    }
    /// Those of what is selected that a person may drag to another place.
    QModelIndexList movableSelection() const {
        QModelIndexList movable;
        for (const std::int64_t row : this->selection())
            if (const QModelIndex index = model_.indexOfRow(row); model_.isMovable(index))
                movable.append(index);
        return movable;
    }

    bool viewportEvent(QEvent* event) noexcept override {
        const EventInProgress inProgress;
        return ItemView::viewportEvent(event);
    }

    void keyPressEvent(QKeyEvent* event) override {
        const auto keptAlive = view_;
        const QModelIndex current = ItemView::currentIndex();
        const bool isPlain = !(event->modifiers() & ~Qt::KeypadModifier);
        switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (!isPlain || !current.isValid())
                return sendKey(view_, *event);
            open(current);
            return event->accept();
        case Qt::Key_Delete:
        case Qt::Key_Backspace:
        case Qt::Key_Escape:
            return sendKey(view_, *event); // Qt would look for an item of that name
        }
        if (event->matches(QKeySequence::Copy))
            return copySelection();
        ItemView::keyPressEvent(event);
        if (!event->isAccepted())
            sendKey(view_, *event);
    }

    void mousePressEvent(QMouseEvent* event) override {
        const auto keptAlive = view_;
        const QModelIndex index = this->indexAt(event->pos());
        ItemView::setDragEnabled(index.isValid() &&
                                 (model_.isDragged(index) || model_.isMovable(index)));
        pressedAt_ = event->pos();
        choose(index);
        ItemView::mousePressEvent(event);
    }

    void mouseDoubleClickEvent(QMouseEvent* event) override {
        const auto keptAlive = view_;
        const QPersistentModelIndex index = this->indexAt(event->pos());
        ItemView::mouseDoubleClickEvent(event);
        if (index.isValid() && event->button() == Qt::LeftButton && !event->modifiers())
            open(index);
    }

    /// For what is under the mouse, or, by the keyboard, for the current row or item.
    void contextMenuEvent(QContextMenuEvent* event) override {
        const auto keptAlive = view_;
        QWidget& viewport = *ItemView::viewport();
        const bool isByKey = event->reason() == QContextMenuEvent::Keyboard;
        const QModelIndex current = ItemView::currentIndex();
        QPoint at = viewport.mapFromGlobal(event->globalPos()); // the header's events come here too
        if (isByKey && current.isValid())
            this->scrollTo(current);
        if (isByKey)
            at = current.isValid() ? this->visualRect(current).center() : viewport.rect().center();
        const QModelIndex index = isByKey ? current : this->indexAt(at);
        choose(index);
        openContextMenu(view_, placeInView(at, index), viewport, at, *event);
    }

    /// What is selected.
    void startDrag(Qt::DropActions) override {
        std::unique_ptr<QMimeData> data(
            ItemView::model()->mimeData(selectionMirror().selectedIndexes()));
        data->setData(QStringLiteral("application/x-zorvan-selection"), "1"); // at least something
        isSource_ = true;
        movesSelection_ = model_.isMovable(this->indexAt(pressedAt_));
        dragLater(std::move(data),
                  ItemView::viewport()->grab(this->visualRect(this->indexAt(pressedAt_))),
                  [self = QPointer<QWidget>(this)] {
                      if (self)
                          static_cast<HostedItemView*>(self.data())->isSource_ = false;
                  });
    }

    void dragEnterEvent(QDragEnterEvent* event) override {
        leaveOriginal(*event);
        event->setAccepted(takes(*event));
    }

    void dragMoveEvent(QDragMoveEvent* event) override {
        const QPoint at = event->position().toPoint();
        event->accept();
        showMark(dropMark(at));
        const int margin = ItemView::autoScrollMargin();
        if (!ItemView::viewport()->rect().adjusted(margin, margin, -margin, -margin).contains(at))
            ItemView::startAutoScroll();
    }

    void dragLeaveEvent(QDragLeaveEvent*) override { endDrop(); }

    /// Told once Qt has done with the drop, since whoever is told may close the window.
    void dropEvent(QDropEvent* event) override {
        endDrop();
        leaveOriginal(*event);
        event->accept();
        const auto tell = [this, keptAlive = view_, isOwn = isSource_,
                           urls = urlsOf(*event->mimeData()),
                           at = event->position().toPoint()]() noexcept {
            if (isOwn)
                selectionDropped(at);
            else
                urlsDropped(urls, at);
        };
        QMetaObject::invokeMethod(this, tell, Qt::QueuedConnection);
    }

    void paintEvent(QPaintEvent* event) override {
        ItemView::paintEvent(event);
        QPainter painter(ItemView::viewport());
        paintMark(painter);
    }

    void paintMark(QPainter& painter) const {
        painter.setPen(QPen(ItemView::palette().highlight(), 2));
        if (!mark_.isNull())
            painter.drawRect(mark_);
    }

    void scrollContentsBy(int dx, int dy) override {
        ItemView::scrollContentsBy(dx, dy);
        tellClipView();
        showCellsLater();
    }

    void resizeEvent(QResizeEvent* event) override {
        ItemView::resizeEvent(event);
        showCellsLater();
    }

    void updateGeometries() override {
        ItemView::updateGeometries();
        geometriesDidChange();
    }

    void geometriesDidChange() {
        followClipView();
        showCellsLater();
    }

    using HostedWidget<ItemView, View>::view_;
    Model model_;

private:
    /// What comes from elsewhere stays there too, even if its program would rather move it.
    void leaveOriginal(QDropEvent& event) const {
        if (!isSource_)
            event.setDropAction(Qt::CopyAction);
    }

    bool takes(const QDropEvent& event) const {
        if (isSource_)
            return movesSelection_;
        const std::vector<URL> urls = urlsOf(*event.mimeData());
        return !urls.empty() && model_.acceptsDrop(urls);
    }

    void showMark(const QRect& mark) {
        mark_ = mark;
        ItemView::viewport()->update();
    }

    void endDrop() {
        ItemView::stopAutoScroll();
        showMark({});
    }

    void tellClipView() {
        if (!clipView_ || isScrolling_)
            return;
        const QScopedValueRollback guard(isScrolling_, true);
        clipView_->setBoundsOrigin({static_cast<double>(ItemView::horizontalScrollBar()->value()),
                                    static_cast<double>(ItemView::verticalScrollBar()->value())});
    }

    void followClipView() {
        if (!clipView_ || isScrolling_)
            return;
        const QScopedValueRollback guard(isScrolling_, true);
        const CGPoint origin = clipView_->bounds().origin;
        moveBar(*ItemView::horizontalScrollBar(), origin.x);
        moveBar(*ItemView::verticalScrollBar(), origin.y);
    }

    /// A widget for each cell view in sight; all others are let go.
    void showCells() {
        willShowCells_ = false;
        const std::vector<QModelIndex> inSight = indexesInSight();
        const std::set<QModelIndex> kept(inSight.begin(), inSight.end());
        for (const QPersistentModelIndex& cell : std::exchange(cells_, {}))
            if (cell.isValid() && !kept.contains(cell))
                ItemView::setIndexWidget(cell, nullptr);
        letGoOfOthers(inSight);
        for (const QModelIndex& index : inSight)
            showCell(index);
    }

    void showCell(const QModelIndex& index) {
        const auto view = askSafely([&] { return model_.cellView(index, true); });
        QWidget* const shown = ItemView::indexWidget(index);
        if (viewOf(shown) != view || (shown && !view))
            ItemView::setIndexWidget(index, view ? makeCell(view) : nullptr);
        if (view)
            cells_.emplace_back(index);
    }

    QWidget* makeCell(const std::shared_ptr<NSView>& view) {
        QWidget* const widget = makeWidget(view, ItemView::viewport());
        // So that a press selects, as on a cell without a view.
        widget->setAttribute(Qt::WA_TransparentForMouseEvents, !takesTheMouse(*view));
        return widget;
    }

    /// What a drag of the selected rows or items would carry, or else a line of texts for each.
    void copySelection() {
        QModelIndexList indexes = selectionMirror().selectedIndexes();
        std::ranges::sort(indexes, {}, [this](const QModelIndex& index) {
            return std::pair(model_.rowOf(index), index.column());
        });
        const std::unique_ptr<QMimeData> dragged(ItemView::model()->mimeData(indexes));
        if (dragged && !dragged->urls().isEmpty())
            return copyToPasteboard(*dragged);
        QString text;
        for (qsizetype i = 0; i < indexes.size(); ++i) {
            const bool isSameRow =
                i > 0 && model_.rowOf(indexes[i]) == model_.rowOf(indexes[i - 1]);
            text += i == 0 ? QString() : QString(QLatin1Char(isSameRow ? '\t' : '\n'));
            text += indexes[i].data().toString();
        }
        QMimeData texts;
        if (!text.isEmpty())
            texts.setText(text);
        copyToPasteboard(texts);
    }

    std::shared_ptr<NSClipView> clipView_;
    std::vector<QPersistentModelIndex> cells_;
    QPoint pressedAt_;
    QRect mark_;
    /// While what is selected is being dragged.
    bool isSource_ = false, movesSelection_ = false;
    bool willShowCells_ = false;
    bool isScrolling_ = false;
};

} // namespace zorvan::internal
