#include <zorvan/hosts/internal/toolButtons.h>

#include <zorvan/hosts/internal/icons.h>
#include <zorvan/hosts/internal/plainTexts.h>
#include <zorvan/hosts/internal/viewGeometry.h>

#include <QToolButton>

namespace zorvan::internal {

QString nameOf(const NSToolbarItem& item) {
    for (const std::string* const text : {&item.label(), &item.title(), &item.toolTip()})
        if (!text->empty())
            return toQString(*text);
    return item.image() ? toQString(item.image()->accessibilityDescription()) : QString();
}

void showOnButton(const NSToolbarItem& item, QToolButton& button) {
    button.setIcon(iconOf(item.image()));
    button.setToolTip(
        plainToolTip(toQString(item.toolTip().empty() ? item.label() : item.toolTip())));
    button.setAccessibleName(nameOf(item));
    button.setEnabled(item.isEnabled());
}

} // namespace zorvan::internal
