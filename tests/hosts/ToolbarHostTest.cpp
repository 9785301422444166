// Toolbars and touch bars as the user meets them.

#include "HostTest.h"

#include <zorvan/interface/DividedToolbar.h>
#include <zorvan/interface/DynamicTouchBar.h>
#include <zorvan/interface/NSButton.h>
#include <zorvan/interface/NSMenuToolbarItem.h>
#include <zorvan/media/NSImage.h>

#include <QLabel>
#include <QToolButton>

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
            settings.menu->item(0)->setImage(NSImage::systemSymbol("star", "star"));
        }});
        field = bar->addItem({.createSearchField = [this](SearchFieldSettings& settings) {
            settings.placeholderString = "Search";
            settings.action = does("s");
        }});
        window->setContentSize({700, 200});
        setToolbar(*bar);
    }

    QToolButton* toolNamed(const char* name) const {
        for (auto* const button : top().findChildren<QToolButton*>())
            if (button->accessibleName() == QLatin1String(name))
                return button;
        return nullptr;
    }
    QWidget& trash() const { return *widgetFor(*bar->toolbar()->items()[0]->view()); }
    /// From the left edge of the window.
    int left(const QWidget& widget) const { return inWindow(widget).x(); }
    /// What stands in a menu when it opens.
    static QStringList linesOf(QMenu& menu) {
        Q_EMIT menu.aboutToShow();
        QStringList lines;
        for (const QAction* const action : menu.actions())
            lines.append(action->text());
        return lines;
    }
    static QAction* lineOf(QMenu& menu, const char* text) {
        const auto line = linesOf(menu).indexOf(QLatin1String(text));
        return line < 0 ? nullptr : menu.actions()[line];
    }

    std::shared_ptr<DynamicToolbar> bar = DynamicToolbar::create({"tools"});
    std::shared_ptr<NSToolbarItemGroup> group;
    std::shared_ptr<NSMenuToolbarItem> menuItem;
    std::shared_ptr<NSSearchField> field;
};

TEST_F(ToolbarHostTest, ItemsAreTheWidgetsOfTheirKindFromTheLeadingEdge) {
    ASSERT_TRUE(toolNamed("Date") && toolNamed("More"));
    EXPECT_LT(left(trash()), left(*toolNamed("Name")));
    EXPECT_GT(left(*widgetFor(*field)), 450) << "behind a flexible space";
    QApplication::setLayoutDirection(Qt::RightToLeft);
    EXPECT_GT(left(trash()), left(*toolNamed("Name")));
    EXPECT_LT(left(*widgetFor(*field)), 100);
    QApplication::setLayoutDirection(Qt::LeftToRight);
    EXPECT_TRUE(toolNamed("Name")->isChecked());
    for (int i = 0; i < 2; ++i) {
        toolNamed("Date")->click();
        EXPECT_EQ(group->selectedIndex(), 1);
        EXPECT_FALSE(toolNamed("Name")->isChecked());
        EXPECT_TRUE(toolNamed("Date")->isChecked()) << "one stays chosen";
    }
    group->setSelectedIndex(0);
    EXPECT_TRUE(toolNamed("Name")->isChecked());
    EXPECT_EQ(linesOf(*toolNamed("More")->menu()), QStringList("Inside"));
    EXPECT_FALSE(toolNamed("More")->menu()->actions()[0]->icon().isNull());
    toolNamed("More")->menu()->actions()[0]->trigger();
    EXPECT_EQ(done, "oom");
    EXPECT_EQ(trash().accessibleName(), "Delete");
    EXPECT_EQ(trash().toolTip(), "Delete");
    bar->toolbar()->items()[1]->setNavigational(true);
    EXPECT_GT(left(trash()), left(*toolNamed("Name"))) << "navigational ones come first";
    group->setEnabled(false);
    menuItem->setEnabled(false);
    EXPECT_FALSE(toolNamed("Name")->isEnabled() || toolNamed("More")->isEnabled());
    group->setControlRepresentation(NSToolbarItemGroup::ControlRepresentation::collapsed);
    ASSERT_TRUE(toolNamed("Order"));
    EXPECT_EQ(linesOf(*toolNamed("Order")->menu()), (QStringList{"Name", "Date"}));
}

TEST_F(ToolbarHostTest, ToolsFollowTheirItems) {
    const auto late = DynamicToolbarItem::create("late");
    late->setItem(NSToolbarItem::create("late"));
    bar->addItem(late);
    bar->reloadDisplayedItems();
    settle();
    late->item()->setTitle("R&D");
    ASSERT_TRUE(toolNamed("R&D"));
    EXPECT_TRUE(toolNamed("R&D")->shortcut().isEmpty()) << "an ampersand is no more than that";
    late->item()->setTitle("");
    EXPECT_FALSE(toolNamed("R&D"));
    late->item()->setImage(NSImage::systemSymbol("star", "Star"));
    EXPECT_TRUE(toolNamed("Star"));
    group->subitems()[1]->setEnabled(false);
    EXPECT_FALSE(toolNamed("Date")->isEnabled());
    group->subitems()[1]->setLabel("");
    EXPECT_EQ(toolNamed("Date")->toolTip(), "Date");
    menuItem->setShowsIndicator(false);
    EXPECT_FALSE(toolNamed("More")->styleSheet().isEmpty());
}

