#include <zorvan/hosts/internal/ViewWidget.h>

#include <zorvan/hosts/internal/askSafely.h>
#include <zorvan/hosts/internal/dragging.h>
#include <zorvan/hosts/internal/makeWidget.h>

#include <QApplication>
#include <map>
#include <utility>
#include <vector>

namespace zorvan::internal {

ViewWidget::ViewWidget(const std::shared_ptr<NSView>& view, QWidget* parent)
    : DrawnWidget(view, parent) {
    setMouseTracking(true);
    setAcceptDrops(true);
    follow();
    subviewsDidChange();
}

/// A widget for each subview, in their order from back to front.
void ViewWidget::subviewsDidChange() {
    letGoOfAllBut(*this, view_->subviews());
    std::map<std::shared_ptr<NSView>, QWidget*> shown;
    for (QWidget* const child : shownIn(*this))
        shown[viewOf(child)] = child;
    std::vector<QWidget*> ordered;
    for (const auto& view : view_->subviews()) {
        const auto known = shown.find(view);
        ordered.push_back(known == shown.end() ? makeWidget(view, this) : known->second);
    }
    if (ordered != shownIn(*this))
        for (QWidget* const child : ordered)
            child->raise();
}

void ViewWidget::needsDisplay(const CGRect& rect) {
    update(toWidget(*view_, rect).adjusted(-1, -1, 1, 1));
}

void ViewWidget::boundsOriginDidChange(bool) {
    update();
    placeSubviews();
}

void ViewWidget::frameDidChange() {
    DrawnWidget::frameDidChange();
    placeSubviews(); // y may count from the other end
}

void ViewWidget::propertiesDidChange() {
    DrawnWidget::propertiesDidChange();
    setFocusPolicy(view_->acceptsFirstResponder() ? Qt::StrongFocus : Qt::NoFocus);
}

void ViewWidget::placeSubviews() {
    for (QWidget* const child : shownIn(*this))
        if (const auto shown = viewOf(child); shown->superview() == view_)
            child->setGeometry(placeInSuperview(*shown));
}

void ViewWidget::paintFocus(QPainter& painter) const {
    painter.drawRect(rect().adjusted(1, 1, -1, -1));
}

void ViewWidget::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        pressedAt_ = event->position();
    DrawnWidget::mousePressEvent(event);
}

void ViewWidget::mouseMoveEvent(QMouseEvent* event) {
    if (!beginDrag(*event))
        DrawnWidget::mouseMoveEvent(event);
}

void ViewWidget::mouseReleaseEvent(QMouseEvent* event) {
    pressedAt_.reset();
    DrawnWidget::mouseReleaseEvent(event);
}

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

/// What is dropped stays where it is too, even if its program would rather move it.
void ViewWidget::dragEnterEvent(QDragEnterEvent* event) {
    const std::vector<URL> urls = urlsOf(*event->mimeData());
    event->setDropAction(Qt::CopyAction);
    event->setAccepted(!urls.empty() && askSafely([&] { return view_->acceptsDrop(urls); }));
}

/// Told once Qt has done with the drop, since whoever is told may close the window.
void ViewWidget::dropEvent(QDropEvent* event) {
    event->setDropAction(Qt::CopyAction);
    event->accept();
    const auto tell = [view = view_, urls = urlsOf(*event->mimeData()),
                       at = toView(*view_, event->position())]() noexcept {
        view->urlsDropped(urls, at);
    };
    QMetaObject::invokeMethod(this, tell, Qt::QueuedConnection);
}

} // namespace zorvan::internal
