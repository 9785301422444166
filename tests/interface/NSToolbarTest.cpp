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
    void click(const NSView& view, CGPoint at) {
        const CGPoint place = view.convertToBase(at);
        window->sendEvent({.type = NSEvent::EventType::leftMouseDown, .locationInWindow = place});
        window->sendEvent({.type = NSEvent::EventType::leftMouseUp, .locationInWindow = place});
    }

    std::shared_ptr<Giver> giver = std::make_shared<Giver>();
    std::shared_ptr<NSToolbar> toolbar = NSToolbar::create("t");
    std::shared_ptr<NSWindow> window = NSWindow::create({400, 200});
};

} // namespace

TEST(DividedToolbar, standsOnThreeViews) {
    const auto toolbar = DividedToolbar::create();
    EXPECT_EQ(toolbar->identifier(), "DividedToolbar");
    EXPECT_EQ(DividedToolbar::create("d")->identifier(), "d");
    EXPECT_FALSE(toolbar->allowsUserCustomization());
    EXPECT_FALSE(toolbar->showsBaselineSeparator());
    EXPECT_EQ(toolbar->displayMode(), NSToolbar::DisplayMode::iconOnly);
    EXPECT_EQ(toolbar->delegate(), toolbar);
    const Identifiers all{"LeftToolbarItem", "NSToolbarFlexibleSpaceItem", "CenterToolbarItem",
                          "NSToolbarFlexibleSpaceItem", "RightToolbarItem"};
    EXPECT_EQ(toolbar->toolbarDefaultItemIdentifiers(*toolbar), all);
    EXPECT_EQ(toolbar->toolbarAllowedItemIdentifiers(*toolbar), all);
    const auto item = [&](const char* identifier) {
        return toolbar->toolbarItemForItemIdentifier(*toolbar, identifier, true);
    };
    EXPECT_EQ(item("LeftToolbarItem"), toolbar->leftToolbarItem());
    EXPECT_EQ(item("CenterToolbarItem")->view(), toolbar->centerItemView());
    EXPECT_EQ(item("RightToolbarItem"), item("RightToolbarItem"));
    EXPECT_EQ(item("other"), nullptr);
    EXPECT_EQ(toolbar->leftItemView()->frame(), CGRect(0, 0, 80, 32));

    const auto window = NSWindow::create({500, 100});
    window->setToolbar(toolbar);
    window->layoutIfNeeded();
    EXPECT_EQ(toolbar->itemIdentifiers(), all);
    EXPECT_EQ(toolbar->leftItemView()->convertToBase({}).x, 12);
    EXPECT_EQ(toolbar->centerItemView()->convertToBase({40, 0}).x, 250);
    EXPECT_EQ(toolbar->rightItemView()->convertToBase({80, 0}).x, 488);
    EXPECT_TRUE(toolbar->showCenterItemView());
    toolbar->setShowCenterItemView(false);
    EXPECT_TRUE(toolbar->centerItemView()->isHidden());
    window->layoutIfNeeded();
    EXPECT_EQ(toolbar->rightItemView()->convertToBase({80, 0}).x, 488);

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

TEST(EmptyToolbar, showsASpaceAlone) {
    const auto toolbar = EmptyToolbar::create();
    EXPECT_EQ(toolbar->identifier(), "EmptyToolbar");
    EXPECT_FALSE(toolbar->showsBaselineSeparator());
    EXPECT_EQ(toolbar->toolbarAllowedItemIdentifiers(*toolbar), Identifiers{space});
    const auto item = toolbar->toolbarItemForItemIdentifier(*toolbar, "any", true);
    EXPECT_EQ(item->itemIdentifier(), "any");
    EXPECT_NE(item, toolbar->toolbarItemForItemIdentifier(*toolbar, "any", true));
    const auto window = NSWindow::create({100, 100});
    window->setToolbar(toolbar);
    EXPECT_EQ(toolbar->itemIdentifiers(), Identifiers{space});
}

TEST(NSToolbar, placesItsItems) {
    InWindow shown({"a", space, "b", "c"});
    EXPECT_EQ(shown.left("a"), 12);
    EXPECT_EQ(shown.left("b"), 300);
    EXPECT_EQ(shown.left("c"), 348);
    shown.giver->items.at("c")->setNavigational(true);
    shown.toolbar->removeItem(0);
    shown.window->layoutIfNeeded();
    EXPECT_EQ(shown.left("c"), 12);
    EXPECT_EQ(shown.left("b"), 348);
    EXPECT_EQ(shown.giver->items.at("a")->view()->window(), nullptr);
    EXPECT_EQ(shown.giver->items.at("a")->toolbar(), nullptr);
}

TEST(NSToolbar, keepsWhatFindsNoRoomOutOfSight) {
    InWindow shown({"a", "b", "c", "d"});
    shown.window->setContentSize({150, 100});
    shown.window->layoutIfNeeded();
    const auto isInside = [&](const char* name) {
        const CGPoint middle = shown.giver->items.at(name)->view()->convertToBase({20, 10});
        return shown.window->size().rect().contains(middle) && middle.y > 100;
    };
    EXPECT_TRUE(isInside("a") && isInside("b"));
    EXPECT_FALSE(isInside("c") || isInside("d"));
}

TEST(NSToolbar, showsItsDefaultItemsUnlessItWasEdited) {
    InWindow untouched({});
    EXPECT_EQ(untouched.toolbar->itemIdentifiers(), (Identifiers{"x", "y"}));
    const auto other = NSWindow::create({100, 100});
    other->setToolbar(untouched.toolbar);
    EXPECT_EQ(untouched.window->toolbar(), nullptr);
    EXPECT_EQ(untouched.toolbar->window(), other);
    EXPECT_EQ(untouched.toolbar->items().size(), 2u);
    const auto toolbar = NSToolbar::create("t");
    EXPECT_DEATH(toolbar->removeItem(0), "^A toolbar has no item to remove there.\n$");
    EXPECT_DEATH(toolbar->insertItem("a", -1),
                 "^A toolbar item cannot be inserted before the first place.\n$");
}

TEST(NSTrackingSeparatorToolbarItem, followsItsDivider) {
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
        return separator->shownView()->convertToBase({}).x;
    };
    EXPECT_EQ(left(), 150);
    EXPECT_EQ(shown.left("b"), 159);
    // The mouse takes hold of the divider and moves it.
    using Type = NSEvent::EventType;
    shown.window->sendEvent({.type = Type::leftMouseDown, .locationInWindow = {150, 50}});
    shown.window->sendEvent({.type = Type::leftMouseDragged, .locationInWindow = {220, 60}});
    shown.window->sendEvent({.type = Type::leftMouseUp, .locationInWindow = {220, 60}});
    EXPECT_NEAR(left(), 220, 1);
    split->setPosition(5000, 0);
    EXPECT_EQ(split->position(0), 399);
    EXPECT_FALSE(split->position(1));
}

