#include <zorvan/hosts/internal/QtMenus.h>

#include <zorvan/hosts/internal/EventInProgress.h>
#include <zorvan/hosts/internal/icons.h>
#include <zorvan/hosts/internal/plainTexts.h>
#include <zorvan/hosts/internal/qtEvents.h>
#include <zorvan/hosts/internal/viewGeometry.h>

#include <QAbstractButton>
#include <QApplication>
#include <QContextMenuEvent>
#include <QCursor>
#include <QKeySequence>
#include <QMenu>
#include <QToolButton>
#include <utility>

namespace zorvan::internal {

namespace {

/// Shown beside the title; the window itself listens for it.
QString keyText(const NSMenuItem& item) {
    const std::string& key = item.keyEquivalent();
    if (key.empty())
        return {};
    Qt::KeyboardModifiers modifiers;
    for (const auto& [modifier, flag] : modifierKeys)
        if (item.keyEquivalentModifierMask().contains(flag))
            modifiers |= modifier;
    const std::pair<const char*, Qt::Key> named[] = {{"\r", Qt::Key_Return},
                                                     {"\b", Qt::Key_Backspace},
                                                     {"\x7f", Qt::Key_Delete},
                                                     {"\x1b", Qt::Key_Escape},
                                                     {" ", Qt::Key_Space}};
    for (const auto& [characters, code] : named)
        if (key == characters)
            return QKeySequence(QKeyCombination(modifiers, code))
                .toString(QKeySequence::NativeText);
    const QString before =
        QKeySequence(QKeyCombination(modifiers, Qt::Key_A)).toString(QKeySequence::NativeText);
    return before.chopped(1) + toQString(key).toUpper();
}

QString textOf(const NSMenuItem& item) {
    const QString title = withoutKeyMark(toQString(item.title()));
    const QString keys = keyText(item);
    return keys.isEmpty() ? title : title + QLatin1Char('\t') + keys;
}

void open(NSMenu& menu, QWidget* over, const QPoint& at) {
    // Wayland places a menu by the window that it belongs to.
    auto* const shown = new QMenu(over);
    shown->setAttribute(Qt::WA_DeleteOnClose);
    fillMenu(*shown, menu.shared_from_this());
    shown->popup(at);
}

} // namespace

QAction& addLine(QMenu& menu, const QIcon& icon, const QString& text, bool isEnabled,
                 std::function<void()> choose) {
    QAction& action = *menu.addAction(icon, text);
    action.setEnabled(isEnabled);
    QObject::connect(&action, &QAction::triggered, &menu, [choose = std::move(choose)]() noexcept {
        const EventInProgress inProgress;
        choose();
    });
    return action;
}

void setMenu(QToolButton& button, std::function<void(QMenu&)> fill) {
    auto* const menu = new QMenu(&button);
    QObject::connect(menu, &QMenu::aboutToShow, menu, [menu, fill = std::move(fill)]() noexcept {
        menu->clear();
        fill(*menu);
    });
    button.setMenu(menu);
    button.setPopupMode(QToolButton::InstantPopup);
}

void fillMenu(QMenu& shown, const std::shared_ptr<NSMenu>& menu, int depth) {
    constexpr int deepest = 16; // a menu may hold itself
    for (std::int64_t i = 0; i < menu->numberOfItems(); ++i) {
        const auto item = menu->item(i);
        if (item->isSeparatorItem()) {
            shown.addSeparator();
        } else if (item->submenu() && depth < deepest) {
            QMenu* const inner = shown.addMenu(iconOf(item->image()), textOf(*item));
            inner->setEnabled(item->isEnabled());
            fillMenu(*inner, item->submenu(), depth + 1);
        } else {
            QAction& action = addLine(shown, iconOf(item->image()), textOf(*item),
                                      item->isEnabled() && item->action(), [item] {
                                          if (const auto holder = item->menu())
                                              holder->performActionForItem(holder->index(*item));
                                      });
            action.setCheckable(item->state());
            action.setChecked(item->state());
        }
    }
}

void openMenu(NSMenu& menu) {
    auto* const focused = qobject_cast<QAbstractButton*>(QApplication::focusWidget());
    const bool isByKey = focused && !focused->underMouse();
    open(menu, QApplication::activeWindow(),
         isByKey ? focused->mapToGlobal(focused->rect().bottomLeft()) : QCursor::pos());
}

void openContextMenu(const std::shared_ptr<NSView>& view, QWidget& widget,
                     QContextMenuEvent& event) {
    const bool isByKey = event.reason() == QContextMenuEvent::Keyboard;
    const QPoint at = isByKey ? widget.rect().center() : event.pos();
    openContextMenu(view, toView(*view, at), widget, at, event);
}

void openContextMenu(const std::shared_ptr<NSView>& view, CGPoint asked, QWidget& widget, QPoint at,
                     QContextMenuEvent& event) {
    const auto menu = view->menu({.type = NSEvent::EventType::rightMouseDown,
                                  .locationInWindow = view->convertToBase(asked)});
    event.setAccepted(menu != nullptr);
    if (menu)
        open(*menu, &widget, widget.mapToGlobal(at));
}

} // namespace zorvan::internal
