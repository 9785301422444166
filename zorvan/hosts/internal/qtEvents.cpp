#include <zorvan/hosts/internal/qtEvents.h>

#include <zorvan/hosts/internal/ViewMirror.h>
#include <zorvan/hosts/internal/viewGeometry.h>
#include <zorvan/hosts/qtmodels/internal/namedKeys.h>
#include <zorvan/interface/NSWindow.h>

#include <QApplication>
#include <QCursor>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QStyleHints>
#include <QWheelEvent>
#include <QWidget>
#include <algorithm>
#include <map>

namespace zorvan::internal {

namespace {

/// The place in a quick row of presses; of any other event that of the last press. There is one
/// mouse.
std::int64_t clickCount(const QMouseEvent& event, bool isPress) {
    static std::int64_t clicks = 0;
    static QElapsedTimer since;
    static QPointF place;
    static Qt::MouseButton button = Qt::NoButton;
    if (isPress) {
        const QStyleHints& hints = *QGuiApplication::styleHints();
        const QPointF away = event.globalPosition() - place;
        const bool goesOn = clicks > 0 && event.button() == button &&
                            since.elapsed() < hints.mouseDoubleClickInterval() &&
                            away.manhattanLength() <= hints.mouseDoubleClickDistance();
        clicks = goesOn ? clicks + 1 : 1;
        since.start();
        place = event.globalPosition();
        button = event.button();
    }
    return std::max<std::int64_t>(clicks, 1);
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

/// While a button is down on a view. The release goes to a menu or a dialog that opens meanwhile,
/// so that the view is told of one: far outside, where no button acts.
class PressWatch : public QObject {
public:
    static PressWatch& shared() {
        static PressWatch watch;
        return watch;
    }

    void begin(const std::shared_ptr<NSWindow>& window, Type release) {
        window_ = window;
        release_ = release;
        qApp->installEventFilter(this);
    }
    void end() {
        window_.reset();
        qApp->removeEventFilter(this);
    }

protected:
    bool eventFilter(QObject* receiver, QEvent* event) noexcept override {
        if (event->type() != QEvent::Show || !receiver->isWidgetType())
            return false;
        const auto& opened = *static_cast<QWidget*>(receiver);
        if (opened.windowType() == Qt::Popup || opened.isModal())
            release();
        return false;
    }

private:
    void release() {
        const auto window = window_.lock();
        end();
        if (window)
            window->sendEvent({.type = release_, .locationInWindow = {-1e6, -1e6}});
    }

    std::weak_ptr<NSWindow> window_;
    Type release_ = Type::leftMouseUp;
};

CGPoint placeInWindow(const NSView& view, const QPointF& point) {
    return view.convertToBase(toView(view, point));
}

/// What a key types that is no character of Qt's; null for any other key.
const char* typedBy(int key) {
    static const std::map<int, const char*> table{
        {Qt::Key_Return, "\r"}, {Qt::Key_Enter, "\r"},     {Qt::Key_Escape, "\x1b"},
        {Qt::Key_Tab, "\t"},    {Qt::Key_Backtab, "\t"},   {Qt::Key_Space, " "},
        {Qt::Key_Left, ""},     {Qt::Key_Backspace, "\b"}, {Qt::Key_Right, ""},
        {Qt::Key_Up, ""},       {Qt::Key_Down, ""}};
    const auto found = table.find(key);
    return found == table.end() ? nullptr : found->second;
}

const EventKeyCode* codeOf(int key) {
    return codeOfKey(key == Qt::Key_Enter     ? Qt::Key_Return
                     : key == Qt::Key_Backtab ? Qt::Key_Tab
                                              : key);
}

/// What the key types by itself; keys from Escape on are no characters of Qt's.
std::string charactersOf(int key) {
    if (const char* const typed = typedBy(key))
        return typed;
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

NSEvent::ModifierFlags modifierFlags(Qt::KeyboardModifiers modifiers) {
    NSEvent::ModifierFlags flags;
    for (const auto& [key, flag] : modifierKeys)
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
    if (isPress)
        PressWatch::shared().begin(window, typesOf(event.button()).up);
    else if (event.type() == QEvent::MouseButtonRelease)
        PressWatch::shared().end();
    NSEvent told{.type = type, .locationInWindow = placeInWindow(*view, event.position())};
    told.clickCount = clickCount(event, isPress);
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

NSEvent keyEvent(const QKeyEvent& event) {
    NSEvent told{.type = event.type() == QEvent::KeyRelease ? Type::keyUp : Type::keyDown};
    told.modifierFlags = modifierFlags(event.modifiers());
    const EventKeyCode* const code = codeOf(event.key());
    told.keyCode = code ? code->rawValue : told.keyCode;
    told.charactersIgnoringModifiers = charactersOf(event.key());
    told.characters =
        typedBy(event.key()) ? told.charactersIgnoringModifiers : event.text().toStdString();
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
