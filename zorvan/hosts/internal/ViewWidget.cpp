#include <zorvan/hosts/internal/ViewWidget.h>

#include <zorvan/hosts/internal/QtMenus.h>
#include <zorvan/hosts/internal/askSafely.h>
#include <zorvan/hosts/internal/dragging.h>
#include <zorvan/hosts/internal/makeWidget.h>
#include <zorvan/hosts/internal/qtEvents.h>
#include <zorvan/hosts/internal/viewGeometry.h>
#include <zorvan/interface/NSWindow.h>

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <map>
#include <typeinfo>
#include <utility>
#include <vector>

namespace zorvan::internal {

class ViewWidget::Mirror : public ViewMirror {
public:
    Mirror(const std::shared_ptr<NSView>& view, ViewWidget& widget) : ViewMirror(view, widget) {}

    void subviewsDidChange() override {
        if (auto* const own = static_cast<ViewWidget*>(widget()))
            own->followSubviews();
    }
    void needsDisplay(const CGRect& rect) override {
        if (widget())
            widget()->update(toWidget(*view(), rect).adjusted(-1, -1, 1, 1));
    }
    void boundsOriginDidChange(bool) override {
        if (!widget())
            return;
        widget()->update();
        placeSubviews();
    }
    void frameDidChange() override {
        ViewMirror::frameDidChange();
        placeSubviews(); // y may count from the other end
    }
    void propertiesDidChange() override {
        ViewMirror::propertiesDidChange();
        if (widget())
            widget()->setFocusPolicy(view()->acceptsFirstResponder() ? Qt::StrongFocus
                                                                     : Qt::NoFocus);
    }

protected:
    void followAll() override {
        ViewMirror::followAll();
        subviewsDidChange();
    }

private:
    void placeSubviews() {
        if (!widget())
            return;
        for (QWidget* const child : widget()->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            if (const auto shown = viewOf(child); shown && shown->superview() == view())
                child->setGeometry(placeInSuperview(*shown));
    }
};

ViewWidget::ViewWidget(const std::shared_ptr<NSView>& view, QWidget* parent)
    : QWidget(parent), view_(view) {
    setMouseTracking(true);
    setAcceptDrops(true);
    ViewMirror::attach(std::make_shared<Mirror>(view, *this));
}

/// A widget for each subview, in their order from back to front.
void ViewWidget::followSubviews() {
    const auto& views = view_->subviews();
    std::vector<std::shared_ptr<NSView>> shown;
    for (QWidget* const child : findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        const auto view = viewOf(child);
        if (!view)
            continue;
        if (std::find(views.begin(), views.end(), view) != views.end()) {
            shown.push_back(view);
            continue;
        }
        // It may be in the middle of an event that took its view out.
        child->hide();
        child->setParent(nullptr);
        child->deleteLater();
    }
    for (const auto& view : views)
        if (std::find(shown.begin(), shown.end(), view) == shown.end())
            makeWidget(view, this);
    orderSubviews();
}

void ViewWidget::orderSubviews() {
    std::vector<std::pair<std::shared_ptr<NSView>, QWidget*>> children;
    for (QWidget* const child : findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
        if (auto view = viewOf(child))
            children.emplace_back(std::move(view), child);
    const auto& views = view_->subviews();
    const bool isInOrder =
        std::equal(views.begin(), views.end(), children.begin(), children.end(),
                   [](const auto& view, const auto& child) { return view == child.first; });
    if (isInOrder)
        return;
    std::map<NSView*, QWidget*> widgets;
    for (const auto& [view, child] : children)
        widgets[view.get()] = child;
    for (const auto& view : views)
        widgets[view.get()]->raise();
}

bool ViewWidget::event(QEvent* event) noexcept { return QWidget::event(event); }

QSize ViewWidget::sizeHint() const { return toQSize(view_->fittingSize()); }

// Drawing

namespace {

/// Grown so far that its edges fall on whole pixels also where a point has quarters of them.
QRect aligned(const QRect& part, double scale) {
    constexpr int grid = 4;
    if (scale == std::floor(scale))
        return part;
    const auto down = [](int edge) { return edge - ((edge % grid) + grid) % grid; };
    return {QPoint(down(part.left()), down(part.top())),
            QPoint(down(part.right()) + grid - 1, down(part.bottom()) + grid - 1)};
}

} // namespace

void ViewWidget::paintView(const NSView& view, QWidget& widget, const QRect& changed) {
    if (typeid(view) == typeid(NSView))
        return; // which draws nothing
    const double scale = widget.devicePixelRatioF();
    const QRect part = aligned(changed, scale);
    const auto pixels = [scale](int length) {
        return static_cast<std::int64_t>(std::ceil(length * scale));
    };
    std::optional<Bitmap> bitmap = Bitmap::make(pixels(part.width()), pixels(part.height()));
    if (!bitmap)
        return;
    // The whole view, as seen through the part.
    const Canvas through(*bitmap, scale);
    const CGRect bounds = view.bounds();
    const double top = through.clip().height() + part.y();
    Canvas canvas = through.inside(
        {-static_cast<double>(part.x()), top - bounds.height(), bounds.width(), bounds.height()},
        bounds, view.isFlipped());
    if (canvas.clip().isNull())
        return;
    view.draw(canvas);
    QImage image(bitmap->data(), static_cast<int>(bitmap->width()),
                 static_cast<int>(bitmap->height()), static_cast<qsizetype>(bitmap->bytesPerRow()),
                 QImage::Format_RGBA8888_Premultiplied);
    image.setDevicePixelRatio(scale);
    QPainter painter(&widget);
    painter.setClipRect(changed);
    painter.drawImage(QPointF(part.topLeft()), image);
}

void ViewWidget::paintEvent(QPaintEvent* event) {
    view_->setNeedsDisplay(false);
    paintView(*view_, *this, event->rect());
    if (!hasFocus() || !view_->showsFocusRing())
        return;
    QPainter painter(this);
    painter.setPen(QPen(palette().highlight(), 2));
    painter.drawRect(rect().adjusted(1, 1, -1, -1));
}

// Events

void ViewWidget::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        pressedAt_ = event->position();
    sendMouse(view_, *event);
}

void ViewWidget::mouseMoveEvent(QMouseEvent* event) {
    if (!beginDrag(*event))
        sendMouse(view_, *event);
}

void ViewWidget::mouseReleaseEvent(QMouseEvent* event) {
    pressedAt_.reset();
    sendMouse(view_, *event);
}

void ViewWidget::leaveEvent(QEvent*) { sendLeave(view_, *this); }

void ViewWidget::wheelEvent(QWheelEvent* event) { sendWheel(view_, *event); }

void ViewWidget::keyPressEvent(QKeyEvent* event) { sendKey(view_, *event); }

void ViewWidget::keyReleaseEvent(QKeyEvent* event) { sendKey(view_, *event); }

void ViewWidget::focusInEvent(QFocusEvent*) {
    update();
    if (const auto window = view_->window())
        window->makeFirstResponder(view_);
}

void ViewWidget::focusOutEvent(QFocusEvent*) { update(); }

void ViewWidget::contextMenuEvent(QContextMenuEvent* event) {
    openContextMenu(view_, *this, *event);
}

// Dragging

bool ViewWidget::beginDrag(const QMouseEvent& event) {
    if (!pressedAt_ || !(event.buttons() & Qt::LeftButton) ||
        (event.position() - *pressedAt_).manhattanLength() < QApplication::startDragDistance())
        return false;
    const CGPoint from = toView(*view_, *std::exchange(pressedAt_, std::nullopt));
    const auto urls = askSafely([&] { return view_->draggedURLs(from); });
    const auto picture = askSafely([&] { return view_->draggedPicture(from); });
    if (urls.empty() && !picture)
        return false;
    dragLater(toMimeData(urls, picture.get()), grab());
    return true;
}

void ViewWidget::dragEnterEvent(QDragEnterEvent* event) {
    const std::vector<URL> urls = urlsOf(*event->mimeData());
    event->setDropAction(Qt::CopyAction);
    event->setAccepted(!urls.empty() && askSafely([&] { return view_->acceptsDrop(urls); }));
}

/// Told once Qt has done with the drop, since whoever is told may close the window.
void ViewWidget::dropEvent(QDropEvent* event) {
    event->accept();
    const auto tell = [view = view_, urls = urlsOf(*event->mimeData()),
                       at = toView(*view_, event->position())]() noexcept {
        view->urlsDropped(urls, at);
    };
    QMetaObject::invokeMethod(this, tell, Qt::QueuedConnection);
}

void openContextMenu(const std::shared_ptr<NSView>& view, QWidget& widget,
                     QContextMenuEvent& event) {
    const bool isByKey = event.reason() == QContextMenuEvent::Keyboard;
    const QPoint at = isByKey ? widget.rect().center() : event.pos();
    NSEvent asked{.type = NSEvent::EventType::rightMouseDown,
                  .locationInWindow = view->convertToBase(toView(*view, at))};
    const auto menu = view->menu(asked);
    event.setAccepted(menu != nullptr);
    if (menu)
        openMenu(*menu, &widget, widget.mapToGlobal(at));
}

} // namespace zorvan::internal