TEST_F(ToolbarHostTest, EveryToolIsReachedInANarrowWindow) {
    window->setContentMinSize({60, 60});
    content->addSubview(NSButton::create({.title = "Elsewhere"}));
    top().resize(120, 200);
    QToolButton* const overflow = toolNamed("More tools");
    ASSERT_TRUE(overflow && overflow->isVisible());
    EXPECT_LE(top().width(), 120);
    EXPECT_FALSE(widgetFor(*field)->isVisible());
    press(Qt::Key_F10);
    EXPECT_EQ(QApplication::focusWidget(), &trash());
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
    top().resize(40, 200);
    ASSERT_TRUE(lineOf(menu, "Delete"));
    lineOf(menu, "Delete")->trigger();
    EXPECT_EQ(done, "omsd");
    bar->toolbar()->items()[0]->view()->setHidden(true);
    EXPECT_FALSE(lineOf(menu, "Delete"));
    bar->toolbar()->items()[0]->view()->setHidden(false);
    top().resize(700, 200);
    EXPECT_FALSE(overflow->isVisible());
    EXPECT_TRUE(widgetFor(*field)->isVisible());
    // Typing survives a reload.
    widgetFor(*field)->setFocus();
    bar->itemSets()[0]->items()[0]->setRemovedFromBar(true);
    bar->reloadDisplayedItems();
    settle();
    QTest::keyClick(QApplication::focusWidget(), 'b');
    EXPECT_EQ(field->stringValue(), "ab");
}

TEST_F(ToolbarHostTest, AToolMayGoWhileItsActionAsks) {
    const QPointer<QWidget> tool = toolNamed("Date");
    group->setAction(Selector("ask", [&] {
        ask([&] { window->setToolbar(nullptr); });
        EXPECT_TRUE(tool) << "still in its event";
    }));
    QTest::mouseClick(tool, Qt::LeftButton);
    settle();
    EXPECT_FALSE(tool);
}

TEST_F(ToolbarHostTest, LabelsFollowTheDisplayMode) {
    using Mode = NSToolbar::DisplayMode;
    const auto labels = [this](Mode mode) {
        bar->toolbar()->setDisplayMode(mode);
        QStringList shown;
        for (const auto* const label : top().findChildren<QLabel*>())
            if (label->isVisible())
                shown.append(label->text());
        shown.sort();
        return shown;
    };
    const int height = top().height();
    const QStringList all{"Delete", "More", "Order"};
    EXPECT_EQ(labels(Mode::iconAndLabel), all);
    EXPECT_GT(top().height(), height) << "the content keeps its size";
    EXPECT_EQ(window->contentSize(), CGSize(700, 200));
    EXPECT_EQ(labels(Mode::labelOnly), all);
    EXPECT_EQ(trash().height(), 0);
    for (auto* const label : top().findChildren<QLabel*>())
        if (label->text() == "Delete" || label->text() == "Order")
            QTest::mouseClick(label, Qt::LeftButton);
    EXPECT_EQ(done, "d");
    EXPECT_TRUE(openMenu() && openMenu()->close()) << "of the group";
    EXPECT_EQ(labels(Mode::iconOnly), QStringList());
    EXPECT_GT(trash().height(), 0);
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
    setToolbar(*other);
    for (const double position : {150.0, 210.0}) {
        split->setPosition(position, 0);
        auto lines = top().findChildren<QFrame*>();
        lines.removeIf([](const QFrame* frame) { return frame->frameShape() != QFrame::VLine; });
        ASSERT_EQ(lines.size(), 1);
        EXPECT_NEAR(left(*lines[0]), position, 2);
        EXPECT_GT(lines[0]->height(), 20);
        other->toolbar()->setDisplayMode(NSToolbar::DisplayMode::labelOnly);
        settle();
        other->toolbar()->setDisplayMode(NSToolbar::DisplayMode::iconOnly);
    }
}

TEST_F(ToolbarHostTest, PartsThatAreNotShownKeepTheirPlace) {
    const auto divided = DividedToolbar::create();
    window->setToolbar(divided);
    QWidget& right = *widgetFor(*divided->rightItemView());
    const QPoint place = inWindow(right);
    divided->setShowCenterItemView(false);
    EXPECT_FALSE(widgetFor(*divided->centerItemView())->isVisible());
    EXPECT_EQ(inWindow(right), place);
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
    QWidget& shown = *widgetFor(*button);
    EXPECT_GE(shown.width(), 80);
    EXPECT_GT(inWindow(shown).y(), top().height() - 60);
    click(*button);
    EXPECT_EQ(done, "n");
    const auto* const overflow = shown.parentWidget()->parentWidget()->findChild<QToolButton*>();
    EXPECT_GT(overflow->palette().buttonText().color().lightness(), 200) << "on a dark ground";
    const auto later = NSButton::create({.title = "R&D"});
    content->addSubview(later);
    EXPECT_TRUE(widgetFor<QAbstractButton>(*later)->shortcut().isEmpty());
    widgetFor(*field)->setFocus();
    press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), widgetFor(*later)) << "before the touch bar";
    window->setTouchBar(nullptr);
    EXPECT_FALSE(widgetFor(*button) && widgetFor(*button)->isVisible());
}

} // namespace
