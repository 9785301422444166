#pragma once

#include <zorvan/platform/appkit/NSEvent.h>
#include <zorvan/platform/appkit/NSView.h>

#include <QEvent>
#include <QPointF>
#include <utility>

class QKeyEvent;
class QMouseEvent;
class QWheelEvent;
class QWidget;

// What Qt tells a widget, told to the window of the view that the widget shows.
namespace zorvan::internal {

void sendMouse(const std::shared_ptr<NSView>& view, QMouseEvent& event);
void sendWheel(const std::shared_ptr<NSView>& view, QWheelEvent& event);
/// Only the view that has the keyboard tells of keys. Wheel and keys are accepted when a view took
/// them.
void sendKey(const std::shared_ptr<NSView>& view, QKeyEvent& event);
/// Where the mouse is, when it has left the widget: over another view, or out of all.
void sendLeave(const std::shared_ptr<NSView>& view, const QWidget& widget);

/// The same keys, as Qt calls them and as views are told.
inline constexpr std::pair<Qt::KeyboardModifier, NSEvent::ModifierFlags> modifierKeys[] = {
    {Qt::ShiftModifier, NSEvent::ModifierFlags::shift},
    {Qt::ControlModifier, NSEvent::ModifierFlags::control},
    {Qt::AltModifier, NSEvent::ModifierFlags::option},
    {Qt::MetaModifier, NSEvent::ModifierFlags::command}};
NSEvent keyEvent(const QKeyEvent& event);
NSEvent::ModifierFlags modifierFlags(Qt::KeyboardModifiers modifiers);

} // namespace zorvan::internal
