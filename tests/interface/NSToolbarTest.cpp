#include <tests/Testing.h>

#include <zorvan/interface/DividedToolbar.h>
#include <zorvan/interface/EmptyToolbar.h>
#include <zorvan/interface/NSMenuToolbarItem.h>
#include <zorvan/interface/NSToolbarItemGroup.h>
#include <zorvan/interface/NSTrackingSeparatorToolbarItem.h>
#include <zorvan/interface/NSWindow.h>
#include <zorvan/media/NSImage.h>

using Identifiers = std::vector<std::string>;

namespace {

const std::string space(NSToolbarFlexibleSpaceItemIdentifier);

/// Makes whatever is asked for, with a view of 40 x 20 points.
struct Giver : NSToolbarDelegate {
    std::shared_ptr<NSToolbarItem>
    toolbarItemForItemIdentifier(NSToolbar&, const std::string& identifier, bool) override {
        if (identifier == space)
            return nullptr;
        auto& item = items[identifier];
        if (!item) {
            item = NSToolbarItem::create(identifier);
            item->setView(NSView::create({0, 0, 40, 20}));
        }
        return item;
    }
    Identifiers toolbarDefaultItemIdentifiers(NSToolbar&) override { return {"x", "y"}; }
    Identifiers toolbarAllowedItemIdentifiers(NSToolbar&) override { return {}; }

    std::map<std::string, std::shared_ptr<NSToolbarItem>> items;
};

struct InWindow {
    explicit InWindow(const Identifiers& identifiers) {
        toolbar->setDelegate(giver);
        for (const auto& identifier : identifiers)
            toolbar->insertItem(identifier, static_cast<std::int64_t>(toolbar->items().size()));
        window->setToolbar(toolbar);
        window->layoutIfNeeded();
    }
    double left(const std::string& identifier) {
        return giver->items.at(identifier)->view()->convertToBase({}).x;
    }

    std::shared_ptr<Giver> giver = std::make_shared<Giver>();
    std::shared_ptr<NSToolbar> toolbar = NSToolbar::create("t");
    std::shared_ptr<NSWindow> window = NSWindow::create({400, 200});
};

} // namespace

TEST(DividedToolbar, StandsOnThreeViews) {
    const auto toolbar = DividedToolbar::create();
    EXPECT_EQ(toolbar->identifier(), "DividedToolbar");
    EXPECT_FALSE(toolbar->allowsUserCustomization() || toolbar->showsBaselineSeparator());
    EXPECT_EQ(toolbar->displayMode(), NSToolbar::DisplayMode::iconOnly);
    const Identifiers all{"LeftToolbarItem", "NSToolbarFlexibleSpaceItem", "CenterToolbarItem",
                          "NSToolbarFlexibleSpaceItem", "RightToolbarItem"};
    EXPECT_EQ(toolbar->toolbarAllowedItemIdentifiers(*toolbar), all);
    const auto item = [&](const char* identifier) {
        return toolbar->toolbarItemForItemIdentifier(*toolbar, identifier, true);
    };
    EXPECT_EQ(item("LeftToolbarItem"), toolbar->leftToolbarItem());
    EXPECT_EQ(item("CenterToolbarItem")->view(), toolbar->centerItemView());
    EXPECT_EQ(item("RightToolbarItem"), toolbar->rightToolbarItem());
    EXPECT_EQ(item("other"), nullptr);

    const auto window = NSWindow::create({500, 100});
    window->setToolbar(toolbar);
    window->layoutIfNeeded();
    EXPECT_EQ(toolbar->itemIdentifiers(), all);
    EXPECT_EQ(toolbar->leftItemView()->window(), window);
    EXPECT_TRUE(toolbar->showCenterItemView());
    toolbar->setShowCenterItemView(false);
    EXPECT_FALSE(toolbar->showCenterItemView());
    const auto mine = NSView::create({0, 0, 60, 20});
    mine->setHidden(true);
    toolbar->setLeftItemView(mine);
    EXPECT_EQ(toolbar->leftToolbarItem()->view(), mine);
    EXPECT_FALSE(toolbar->showLeftItemView());
    const auto other = DividedToolbar::create();
    other->setCenterItemView(mine);
    other->setRightItemView(nullptr);
    EXPECT_EQ(other->centerToolbarItem()->view(), mine) << "before the item is made";
    EXPECT_EQ(other->rightItemView()->frame(), CGRect(0, 0, 80, 32));
}

