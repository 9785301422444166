#include <zorvan/hosts/internal/barItems.h>

#include <zorvan/hosts/internal/EventInProgress.h>
#include <zorvan/hosts/internal/GroupWidget.h>
#include <zorvan/hosts/internal/QtMenus.h>
#include <zorvan/hosts/internal/icons.h>
#include <zorvan/hosts/internal/makeWidget.h>
#include <zorvan/hosts/internal/plainTexts.h>
#include <zorvan/hosts/internal/toolButtons.h>
#include <zorvan/hosts/internal/viewGeometry.h>
#include <zorvan/interface/NSButton.h>
#include <zorvan/interface/NSMenuToolbarItem.h>
#include <zorvan/interface/NSSearchToolbarItem.h>
#include <zorvan/interface/NSToolbar.h>
#include <zorvan/interface/NSTouchBar.h>
#include <zorvan/interface/NSTrackingSeparatorToolbarItem.h>

#include <QFrame>
#include <QMenu>
#include <QToolButton>
#include <QWidgetAction>
#include <algorithm>

namespace zorvan::internal {

namespace {

QString firstOf(const std::string& one, const std::string& other) {
    return toQString(one.empty() ? other : one);
}

// A view

/// As large as the bar has made the view.
void followSize(const NSView& view, QWidget& widget) {
    const QSize size = toQSize(view.frame().size);
    if (dynamic_cast<const NSSearchField*>(&view))
        widget.setFixedWidth(size.width());
    else
        widget.setFixedSize(size);
}

QWidget* makeViewWidget(const std::shared_ptr<NSView>& view, QWidget* parent) {
    QWidget* const widget = makeWidget(view, parent);
    followSize(*view, *widget);
    return widget;
}

void addViewToMenu(const std::shared_ptr<NSView>& view, const QString& label, QMenu& menu) {
    if (view->isHidden())
        return;
    const auto button = std::dynamic_pointer_cast<NSButton>(view);
    if (!button) {
        auto* const action = new QWidgetAction(&menu);
        action->setText(label);
        action->setDefaultWidget(makeViewWidget(view, &menu));
        return menu.addAction(action);
    }
    const QString text = firstOf(button->title(), view->accessibilityLabel());
    addLine(menu, iconOf(button->image()), withoutKeyMark(label.isEmpty() ? text : label),
            button->isEnabled(), [button] { button->performClick(); });
}

// An image that is pressed, or opens a menu

void followItem(const NSToolbarItem& item, QToolButton& button) {
    showOnButton(item, button);
    button.setText(withoutKeyMark(firstOf(item.title(), item.label())));
    button.setToolButtonStyle(item.image() && item.title().empty() ? Qt::ToolButtonIconOnly
                              : item.image()                       ? Qt::ToolButtonTextBesideIcon
                                                                   : Qt::ToolButtonTextOnly);
    const auto* const menuItem = dynamic_cast<const NSMenuToolbarItem*>(&item);
    const QString look = menuItem && !menuItem->showsIndicator()
                             ? QStringLiteral("QToolButton::menu-indicator { image: none; }")
                             : QString();
    if (button.styleSheet() != look)
        button.setStyleSheet(look);
}

QToolButton* makeButton(const std::shared_ptr<NSToolbarItem>& item, QWidget* parent) {
    auto* const button = new QToolButton(parent);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    const auto menuItem = std::dynamic_pointer_cast<NSMenuToolbarItem>(item);
    if (!menuItem) {
        QObject::connect(button, &QToolButton::clicked, button, [item]() noexcept {
            const EventInProgress inProgress;
            item->sendAction();
        });
        return button;
    }
    setMenu(*button, [menuItem](QMenu& menu) { fillMenu(menu, menuItem->menu()); });
    return button;
}

void addItemToMenu(const std::shared_ptr<NSToolbarItem>& item, QMenu& menu) {
    const QString text = withoutKeyMark(nameOf(*item));
    if (const auto menuItem = std::dynamic_pointer_cast<NSMenuToolbarItem>(item)) {
        QMenu* const inner = menu.addMenu(iconOf(item->image()), text);
        inner->setEnabled(item->isEnabled());
        return fillMenu(*inner, menuItem->menu());
    }
    addLine(menu, iconOf(item->image()), text, item->isEnabled(), [item] { item->sendAction(); });
}

// Which of these an item is

void describeGroup(const std::shared_ptr<NSToolbarItemGroup>& group, BarItem& bar) {
    bar.make = [group](QWidget* parent) { return new GroupWidget(group, parent); };
    bar.update = [](QWidget& widget) { static_cast<GroupWidget&>(widget).follow(); };
    bar.addToMenu = [group](QMenu& menu) { addGroupToMenu(group, menu); };
}

void describeSeparator(const std::shared_ptr<NSTrackingSeparatorToolbarItem>& separator,
                       BarItem& bar) {
    bar.make = [](QWidget* parent) {
        auto* const line = new QFrame(parent);
        line->setFrameStyle(QFrame::VLine | QFrame::Sunken);
        line->setFixedHeight(24);
        return line;
    };
    bar.wantedStart = [separator](const QWidget& row) {
        const std::optional<double> position = separator->dividerPosition();
        const int start =
            row.isRightToLeft()
                ? row.window()->width() - row.mapTo(row.window(), row.rect().topRight()).x() - 1
                : row.mapTo(row.window(), QPoint()).x();
        return position ? std::max(*position - start, 0.0) : -1;
    };
}

void describeView(const std::shared_ptr<NSView>& view, const QString& label, BarItem& bar) {
    bar.identity = view;
    bar.make = [view](QWidget* parent) { return makeViewWidget(view, parent); };
    bar.update = [view](QWidget& widget) { followSize(*view, widget); };
    bar.addToMenu = [view, label](QMenu& menu) { addViewToMenu(view, label, menu); };
}

BarItem toolbarItem(const std::shared_ptr<NSToolbarItem>& item, NSToolbar::DisplayMode mode) {
    using Mode = NSToolbar::DisplayMode;
    BarItem bar{.identity = item};
    if (item->itemIdentifier() == NSToolbarFlexibleSpaceItemIdentifier)
        bar.kind = BarItem::Kind::flexibleSpace;
    else if (item->itemIdentifier() == NSToolbarSpaceItemIdentifier)
        bar.kind = BarItem::Kind::space;
    constexpr double usualSpace = 24;
    bar.spaceWidth = usualSpace;
    if (bar.kind != BarItem::Kind::widget)
        return bar;
    bar.isEnabled = item->isEnabled();
    bar.showsWidget = mode != Mode::labelOnly;
    if (mode == Mode::iconAndLabel || mode == Mode::labelOnly)
        bar.label = toQString(item->label());
    if (const auto group = std::dynamic_pointer_cast<NSToolbarItemGroup>(item)) {
        describeGroup(group, bar);
    } else if (const auto separator =
                   std::dynamic_pointer_cast<NSTrackingSeparatorToolbarItem>(item)) {
        describeSeparator(separator, bar);
    } else if (item->view()) {
        describeView(item->view(), toQString(item->label()), bar);
    } else if (item->image() || !item->title().empty() ||
               std::dynamic_pointer_cast<NSMenuToolbarItem>(item)) {
        bar.make = [item](QWidget* parent) { return makeButton(item, parent); };
        bar.update = [item](QWidget& widget) {
            followItem(*item, static_cast<QToolButton&>(widget));
        };
        bar.addToMenu = [item](QMenu& menu) { addItemToMenu(item, menu); };
    }
    return bar;
}

} // namespace

BarItems toolbarItems(const NSToolbar& toolbar) {
    auto items = toolbar.items();
    std::stable_partition(items.begin(), items.end(),
                          [](const auto& item) { return item->isNavigational(); });
    BarItems shown;
    for (const auto& item : items)
        shown.push_back(toolbarItem(item, toolbar.displayMode()));
    return shown;
}

BarItems touchBarItems(const NSTouchBar& touchBar) {
    BarItems shown;
    for (const auto& item : touchBar.items()) {
        BarItem bar{.identity = item};
        const auto& identifier = item->identifier();
        if (const auto view = item->view()) {
            describeView(view, {}, bar);
        } else {
            bar.kind = identifier == NSTouchBarItemIdentifierFlexibleSpace
                           ? BarItem::Kind::flexibleSpace
                           : BarItem::Kind::space;
            bar.spaceWidth = identifier == NSTouchBarItemIdentifierFixedSpaceLarge   ? 32
                             : identifier == NSTouchBarItemIdentifierFixedSpaceSmall ? 8
                                                                                     : 0;
        }
        shown.push_back(std::move(bar));
    }
    return shown;
}

} // namespace zorvan::internal
