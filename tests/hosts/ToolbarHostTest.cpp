// Toolbars and touch bars as the user meets them.

#include "HostTest.h"

#include <zorvan/interface/DividedToolbar.h>
#include <zorvan/interface/DynamicTouchBar.h>
#include <zorvan/interface/NSButton.h>
#include <zorvan/interface/NSMenuToolbarItem.h>

#include <QLabel>
#include <QMenu>
#include <QToolBar>
#include <QToolButton>

#include <functional>

namespace {

class ToolbarHostTest : public HostTest {
protected:
    ToolbarHostTest() {
        bar->addItemSet();
        bar->addItem({.createImageButton = [this](ImageButtonSettings& settings) {
            settings.displayName = "Delete";
            settings.imageName = "trash";
            settings.action = does("d");
        }});
        group = bar->addItem({.createTitleGroup = [this](ButtonGroupSettings& settings) {
            settings.displayName = "Order";
            settings.titles = {"Name", "Date"};
            settings.selectedIndex = 0;
            settings.action = does("o");
        }});
        bar->addItem({.identifier = NSToolbarFlexibleSpaceItemIdentifier});
        menuItem = bar->addItem({.createMenuButton = [this](MenuButtonSettings& settings) {
            settings.displayName = "More";
            settings.menu = NSMenu::create();
            settings.menu->addItem(NSMenuItem::create("Inside", does("m")));
        }});
        field = bar->addItem({.createSearchField = [this](SearchFieldSettings& settings) {
            settings.placeholderString = "Search";
            settings.action = does("s");
        }});
        window->setContentSize({700, 200});
        window->setToolbar(bar->toolbar());
        bar->reloadDisplayedItems();
        settle();
    }

    Selector does(const char* what) {
        return Selector(what, [this, what] { done += what; });
    }
    QToolButton* toolNamed(const char* name) const {
        for (auto* const button : host->widget().findChildren<QToolButton*>())
            if (button->accessibleName() == QLatin1String(name))
                return button;
        return nullptr;
    }
    /// What stands in a menu when it opens.
    static QStringList linesOf(QMenu& menu) {
        Q_EMIT menu.aboutToShow();
        QStringList lines;
        for (const QAction* const action : menu.actions())
            lines.append(action->text());
        return lines;
    }
    static QAction* lineOf(QMenu& menu, const char* text) {
        for (QAction* const action : menu.actions())
            if (action->text() == QLatin1String(text))
                return action;
        return nullptr;
    }

    std::string done;
    std::shared_ptr<DynamicToolbar> bar = DynamicToolbar::create({"tools"});
    std::shared_ptr<NSToolbarItemGroup> group;
    std::shared_ptr<NSMenuToolbarItem> menuItem;
    std::shared_ptr<NSSearchField> field;
};

TEST_F(ToolbarHostTest, ItemsAreTheWidgetsOfTheirKind) {
    ASSERT_TRUE(toolNamed("Date") && toolNamed("More"));
    EXPECT_TRUE(toolNamed("Name")->isChecked());
    toolNamed("Date")->click();
    EXPECT_EQ(done, "o");
    EXPECT_EQ(group->selectedIndex(), 1);
    EXPECT_FALSE(toolNamed("Name")->isChecked());
    toolNamed("Date")->click();
    EXPECT_TRUE(toolNamed("Date")->isChecked()) << "one stays chosen";
    group->setSelectedIndex(0);
    settle();
    EXPECT_TRUE(toolNamed("Name")->isChecked());
    EXPECT_EQ(linesOf(*toolNamed("More")->menu()), QStringList("Inside"));
    toolNamed("More")->menu()->actions()[0]->trigger();
    EXPECT_EQ(done, "oom");
    EXPECT_TRUE(qobject_cast<QLineEdit*>(widgetFor(*field)));
    const auto& trash = bar->toolbar()->items()[0];
    EXPECT_EQ(widgetFor(*trash->view())->accessibleName(), "Delete");
    EXPECT_EQ(widgetFor(*trash->view())->toolTip(), "Delete");
    group->setEnabled(false);
    menuItem->setEnabled(false);
    settle();
    EXPECT_FALSE(toolNamed("Name")->isEnabled() || toolNamed("More")->isEnabled());
    group->setControlRepresentation(NSToolbarItemGroup::ControlRepresentation::collapsed);
    settle();
    ASSERT_TRUE(toolNamed("Order"));
    EXPECT_EQ(linesOf(*toolNamed("Order")->menu()), (QStringList{"Name", "Date"}));
}

TEST_F(ToolbarHostTest, EveryToolIsReachedInANarrowWindow) {
    window->setContentMinSize({60, 60});
    host->widget().resize(120, 200);
    settle();
    QToolButton* const overflow = toolNamed("More tools");
    ASSERT_TRUE(overflow && overflow->isVisible());
    EXPECT_EQ(overflow->toolTip(), "More tools");
    EXPECT_LE(host->widget().width(), 120);
    EXPECT_FALSE(widgetFor(*field)->isVisible());
    widgetFor(*bar->toolbar()->items()[0]->view())->setFocus();
    press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), overflow) << "reached by Tab";
    QMenu& menu = *overflow->menu();
    EXPECT_EQ(linesOf(menu).filter("Order"), QStringList("Order"));
    ASSERT_TRUE(lineOf(menu, "Order") && lineOf(menu, "More"));
    lineOf(menu, "Order")->menu()->actions()[1]->trigger();
    EXPECT_EQ(group->selectedIndex(), 1);
    lineOf(menu, "More")->menu()->actions()[0]->trigger();
    EXPECT_EQ(done, "om");
    auto* const edit = menu.findChild<QLineEdit*>();
    ASSERT_TRUE(edit) << "a search field of its own";
    QTest::keyClicks(edit, "a");
    EXPECT_EQ(field->stringValue(), "a");
    host->widget().resize(40, 200);
    settle();
    linesOf(menu);
    ASSERT_TRUE(lineOf(menu, "Delete"));
    lineOf(menu, "Delete")->trigger();
    EXPECT_EQ(done, "omsd");
    host->widget().resize(700, 200);
    settle();
    EXPECT_FALSE(overflow->isVisible());
    EXPECT_TRUE(widgetFor(*field)->isVisible());
    EXPECT_EQ(qobject_cast<QLineEdit*>(widgetFor(*field))->text(), "a");
}

