#include <zorvan/hosts/internal/QtMenus.h>

#include <zorvan/hosts/internal/icons.h>
#include <zorvan/hosts/internal/viewGeometry.h>

#include <QAbstractButton>
#include <QApplication>
#include <QCursor>
#include <QKeySequence>
#include <QMenu>

namespace zorvan::internal {

namespace {

/// Shown beside the title; the window itself listens for it.
QString keyText(const NSMenuItem& item) {
    const std::string& key = item.keyEquivalent();
    if (key.empty())
        return {};
    using Flags = NSEvent::ModifierFlags;
    const std::pair<Flags, Qt::KeyboardModifier> table[] = {{Flags::shift, Qt::ShiftModifier},
                                                            {Flags::control, Qt::ControlModifier},
                                                            {Flags::option, Qt::AltModifier},
                                                            {Flags::command, Qt::MetaModifier}};
    Qt::KeyboardModifiers modifiers;
    for (const auto& [flag, modifier] : table)
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
    // Qt takes an ampersand for a mark of the key that chooses the line.
    const QString title = toQString(item.title()).replace(QLatin1Char('&'), QLatin1String("&&"));
    const QString keys = keyText(item);
    return keys.isEmpty() ? title : title + QLatin1Char('\t') + keys;
}

void fill(QMenu& shown, const std::shared_ptr<NSMenu>& menu, int depth) {
    constexpr int deepest = 16; // a menu may hold itself
    for (std::int64_t i = 0; i < menu->numberOfItems(); ++i) {
        const auto item = menu->item(i);
        if (item->isSeparatorItem()) {
            shown.addSeparator();
        } else if (item->submenu() && depth < deepest) {
            QMenu* const inner = shown.addMenu(iconOf(item->image()), textOf(*item));
            inner->setEnabled(item->isEnabled());
            fill(*inner, item->submenu(), depth + 1);
        } else {
            QAction* const action = shown.addAction(iconOf(item->image()), textOf(*item));
            action->setEnabled(item->isEnabled() && item->action());
            action->setCheckable(item->state());
            action->setChecked(item->state());
            QObject::connect(action, &QAction::triggered, &shown, [item]() noexcept {
                if (const auto holder = item->menu())
                    holder->performActionForItem(holder->index(*item));
            });
        }
    }
}

} // namespace

void fillMenu(QMenu& shown, const std::shared_ptr<NSMenu>& menu) { fill(shown, menu, 0); }

void openMenu(NSMenu& menu, QWidget* over, const QPoint& at) {
    // Wayland places a menu by the window that it belongs to.
    auto* const shown = new QMenu(over);
    shown->setAttribute(Qt::WA_DeleteOnClose);
    fillMenu(*shown, menu.shared_from_this());
    shown->popup(at);
}

void openMenu(NSMenu& menu) {
    auto* const focused = qobject_cast<QAbstractButton*>(QApplication::focusWidget());
    const bool isByKey = focused && !focused->underMouse();
    openMenu(menu, QApplication::activeWindow(),
             isByKey ? focused->mapToGlobal(focused->rect().bottomLeft()) : QCursor::pos());
}

} // namespace zorvan::internal
