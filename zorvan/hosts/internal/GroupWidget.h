#pragma once

#include <zorvan/interface/NSToolbarItemGroup.h>

#include <QWidget>
#include <memory>
#include <vector>

class QMenu;
class QToolButton;

namespace zorvan::internal {

/// A group of toolbar items: a button for each, or one with a menu when the group is collapsed.
class GroupWidget : public QWidget {
public:
    GroupWidget(std::shared_ptr<NSToolbarItemGroup> group, QWidget* parent);

    void follow();

protected:
    void changeEvent(QEvent* event) override;

private:
    void makeButtons();
    void followButton(std::size_t index);
    void followCollapsed();

    const std::shared_ptr<NSToolbarItemGroup> group_;
    std::vector<QToolButton*> buttons_;
    std::vector<std::shared_ptr<NSToolbarItem>> shown_;
    bool isCollapsed_ = false;
};

/// A menu of its own, with check marks at what is selected.
void addGroupToMenu(const std::shared_ptr<NSToolbarItemGroup>& group, QMenu& menu);

} // namespace zorvan::internal
