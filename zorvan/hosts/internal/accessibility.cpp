#include <zorvan/hosts/internal/accessibility.h>

#include <zorvan/hosts/internal/ButtonWidget.h>
#include <zorvan/hosts/internal/GroupWidget.h>
#include <zorvan/hosts/internal/ViewMirror.h>
#include <zorvan/hosts/internal/ViewWidget.h>
#include <zorvan/hosts/internal/viewGeometry.h>

#include <QAccessible>
#include <QAccessibleWidget>

namespace zorvan::internal {

namespace {

QAccessible::Role roleOf(NSAccessibilityRole role) {
    switch (role) {
    case NSAccessibilityRole::group:
        return QAccessible::Grouping;
    case NSAccessibilityRole::button:
        return QAccessible::Button;
    case NSAccessibilityRole::checkBox:
        return QAccessible::CheckBox;
    case NSAccessibilityRole::radioButton:
        return QAccessible::RadioButton;
    case NSAccessibilityRole::menuButton:
        return QAccessible::ButtonMenu;
    case NSAccessibilityRole::textField:
        return QAccessible::EditableText;
    case NSAccessibilityRole::staticText:
        return QAccessible::StaticText;
    case NSAccessibilityRole::image:
        return QAccessible::Graphic;
    case NSAccessibilityRole::slider:
        return QAccessible::Slider;
    case NSAccessibilityRole::progressIndicator:
        return QAccessible::ProgressBar;
    case NSAccessibilityRole::list:
        return QAccessible::List;
    case NSAccessibilityRole::table:
        return QAccessible::Table;
    }
    return QAccessible::Grouping;
}

/// What a view says of itself. Its value is the description too, which every screen reader says.
class AccessibleView : public QAccessibleWidget {
public:
    explicit AccessibleView(QWidget* widget) : QAccessibleWidget(widget), view_(viewOf(widget)) {}

    QAccessible::Role role() const override { return roleOf(view_->accessibilityRole()); }
    QString text(QAccessible::Text kind) const override {
        const QString value = toQString(view_->accessibilityValue());
        if (kind == QAccessible::Name)
            return toQString(view_->accessibilityLabel());
        if (kind == QAccessible::Value || (kind == QAccessible::Description && !value.isEmpty()))
            return value;
        return QAccessibleWidget::text(kind);
    }

private:
    const std::shared_ptr<NSView> view_;
};

class AccessibleButton : public AccessibleView {
public:
    explicit AccessibleButton(ButtonWidget& button) : AccessibleView(&button), button_(&button) {}

    QStringList actionNames() const override {
        return QStringList(pressAction()) + AccessibleView::actionNames();
    }
    void doAction(const QString& name) override {
        if (name == pressAction())
            button_->click();
        else
            AccessibleView::doAction(name);
    }

private:
    ButtonWidget* const button_;
};

QAccessibleInterface* makeAccessible(const QString&, QObject* object) {
    if (auto* const button = dynamic_cast<ButtonWidget*>(object))
        return new AccessibleButton(*button);
    if (auto* const view = dynamic_cast<ViewWidget*>(object))
        return new AccessibleView(view);
    if (auto* const group = dynamic_cast<GroupWidget*>(object))
        return new QAccessibleWidget(group, QAccessible::Grouping);
    return nullptr;
}

} // namespace

void installAccessibility() { QAccessible::installFactory(makeAccessible); }

} // namespace zorvan::internal
