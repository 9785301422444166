#include <zorvan/hosts/internal/QtMenus.h>

#include <QApplication>
#include <QCursor>
#include <QMenu>

namespace zorvan::internal {

namespace {

QString textOf(const std::string& title) {
    // Qt takes an ampersand for a mark of the key that chooses the line.
    return QString::fromStdString(title).replace(QLatin1Char('&'), QLatin1String("&&"));
}

void fill(QMenu& shown, const std::shared_ptr<NSMenu>& menu, int depth) {
    constexpr int deepest = 16; // a menu may hold itself
    for (std::int64_t i = 0; i < menu->numberOfItems(); ++i) {
        const auto item = menu->item(i);
        if (item->isSeparatorItem()) {
            shown.addSeparator();
        } else if (item->submenu() && depth < deepest) {
            QMenu* const inner = shown.addMenu(textOf(item->title()));
            inner->setEnabled(item->isEnabled());
            fill(*inner, item->submenu(), depth + 1);
        } else {
            QAction* const action = shown.addAction(textOf(item->title()));
            action->setEnabled(item->isEnabled() && item->action());
            QObject::connect(action, &QAction::triggered, &shown,
                             [menu, i]() noexcept { menu->performActionForItem(i); });
        }
    }
}

} // namespace

void openMenu(NSMenu& menu) {
    // Wayland places a menu by the window that it belongs to.
    auto* const shown = new QMenu(QApplication::activeWindow());
    shown->setAttribute(Qt::WA_DeleteOnClose);
    fill(*shown, menu.shared_from_this(), 0);
    shown->popup(QCursor::pos());
}

} // namespace zorvan::internal
