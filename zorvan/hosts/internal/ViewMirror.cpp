#include <zorvan/hosts/internal/ViewMirror.h>

#include <zorvan/hosts/internal/ViewWidget.h>
#include <zorvan/hosts/internal/viewGeometry.h>

#include <QAccessible>
#include <utility>

namespace zorvan::internal {

namespace {

/// Ends with the widget.
struct Holder : QObject {
    Holder(QWidget& widget, std::shared_ptr<ViewMirror> kept)
        : QObject(&widget), mirror(std::move(kept)) {}
    const std::shared_ptr<ViewMirror> mirror;
};

const ViewMirror* mirrorOf(const QWidget* widget) {
    if (widget)
        for (const QObject* const child : widget->children())
            if (const auto* const holder = dynamic_cast<const Holder*>(child))
                return holder->mirror.get();
    return nullptr;
}

Qt::CursorShape shape(NSCursor cursor) {
    switch (cursor) {
    case NSCursor::arrow:
        return Qt::ArrowCursor;
    case NSCursor::iBeam:
        return Qt::IBeamCursor;
    case NSCursor::pointingHand:
        return Qt::PointingHandCursor;
    case NSCursor::openHand:
        return Qt::OpenHandCursor;
    case NSCursor::closedHand:
        return Qt::ClosedHandCursor;
    case NSCursor::crosshair:
        return Qt::CrossCursor;
    case NSCursor::resizeLeftRight:
        return Qt::SizeHorCursor;
    case NSCursor::resizeUpDown:
        return Qt::SizeVerCursor;
    case NSCursor::operationNotAllowed:
        return Qt::ForbiddenCursor;
    }
    return Qt::ArrowCursor;
}

} // namespace

ViewMirror::ViewMirror(std::shared_ptr<NSView> view, QWidget& widget)
    : view_(std::move(view)), widget_(&widget) {}

void ViewMirror::attach(const std::shared_ptr<ViewMirror>& mirror) {
    new Holder(*mirror->widget(), mirror);
    mirror->view_->addObserver(mirror);
    mirror->followAll();
}

void ViewMirror::followAll() {
    frameDidChange();
    propertiesDidChange();
}

/// Only inside another view: what stands in a bar or a splitter, or is the content of a window, is
/// placed by those.
bool ViewMirror::isPlacedByItsView() const {
    const auto* const parent = dynamic_cast<const ViewWidget*>(widget_->parentWidget());
    return parent && viewOf(parent) == view_->superview();
}

void ViewMirror::frameDidChange() {
    if (widget_ && isPlacedByItsView())
        widget_->setGeometry(placeInSuperview(*view_));
}

void ViewMirror::propertiesDidChange() {
    if (!widget_)
        return;
    if (widget_->parentWidget())
        widget_->setVisible(!view_->isHidden());
    widget_->setToolTip(toQString(view_->toolTip()).toHtmlEscaped());
    if (view_->cursor() != NSCursor::arrow)
        widget_->setCursor(shape(view_->cursor()));
    else if (widget_->testAttribute(Qt::WA_SetCursor) && !widget_->inherits("QLineEdit"))
        widget_->unsetCursor();
    widget_->setAccessibleName(toQString(view_->accessibilityLabel()));
    announce();
    if (const auto next = view_->nextKeyView())
        if (QWidget* const after = widgetOf(*next, *widget_->window()))
            QWidget::setTabOrder(widget_, after);
}

/// The value, when there is another.
void ViewMirror::announce() {
    std::string value = view_->accessibilityValue();
    if (value == announced_ || !QAccessible::isActive())
        return;
    announced_ = std::move(value);
    QAccessibleValueChangeEvent changed(widget_, toQString(announced_));
    QAccessible::updateAccessibility(&changed);
    QAccessibleEvent described(widget_, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&described);
}

std::shared_ptr<NSView> viewOf(const QWidget* widget) {
    const ViewMirror* const mirror = mirrorOf(widget);
    return mirror ? mirror->view() : nullptr;
}

QWidget* widgetOf(const NSView& view, QWidget& top) {
    QWidget* found = viewOf(&top).get() == &view ? &top : nullptr;
    // What stands in a bar may stand in the bar's menu too.
    for (QWidget* const widget : top.findChildren<QWidget*>())
        if (viewOf(widget).get() == &view && (!found || widget->isVisible()))
            found = widget;
    return found;
}

} // namespace zorvan::internal