TEST(NSToolbarItem, actsWhenItIsPressed) {
    InWindow shown({"a"});
    std::vector<std::string> acts;
    const auto item = NSToolbarItem::create("i");
    item->setImage(NSImage::systemSymbol("star"));
    item->setAction(Selector::withSender<NSToolbarItem>(
        "act", [&](NSToolbarItem& sender) { acts.push_back(sender.itemIdentifier()); }));
    const auto menu = NSMenuToolbarItem::create("m");
    NSMenu::setHost([&](NSMenu& opened) { acts.push_back(opened.title()); });
    menu->setImage(NSImage::systemSymbol("ellipsis"));
    const auto group = NSToolbarItemGroup::create({.itemIdentifier = "g", .titles = {"A", "B"}});
    group->setAction(
        Selector::withSender<NSToolbarItemGroup>("pick", [&](NSToolbarItemGroup& sender) {
            acts.push_back(std::to_string(sender.selectedIndex()));
        }));
    for (const auto& each : std::vector<std::shared_ptr<NSToolbarItem>>{item, menu, group}) {
        shown.giver->items[each->itemIdentifier()] = each;
        shown.toolbar->insertItem(each->itemIdentifier(), 9);
    }
    shown.window->layoutIfNeeded();
    const auto clickMiddle = [&](const std::shared_ptr<NSToolbarItem>& clicked, double share) {
        const auto view = clicked->shownView();
        shown.click(*view, {view->bounds().width() * share, 10});
    };
    clickMiddle(item, 0.5);
    clickMiddle(menu, 0.5);
    clickMiddle(group, 0.9);
    clickMiddle(group, 0.1);
    EXPECT_EQ(acts, (Identifiers{"i", "", "1", "0"}));
    NSMenu::setHost({});
    item->setEnabled(false);
    shown.window->layoutIfNeeded();
    clickMiddle(item, 0.5);
    EXPECT_EQ(acts.size(), 4u);
}

TEST(NSMenu, performsTheActionsOfItsItems) {
    const auto menu = NSMenu::create("m");
    int acts = 0;
    menu->addItem(NSMenuItem::create("one", Selector("act", [&] { ++acts; })));
    menu->addItem(NSMenuItem::separatorItem());
    menu->addItem(NSMenuItem::create("nothing"));
    EXPECT_TRUE(menu->performActionForItem(0));
    for (const std::int64_t none : {-1, 1, 2, 3})
        EXPECT_FALSE(menu->performActionForItem(none));
    menu->item(0)->setAction(Selector("clear", [&] { menu->removeAllItems(); }));
    EXPECT_TRUE(menu->performActionForItem(0));
    EXPECT_EQ(acts, 1);
    EXPECT_EQ(menu->numberOfItems(), 0);
}
