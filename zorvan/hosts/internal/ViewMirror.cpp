#include <zorvan/hosts/internal/ViewMirror.h>

#include <zorvan/hosts/internal/EventInProgress.h>
#include <zorvan/hosts/internal/ViewWidget.h>
#include <zorvan/hosts/internal/WindowWidget.h>
#include <zorvan/hosts/internal/plainTexts.h>
#include <zorvan/hosts/internal/viewGeometry.h>

#include <QAccessible>
#include <algorithm>
#include <map>
#include <utility>

namespace zorvan::internal {

namespace {

Qt::CursorShape shape(NSCursor cursor) {
    static const std::map<NSCursor, Qt::CursorShape> table{
        {NSCursor::iBeam, Qt::IBeamCursor},
        {NSCursor::pointingHand, Qt::PointingHandCursor},
        {NSCursor::openHand, Qt::OpenHandCursor},
        {NSCursor::closedHand, Qt::ClosedHandCursor},
        {NSCursor::crosshair, Qt::CrossCursor},
        {NSCursor::resizeLeftRight, Qt::SizeHorCursor},
        {NSCursor::resizeUpDown, Qt::SizeVerCursor},
        {NSCursor::operationNotAllowed, Qt::ForbiddenCursor}};
    const auto found = table.find(cursor);
    return found == table.end() ? Qt::ArrowCursor : found->second;
}

} // namespace

ViewMirror::ViewMirror(std::shared_ptr<NSView> view, QWidget& widget)
    : shown_(std::move(view)), widget_(widget) {}

void ViewMirror::follow() {
    shown_->addObserver(untilItGoes<NSViewObserver>(*this));
    frameDidChange();
    propertiesDidChange();
    orderKeyViews();
}

/// Only inside another view: what stands in a bar or a splitter, or is the content of a window, is
/// placed by those.
void ViewMirror::frameDidChange() {
    const auto* const parent = dynamic_cast<const ViewWidget*>(widget_.parentWidget());
    if (parent && viewOf(parent) == shown_->superview())
        widget_.setGeometry(placeInSuperview(*shown_));
}

void ViewMirror::propertiesDidChange() {
    if (widget_.parentWidget())
        widget_.setVisible(!shown_->isHidden());
    widget_.setToolTip(plainToolTip(toQString(shown_->toolTip())));
    if (shown_->cursor() != NSCursor::arrow)
        widget_.setCursor(shape(shown_->cursor()));
    else if (widget_.testAttribute(Qt::WA_SetCursor) && !widget_.inherits("QLineEdit"))
        widget_.unsetCursor();
    widget_.setAccessibleName(toQString(shown_->accessibilityLabel()));
    announce();
    if (shown_->nextKeyView())
        orderKeyViews();
}

void ViewMirror::orderKeyViews() {
    if (auto* const window = dynamic_cast<WindowWidget*>(widget_.window()))
        window->orderKeyViewsLater();
}

void ViewMirror::giveFocusBack(const NSWindow& window) {
    const auto responder = window.firstResponder();
    QWidget* const keeper = responder ? widgetOf(*responder, *widget_.window()) : nullptr;
    if (keeper && keeper != &widget_)
        keeper->setFocus(Qt::OtherFocusReason);
}

/// The value, when there is another.
void ViewMirror::announce() {
    std::string value = shown_->accessibilityValue();
    if (value == announced_ || !QAccessible::isActive())
        return;
    announced_ = std::move(value);
    QAccessibleValueChangeEvent changed(&widget_, toQString(announced_));
    QAccessible::updateAccessibility(&changed);
    QAccessibleEvent described(&widget_, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&described);
}

std::shared_ptr<NSView> viewOf(const QWidget* widget) {
    const auto* const mirror = dynamic_cast<const ViewMirror*>(widget);
    return mirror ? mirror->shownView() : nullptr;
}

QWidget* widgetOf(const NSView& view, QWidget& top) {
    QWidget* found = viewOf(&top).get() == &view ? &top : nullptr;
    // What stands in a bar may stand in the bar's menu too.
    for (QWidget* const widget : top.findChildren<QWidget*>())
        if (viewOf(widget).get() == &view && (!found || widget->isVisible()))
            found = widget;
    return found;
}

std::vector<QWidget*> shownIn(const QWidget& holder) {
    std::vector<QWidget*> shown;
    for (QWidget* const child : holder.findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
        if (viewOf(child))
            shown.push_back(child);
    return shown;
}

void letGo(QWidget& widget) {
    widget.hide();
    widget.setParent(nullptr);
    retireWidget(widget);
}

void letGoOfAllBut(const QWidget& holder, const std::vector<std::shared_ptr<NSView>>& views) {
    for (QWidget* const child : shownIn(holder))
        if (std::find(views.begin(), views.end(), viewOf(child)) == views.end())
            letGo(*child);
}

} // namespace zorvan::internal