TEST_F(ToolbarHostTest, StandsInOrderFromTheLeadingEdge) {
    const auto left = [this](QWidget& widget) {
        return widget.mapTo(&host->widget(), QPoint()).x();
    };
    QWidget& trash = *widgetFor(*bar->toolbar()->items()[0]->view());
    EXPECT_LT(left(trash), left(*toolNamed("Name")));
    EXPECT_GT(left(*widgetFor(*field)), 450) << "behind a flexible space";
    QApplication::setLayoutDirection(Qt::RightToLeft);
    settle();
    EXPECT_GT(left(trash), left(*toolNamed("Name")));
    EXPECT_LT(left(*widgetFor(*field)), 100);
    QApplication::setLayoutDirection(Qt::LeftToRight);
    bar->toolbar()->items()[1]->setNavigational(true);
    settle();
    EXPECT_GT(left(trash), left(*toolNamed("Name"))) << "navigational ones come first";
}

TEST_F(ToolbarHostTest, LabelsFollowTheDisplayMode) {
    const auto labels = [this] {
        QStringList shown;
        for (const auto* const label : host->widget().findChildren<QLabel*>())
            if (label->isVisible())
                shown.append(label->text());
        shown.sort();
        return shown;
    };
    using Mode = NSToolbar::DisplayMode;
    EXPECT_EQ(labels(), QStringList());
    const int height = host->widget().height();
    bar->toolbar()->setDisplayMode(Mode::iconAndLabel);
    settle();
    EXPECT_EQ(labels(), (QStringList{"Delete", "More", "Order"}));
    EXPECT_GT(host->widget().height(), height) << "the content keeps its size";
    EXPECT_EQ(window->contentSize(), CGSize(700, 200));
    bar->toolbar()->setDisplayMode(Mode::labelOnly);
    settle();
    EXPECT_EQ(labels(), (QStringList{"Delete", "More", "Order"}));
    bar->toolbar()->setDisplayMode(Mode::iconOnly);
    settle();
    EXPECT_EQ(labels(), QStringList());
}

TEST_F(ToolbarHostTest, TypingSurvivesAReload) {
    widgetFor(*field)->setFocus();
    const auto fresh = bar->itemSets()[0]->items()[0];
    for (const char letter : {'a', 'b', 'c'}) {
        QTest::keyClick(QApplication::focusWidget(), letter);
        fresh->setRemovedFromBar(!fresh->removedFromBar());
        bar->reloadDisplayedItems();
        settle();
    }
    EXPECT_EQ(field->stringValue(), "abc");
}

TEST_F(ToolbarHostTest, ASeparatorFollowsTheDivider) {
    const auto split = NSSplitView::create();
    split->addSubview(NSView::create());
    split->addSubview(NSView::create());
    window->setContentView(split);
    const auto other = DynamicToolbar::create({"other"});
    other->addItemSet();
    other->addItem(
        {.createSplitView = [&](SplitViewSettings& settings) { settings.splitView = split; }});
    window->setToolbar(other->toolbar());
    other->reloadDisplayedItems();
    for (const double position : {150.0, 210.0}) {
        split->setPosition(position, 0);
        settle();
        QFrame* line = nullptr;
        for (auto* const frame : host->widget().findChildren<QFrame*>())
            if (frame->frameShape() == QFrame::VLine)
                line = frame;
        ASSERT_TRUE(line);
        EXPECT_NEAR(line->mapTo(&host->widget(), QPoint()).x(), position, 2);
    }
}

TEST_F(ToolbarHostTest, PartsThatAreNotShownKeepTheirPlace) {
    const auto divided = DividedToolbar::create();
    window->setToolbar(divided);
    settle();
    QWidget& right = *widgetFor(*divided->rightItemView());
    const QPoint place = right.mapTo(&host->widget(), QPoint());
    divided->setShowCenterItemView(false);
    settle();
    EXPECT_FALSE(widgetFor(*divided->centerItemView())->isVisible());
    EXPECT_EQ(right.mapTo(&host->widget(), QPoint()), place);
}

TEST_F(ToolbarHostTest, ATouchBarStandsAtTheBottom) {
    const auto touchBar = DynamicTouchBar::create();
    touchBar->addItemSet({});
    const auto button =
        touchBar->addItem({.createButton = [this](DynamicTouchBarItemButtonSettings& settings) {
            settings.title = "Next";
            settings.minimumWidth = 80;
            settings.action = does("n");
        }});
    touchBar->reloadDisplayedItems();
    window->setTouchBar(touchBar->touchBar());
    settle();
    QWidget& shown = *widgetFor(*button);
    EXPECT_GE(shown.width(), 80);
    EXPECT_GT(shown.mapTo(&host->widget(), QPoint()).y(), host->widget().height() - 60);
    click(*button);
    EXPECT_EQ(done, "n");
    window->setTouchBar(nullptr);
    settle();
    EXPECT_FALSE(widgetFor(*button) && widgetFor(*button)->isVisible());
}

} // namespace
