#include <zorvan/hosts/internal/accessibility.h>

#include <zorvan/hosts/internal/ButtonWidget.h>
#include <zorvan/hosts/internal/GroupWidget.h>
#include <zorvan/hosts/internal/ViewWidget.h>
#include <zorvan/hosts/internal/viewGeometry.h>

#include <QAccessible>
#include <QAccessibleWidget>
#include <map>

namespace zorvan::internal {

namespace {

QAccessible::Role roleOf(NSAccessibilityRole role) {
    using Role = NSAccessibilityRole;
    static const std::map<Role, QAccessible::Role> table{
        {Role::button, QAccessible::Button},
        {Role::checkBox, QAccessible::CheckBox},
        {Role::radioButton, QAccessible::RadioButton},
        {Role::menuButton, QAccessible::ButtonMenu},
        {Role::textField, QAccessible::EditableText},
        {Role::staticText, QAccessible::StaticText},
        {Role::image, QAccessible::Graphic},
        {Role::slider, QAccessible::Slider},
        {Role::progressIndicator, QAccessible::ProgressBar},
        {Role::list, QAccessible::List},
        {Role::table, QAccessible::Table}};
    const auto found = table.find(role);
    return found == table.end() ? QAccessible::Grouping : found->second;
}

/// What a view says of itself. Its value is the description too, which every screen reader says.
class AccessibleView : public QAccessibleWidget {
public:
    explicit AccessibleView(QWidget* widget)
        : QAccessibleWidget(widget), view_(viewOf(widget)),
          button_(qobject_cast<QAbstractButton*>(widget)) {}

    QAccessible::Role role() const override { return roleOf(view_->accessibilityRole()); }
    QString text(QAccessible::Text kind) const override {
        const QString value = toQString(view_->accessibilityValue());
        if (kind == QAccessible::Name)
            return toQString(view_->accessibilityLabel());
        if (kind == QAccessible::Value || (kind == QAccessible::Description && !value.isEmpty()))
            return value;
        return QAccessibleWidget::text(kind);
    }

    QStringList actionNames() const override {
        const QStringList usual = QAccessibleWidget::actionNames();
        return button_ ? QStringList(pressAction()) + usual : usual;
    }
    void doAction(const QString& name) override {
        if (button_ && name == pressAction())
            button_->click();
        else
            QAccessibleWidget::doAction(name);
    }

private:
    const std::shared_ptr<NSView> view_;
    /// Null for a view that is none.
    QAbstractButton* const button_;
};

QAccessibleInterface* makeAccessible(const QString&, QObject* object) {
    if (dynamic_cast<ButtonWidget*>(object) || dynamic_cast<ViewWidget*>(object))
        return new AccessibleView(static_cast<QWidget*>(object));
    if (auto* const group = dynamic_cast<GroupWidget*>(object))
        return new QAccessibleWidget(group, QAccessible::Grouping);
    return nullptr;
}

} // namespace

void installAccessibility() { QAccessible::installFactory(makeAccessible); }

} // namespace zorvan::internal
