#include <zorvan/hosts/internal/qtEvents.h>

#include <zorvan/hosts/internal/ViewMirror.h>
#include <zorvan/hosts/internal/viewGeometry.h>
#include <zorvan/interface/NSWindow.h>
#include <zorvan/text/EventKeyCode.h>

#include <QApplication>
#include <QCursor>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QStyleHints>
#include <QWheelEvent>
#include <QWidget>
#include <algorithm>
#include <array>
#include <cmath>

namespace zorvan::internal {

namespace {

/// Counts the presses of a quick row; there is one mouse.
class ClickCounter {
public:
    std::int64_t press(Qt::MouseButton button, const QPointF& at) {
        const QStyleHints& hints = *QGuiApplication::styleHints();
        const bool goesOn = clicks_ > 0 && button == button_ &&
                            since_.elapsed() < hints.mouseDoubleClickInterval() &&
                            (at - at_).manhattanLength() <= hints.mouseDoubleClickDistance();
        clicks_ = goesOn ? clicks_ + 1 : 1;
        since_.start();
        at_ = at;
        button_ = button;
        return clicks_;
    }
    std::int64_t count() const { return std::max<std::int64_t>(clicks_, 1); }

private:
    QElapsedTimer since_;
    QPointF at_;
    Qt::MouseButton button_ = Qt::NoButton;
    std::int64_t clicks_ = 0;
};

ClickCounter& clicks() {
    static ClickCounter counter;
    return counter;
}

using Type = NSEvent::EventType;

struct ButtonTypes {
    Type down, dragged, up;
};

ButtonTypes typesOf(Qt::MouseButtons button) {
    if (button & Qt::LeftButton)
        return {Type::leftMouseDown, Type::leftMouseDragged, Type::leftMouseUp};
    if (button & Qt::RightButton)
        return {Type::rightMouseDown, Type::rightMouseDragged, Type::rightMouseUp};
    return {Type::otherMouseDown, Type::otherMouseDragged, Type::otherMouseUp};
}

Type typeOf(const QMouseEvent& event) {
    switch (event.type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        return typesOf(event.button()).down;
    case QEvent::MouseButtonRelease:
        return typesOf(event.button()).up;
    default:
        return event.buttons() ? typesOf(event.buttons()).dragged : Type::mouseMoved;
    }
}

CGPoint placeInWindow(const NSView& view, const QPointF& point) {
    return view.convertToBase(toView(view, point));
}

} // namespace

NSEvent::ModifierFlags modifierFlags(Qt::KeyboardModifiers modifiers) {
    using Flags = NSEvent::ModifierFlags;
    const std::pair<Qt::KeyboardModifier, Flags> table[] = {{Qt::ShiftModifier, Flags::shift},
                                                            {Qt::ControlModifier, Flags::control},
                                                            {Qt::AltModifier, Flags::option},
                                                            {Qt::MetaModifier, Flags::command}};
    Flags flags;
    for (const auto& [key, flag] : table)
        if (modifiers & key)
            flags = flags | flag;
    return flags;
}

void sendMouse(const std::shared_ptr<NSView>& view, QMouseEvent& event) {
    const auto window = view->window();
    if (!window)
        return event.ignore();
    const Type type = typeOf(event);
    const bool isPress = type == typesOf(event.button()).down && event.button() != Qt::NoButton;
    NSEvent told{.type = type, .locationInWindow = placeInWindow(*view, event.position())};
    told.clickCount =
        isPress ? clicks().press(event.button(), event.globalPosition()) : clicks().count();
    told.modifierFlags = modifierFlags(event.modifiers());
    // A view may let the mouse through to those behind it, so that the window looks itself.
    const bool isOver = view->hitTest({view->frame().midX(), view->frame().midY()}) != nullptr;
    window->sendEvent(told, isOver ? view : nullptr);
    event.accept(); // the views around have been asked
}

void sendWheel(const std::shared_ptr<NSView>& view, QWheelEvent& event) {
    const auto window = view->window();
    if (!window)
        return event.ignore();
    constexpr double lineHeight = 20, step = 120;
    const QPointF by =
        event.hasPixelDelta()
            ? QPointF(event.pixelDelta())
            : QPointF(event.angleDelta()) * (QApplication::wheelScrollLines() * lineHeight / step);
    event.setAccepted(window->sendEvent({.type = Type::scrollWheel,
                                         .locationInWindow = placeInWindow(*view, event.position()),
                                         .modifierFlags = modifierFlags(event.modifiers()),
                                         .scrollingDeltaX = by.x(),
                                         .scrollingDeltaY = by.y()},
                                        view));
}

void sendLeave(const std::shared_ptr<NSView>& view, const QWidget& widget) {
    const auto window = view->window();
    if (!window)
        return;
    const QPointF at = widget.mapFromGlobal(QPointF(QCursor::pos()));
    const QWidget* const top = widget.window();
    const bool isInside = top->rect().contains(top->mapFromGlobal(QCursor::pos()));
    window->sendEvent({.type = isInside ? Type::mouseMoved : Type::mouseExited,
                       .locationInWindow = placeInWindow(*view, at)},
                      view);
}

// Keys

namespace {

struct NamedKey {
    int qt;
    const EventKeyCode* code;
    const char* characters;
};

const NamedKey* namedKey(int key) {
    using Code = EventKeyCode;
    static const NamedKey table[] = {
        {Qt::Key_Return, &Code::enter, "\r"},      {Qt::Key_Enter, &Code::enter, "\r"},
        {Qt::Key_Escape, &Code::escape, "\x1b"},   {Qt::Key_Tab, &Code::tab, "\t"},
        {Qt::Key_Backtab, &Code::tab, "\t"},       {Qt::Key_Space, &Code::space, " "},
        {Qt::Key_Backspace, &Code::delete_, "\b"}, {Qt::Key_Left, &Code::leftArrow, ""},
        {Qt::Key_Right, &Code::rightArrow, ""},    {Qt::Key_Up, &Code::upArrow, ""},
        {Qt::Key_Down, &Code::downArrow, ""}};
    const auto found = std::find_if(std::begin(table), std::end(table),
                                    [key](const NamedKey& named) { return named.qt == key; });
    return found == std::end(table) ? nullptr : found;
}

const EventKeyCode* codeOf(int key) {
    using Code = EventKeyCode;
    static const std::array letters{&Code::letterA, &Code::letterB, &Code::letterC, &Code::letterD,
                                    &Code::letterE, &Code::letterF, &Code::letterG, &Code::letterH,
                                    &Code::letterI, &Code::letterJ, &Code::letterK, &Code::letterL,
                                    &Code::letterM, &Code::letterN, &Code::letterO, &Code::letterP,
                                    &Code::letterQ, &Code::letterR, &Code::letterS, &Code::letterT,
                                    &Code::letterU, &Code::letterV, &Code::letterW, &Code::letterX,
                                    &Code::letterY, &Code::letterZ};
    static const std::array digits{&Code::digit0, &Code::digit1, &Code::digit2, &Code::digit3,
                                   &Code::digit4, &Code::digit5, &Code::digit6, &Code::digit7,
                                   &Code::digit8, &Code::digit9};
    if (key >= Qt::Key_A && key <= Qt::Key_Z)
        return letters[static_cast<std::size_t>(key - Qt::Key_A)];
    if (key >= Qt::Key_0 && key <= Qt::Key_9)
        return digits[static_cast<std::size_t>(key - Qt::Key_0)];
    const NamedKey* const named = namedKey(key);
    return named ? named->code : nullptr;
}

/// What the key types by itself; keys from Escape on are no characters of Qt's.
std::string charactersOf(int key) {
    if (const NamedKey* const named = namedKey(key))
        return named->characters;
    if (key == Qt::Key_Delete)
        return "\x7f";
    if (key >= Qt::Key_Escape || key <= 0)
        return {};
    return QString(QChar(static_cast<char16_t>(key))).toLower().toStdString();
}

bool isModifier(int key) {
    return (key >= Qt::Key_Shift && key <= Qt::Key_ScrollLock) || key == Qt::Key_AltGr ||
           key == Qt::Key_Super_L || key == Qt::Key_Super_R;
}

} // namespace

NSEvent keyEvent(const QKeyEvent& event) {
    NSEvent told{.type = event.type() == QEvent::KeyRelease ? Type::keyUp : Type::keyDown};
    told.modifierFlags = modifierFlags(event.modifiers());
    const EventKeyCode* const code = codeOf(event.key());
    told.keyCode = code ? code->rawValue : told.keyCode;
    told.charactersIgnoringModifiers = charactersOf(event.key());
    told.characters =
        namedKey(event.key()) ? told.charactersIgnoringModifiers : event.text().toStdString();
    told.isARepeat = event.isAutoRepeat();
    return told;
}

void sendKey(const std::shared_ptr<NSView>& view, QKeyEvent& event) {
    const auto window = view->window();
    // What its own view did not take comes to the widgets around, which must not ask again.
    const bool isFirst = window && window->firstResponder() == view && !isModifier(event.key());
    event.setAccepted(isFirst && window->sendEvent(keyEvent(event)));
}

} // namespace zorvan::internal
