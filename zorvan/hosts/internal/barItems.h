#pragma once

#include <QIcon>
#include <QString>
#include <functional>
#include <memory>
#include <vector>

class QMenu;
class QWidget;

namespace zorvan {
class NSToolbar;
class NSTouchBar;
} // namespace zorvan

namespace zorvan::internal {

/// What a bar shows at one place.
struct BarItem {
    /// Whose place it is: the item of the toolbar or touch bar, which stays the same object for as
    /// long as the same thing is shown.
    std::shared_ptr<const void> identity;
    enum class Kind { widget, space, flexibleSpace } kind = Kind::widget;
    /// A new widget; not called again for the same identity.
    std::function<QWidget*(QWidget*)> make = {};
    /// Brings a widget that `make` made up to date; empty for one that follows by itself.
    std::function<void(QWidget&)> update = {};
    /// What stands in the menu when there is no room.
    std::function<void(QMenu&)> addToMenu = {};
    /// Below it; empty for none.
    QString label = {};
    /// Whether the widget is shown, or the label alone.
    bool showsWidget = true;
    bool isEnabled = true;
    /// In points.
    double spaceWidth = 0;
    /// Where it begins at the least, from the leading edge of the window; empty for anywhere.
    std::function<double(const QWidget&)> wantedStart = {};
};
using BarItems = std::vector<BarItem>;

BarItems toolbarItems(const NSToolbar& toolbar);
BarItems touchBarItems(const NSTouchBar& touchBar);

} // namespace zorvan::internal
