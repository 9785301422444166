#include <zorvan/hosts/internal/GroupWidget.h>

#include <zorvan/hosts/internal/EventInProgress.h>
#include <zorvan/hosts/internal/QtMenus.h>
#include <zorvan/hosts/internal/icons.h>
#include <zorvan/hosts/internal/plainTexts.h>
#include <zorvan/hosts/internal/toolButtons.h>
#include <zorvan/hosts/internal/viewGeometry.h>

#include <QEvent>
#include <QHBoxLayout>
#include <QMenu>
#include <QToolButton>
#include <algorithm>
#include <utility>

namespace zorvan::internal {

namespace {

bool isChosenFrom(const NSToolbarItemGroup& group) {
    return group.selectionMode() != NSToolbarItemGroup::SelectionMode::momentary;
}

void fillWithSubitems(const std::shared_ptr<NSToolbarItemGroup>& group, QMenu& menu) {
    for (std::size_t i = 0; i < group->subitems().size(); ++i) {
        const auto& item = group->subitems()[i];
        const auto index = static_cast<std::int64_t>(i);
        QAction& action = addLine(menu, iconOf(item->image()), withoutKeyMark(nameOf(*item)),
                                  item->isEnabled() && group->isEnabled(),
                                  [group, index] { group->press(index); });
        action.setCheckable(isChosenFrom(*group));
        action.setChecked(group->isSelected(index));
    }
}

} // namespace

GroupWidget::GroupWidget(std::shared_ptr<NSToolbarItemGroup> group, QWidget* parent)
    : QWidget(parent), group_(std::move(group)) {
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    follow();
}

void GroupWidget::follow() {
    const bool isCollapsed =
        group_->controlRepresentation() == NSToolbarItemGroup::ControlRepresentation::collapsed;
    if (shown_ != group_->subitems() || isCollapsed != isCollapsed_) {
        shown_ = group_->subitems();
        isCollapsed_ = isCollapsed;
        makeButtons();
    }
    setEnabled(group_->isEnabled());
    setToolTip(plainToolTip(toQString(group_->toolTip())));
    setAccessibleName(nameOf(*group_));
    if (isCollapsed_)
        return followCollapsed();
    for (std::size_t i = 0; i < buttons_.size(); ++i)
        followButton(i);
}

void GroupWidget::makeButtons() {
    for (QToolButton* const button : std::exchange(buttons_, {}))
        retireWidget(*button); // it may be the one that was pressed
    for (std::size_t i = 0; i < (isCollapsed_ ? 1 : shown_.size()); ++i) {
        auto* const button = new QToolButton(this);
        button->setFocusPolicy(Qt::TabFocus);
        layout()->addWidget(button);
        buttons_.push_back(button);
        if (isCollapsed_) {
            setMenu(*button, [group = group_](QMenu& menu) { fillWithSubitems(group, menu); });
            continue;
        }
        connect(button, &QToolButton::clicked, this, [this, i]() noexcept {
            const EventInProgress inProgress;
            const auto group = group_;
            group->press(static_cast<std::int64_t>(i));
            follow(); // the group decides what is checked
        });
    }
}

void GroupWidget::followButton(std::size_t index) {
    const NSToolbarItem& item = *shown_[index];
    QToolButton& button = *buttons_[index];
    showOnButton(item, button);
    if (item.toolTip().empty())
        button.setToolTip(plainToolTip(nameOf(item))); // often only the image is seen
    button.setText(withoutKeyMark(toQString(item.title())));
    button.setCheckable(isChosenFrom(*group_));
    const bool isChecked = group_->isSelected(static_cast<std::int64_t>(index));
    button.setChecked(isChecked);
    // In the colours of what is selected, since a pressed button hardly shows on a dark ground.
    QPalette colours;
    if (isChecked) {
        colours.setBrush(QPalette::Button, palette().highlight());
        colours.setBrush(QPalette::ButtonText, palette().highlightedText());
    }
    button.setPalette(colours);
}

void GroupWidget::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        follow();
}

void GroupWidget::followCollapsed() {
    const auto selected =
        static_cast<std::size_t>(std::max<std::int64_t>(group_->selectedIndex(), 0));
    QToolButton& button = *buttons_.front();
    if (selected >= shown_.size())
        return;
    button.setIcon(iconOf(shown_[selected]->image()));
    button.setText(withoutKeyMark(toQString(shown_[selected]->title())));
    button.setAccessibleName(nameOf(*group_));
}

void addGroupToMenu(const std::shared_ptr<NSToolbarItemGroup>& group, QMenu& menu) {
    QMenu* const inner = menu.addMenu(iconOf(group->image()), withoutKeyMark(nameOf(*group)));
    inner->setEnabled(group->isEnabled());
    fillWithSubitems(group, *inner);
}

} // namespace zorvan::internal