TEST(EmptyToolbar, ShowsASpaceAlone) {
    const auto toolbar = EmptyToolbar::create();
    EXPECT_EQ(toolbar->identifier(), "EmptyToolbar");
    const auto item = toolbar->toolbarItemForItemIdentifier(*toolbar, "any", true);
    EXPECT_EQ(item->itemIdentifier(), "any");
    EXPECT_NE(item, toolbar->toolbarItemForItemIdentifier(*toolbar, "any", true));
    const auto window = NSWindow::create({100, 100});
    window->setToolbar(toolbar);
    EXPECT_EQ(toolbar->itemIdentifiers(), Identifiers{space});
}

TEST(NSToolbar, HoldsTheViewsOfItsItemsInTheWindow) {
    InWindow shown({"a", space, "b", "c"});
    EXPECT_EQ(shown.left("a"), 0);
    EXPECT_EQ(shown.left("c"), 80);
    shown.giver->items.at("c")->setNavigational(true);
    shown.toolbar->removeItem(0);
    shown.window->layoutIfNeeded();
    EXPECT_EQ(shown.left("c"), 0);
    EXPECT_EQ(shown.left("b"), 40);
    const auto removed = shown.giver->items.at("a");
    EXPECT_FALSE(removed->view()->window() || removed->toolbar());
    // Its default items unless it was edited.
    InWindow untouched({});
    EXPECT_EQ(untouched.toolbar->itemIdentifiers(), (Identifiers{"x", "y"}));
    shown.window->setToolbar(untouched.toolbar);
    EXPECT_EQ(untouched.window->toolbar(), nullptr);
    EXPECT_EQ(shown.toolbar->window(), nullptr) << "another has taken its place";
    EXPECT_EQ(untouched.toolbar->items().size(), 2u);
    EXPECT_DEATH(untouched.toolbar->removeItem(2), "^A toolbar has no item to remove there.\n$");
    EXPECT_DEATH(untouched.toolbar->insertItem("a", -1),
                 "^A toolbar item cannot be inserted before the first place.\n$");
}

TEST(NSTrackingSeparatorToolbarItem, FollowsItsDivider) {
    InWindow shown({"a", space, "b"});
    const auto split = NSSplitView::create();
    split->addSubview(NSView::create());
    split->addSubview(NSView::create());
    shown.window->setContentView(split);
    split->setPosition(150, 0);
    const auto separator = NSTrackingSeparatorToolbarItem::create("s", split, 0);
    shown.giver->items["s"] = separator;
    shown.toolbar->insertItem("s", 2);
    const auto left = [&] {
        shown.window->layoutIfNeeded();
        return separator->dividerPosition().value_or(-1);
    };
    EXPECT_EQ(left(), 150);
    // The mouse takes hold of the divider and moves it.
    using Type = NSEvent::EventType;
    for (const auto& [type, x] : {std::pair(Type::leftMouseDown, 150),
                                  {Type::leftMouseDragged, 220},
                                  {Type::leftMouseUp, 220}})
        shown.window->sendEvent({.type = type, .locationInWindow = CGPoint(x, 50)});
    EXPECT_NEAR(left(), 220, 1);
    EXPECT_EQ(split->subviews()[1]->frame().x(), left() + 1);
    split->setPosition(5000, 0);
    EXPECT_EQ(split->position(0), 399);
    EXPECT_FALSE(split->position(1));
}

TEST(NSSplitView, KeepsLeastLengths) {
    const auto split = NSSplitView::create({0, 0, 301, 50});
    for (int i = 0; i < 2; ++i)
        split->addSubview(NSView::create());
    split->setMinimumLength(80, 0);
    split->setMinimumLength(100, 1);
    const auto at = [&](double position) {
        split->setPosition(position, 0);
        return split->position(0).value();
    };
    EXPECT_EQ(at(10), 80);
    EXPECT_EQ(at(150), 150);
    EXPECT_EQ(at(290), 200);
    for (const auto& [width, position] : {std::pair(241, 140), {161, 80}, {301, 200}}) {
        split->setFrame(CGRect(0, 0, width, 50));
        EXPECT_EQ(split->position(0), position) << "gives way, and comes back";
    }
    split->setCollapsible(true, 0);
    EXPECT_EQ(at(39), 0);
    EXPECT_EQ(at(41), 80);
    EXPECT_EQ(at(290), 200) << "the other one is not";
    split->setCollapsible(true, 1);
    EXPECT_EQ(at(290), 300);
    split->setMinimumLength(50, 7);
    EXPECT_EQ(split->minimumLength(7), 0) << "no such subview";
}

TEST(NSSplitView, IsHitALittleBesideItsDividersToo) {
    for (const bool isVertical : {true, false}) {
        const auto split = NSSplitView::create({20, 10, 101, 101});
        split->setVertical(isVertical);
        split->setBoundsOrigin({7, 5});
        for (int i = 0; i < 2; ++i)
            split->addSubview(NSView::create());
        split->setPosition(60, 0);
        split->layoutSubtreeIfNeeded();
        const auto isHit = [&](double along) {
            return split->hitTest(isVertical ? CGPoint(20 + along, 40)
                                             : CGPoint(40, 111 - along)) == split;
        };
        EXPECT_TRUE(isHit(57.5) && isHit(60.5) && isHit(63.5));
        EXPECT_FALSE(isHit(57) || isHit(64)) << "a subview";
    }
}

TEST(NSToolbarItem, ActsWhenItIsPressed) {
    Identifiers acts;
    const auto item = NSToolbarItem::create("i");
    item->setAction(Selector::withSender<NSToolbarItem>(
        "act", [&](NSToolbarItem& sender) { acts.push_back(sender.itemIdentifier()); }));
    const auto group = NSToolbarItemGroup::create({.itemIdentifier = "g", .titles = {"A", "B"}});
    group->setAction(Selector::withSender<NSToolbarItemGroup>(
        "pick", [&](auto& sender) { acts.push_back(std::to_string(sender.selectedIndex())); }));
    EXPECT_TRUE(item->sendAction());
    group->press(1);
    group->press(0);
    group->setEnabled(false);
    group->press(1);
    EXPECT_THAT(acts, ElementsAre("i", "1", "0"));
}

TEST(NSMenu, IsOpenedByItsHostAndPerformsActions) {
    const auto menu = NSMenu::create("m");
    int acts = 0;
    NSMenu::setHost([&](NSMenu& opened) { acts += &opened == menu.get(); });
    menu->popUp();
    NSMenu::setHost({});
    menu->popUp();
    EXPECT_EQ(acts, 1);
    const auto target = std::make_shared<int>();
    const auto star = NSImage::systemSymbol("star", "star");
    menu->addItem(NSMenuItem::create("one", Selector("act", [&] { ++acts; }), target));
    EXPECT_EQ(menu->item(0)->target(), target);
    menu->item(0)->setImage(star);
    EXPECT_EQ(menu->item(0)->image(), star);
    menu->addItem(NSMenuItem::separatorItem());
    menu->addItem(NSMenuItem::create("nothing"));
    EXPECT_TRUE(menu->performActionForItem(0));
    for (const std::int64_t none : {-1, 1, 2, 3})
        EXPECT_FALSE(menu->performActionForItem(none));
    menu->item(0)->setAction(Selector("clear", [&] { menu->removeAllItems(); }));
    EXPECT_TRUE(menu->performActionForItem(0));
    EXPECT_EQ(acts, 2);
    EXPECT_EQ(menu->numberOfItems(), 0);
}
