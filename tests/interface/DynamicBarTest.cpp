#include <tests/Testing.h>

#include <zorvan/interface/DynamicToolbar.h>
#include <zorvan/interface/DynamicTouchBar.h>
#include <zorvan/interface/NSTrackingSeparatorToolbarItem.h>
#include <zorvan/interface/NSWindow.h>
#include <zorvan/media/NSImage.h>

namespace {

using Calls = std::vector<std::string>;
using Identifiers = std::vector<std::string>;

bool isUUID(const std::string& text) {
    return text.size() == 36 && text[8] == '-' && text[13] == '-' && text[18] == '-' &&
           text[23] == '-' && text.find_first_not_of("0123456789ABCDEF-") == std::string::npos;
}

/// What people see of an item.
std::string looks(const NSToolbarItem& item) {
    return item.label() + ", " + item.toolTip() + (item.isNavigational() ? ", navigational" : "");
}

/// What the bars of a window show after each change.
struct Watch : NSWindowObserver {
    explicit Watch(const NSWindow& watched) : window(watched) {}
    void toolbarDidChange() override {
        if (window.toolbar())
            add(window.toolbar()->itemIdentifiers());
    }
    void touchBarDidChange() override { add(window.touchBar()->defaultItemIdentifiers()); }
    void add(const Identifiers& identifiers) {
        shown.push_back(std::accumulate(identifiers.begin(), identifiers.end(), std::string()));
    }
    Calls take() { return std::exchange(shown, {}); }

    const NSWindow& window;
    Calls shown;
};

class DynamicBarTest : public testing::Test {
protected:
    DynamicBarTest() {
        window->setToolbar(bar->toolbar());
        window->setTouchBar(touchBar->touchBar());
        window->addObserver(watch);
    }
    /// The item that was built last.
    template <class Item = NSToolbarItem>
    std::shared_ptr<Item> built() const {
        return std::dynamic_pointer_cast<Item>(bar->itemSets()[0]->items().back()->item());
    }
    std::shared_ptr<DynamicToolbarItem> add(const std::string& identifier) {
        const auto item = bar->addItem({.identifier = identifier});
        item->setItem(NSToolbarItem::create(identifier));
        return item;
    }
    Identifiers shown() const { return bar->toolbar()->itemIdentifiers(); }

    std::shared_ptr<DynamicToolbar> bar = DynamicToolbar::create({"bar"});
    std::shared_ptr<DynamicTouchBar> touchBar = DynamicTouchBar::create();
    std::shared_ptr<NSWindow> window = NSWindow::create({200, 100});
    std::shared_ptr<Watch> watch = std::make_shared<Watch>(*window);
};

} // namespace

TEST_F(DynamicBarTest, BeginsAsItShould) {
    const NSToolbar& toolbar = *bar->toolbar();
    EXPECT_EQ(toolbar.identifier(), "bar");
    EXPECT_TRUE(toolbar.showsBaselineSeparator() && !toolbar.autosavesConfiguration());
    EXPECT_EQ(static_cast<int>(toolbar.displayMode()), 2);
    const auto other = DynamicToolbar::create()->toolbar()->identifier();
    EXPECT_TRUE(isUUID(other)) << other;
    EXPECT_NE(DynamicToolbar::create()->toolbar()->identifier(), other);
    add("dropped, for want of a set");
    const auto set = bar->addItemSet();
    add("b");
    bar->addItemSet();
    add("c");
    EXPECT_EQ(set->identifiers(), Identifiers{"b"});
}

TEST_F(DynamicBarTest, EditsTheToolbarOnlyWhenItsItemsChange) {
    bar->addItemSet();
    const auto a = add("a"), b = add("b");
    Calls updates;
    for (const auto& item : {a, b})
        item->setUpdate([&](DynamicToolbarItem& updated) {
            updates.push_back(updated.identifier());
            updates.push_back(bar->displayedItemSet() ? "again" : "before it is shown");
        });
    bar->reloadDisplayedItems();
    EXPECT_THAT(updates, ElementsAre("a", "before it is shown", "b", "before it is shown"));
    EXPECT_EQ(watch->take(), (Calls{"a", "ab"}));
    EXPECT_EQ(bar->toolbar()->items(), (std::vector{a->item(), b->item()}));
    bar->reloadDisplayedItems();
    EXPECT_TRUE(watch->take().empty());

    a->setRemovedFromBar(true);
    updates.clear();
    bar->reloadDisplayedItems();
    EXPECT_EQ(updates.size(), 4u) << "what is removed is updated too";
    EXPECT_EQ(watch->take(), (Calls{"b", "", "b"})) << "all go, from the first";
    NSToolbar& toolbar = *bar->toolbar();
    EXPECT_THAT(bar->toolbarAllowedItemIdentifiers(toolbar), ElementsAre("a", "b"));
    EXPECT_THAT(bar->toolbarSelectableItemIdentifiers(toolbar), IsEmpty());

    bar->setItemSets({});
    bar->reloadDisplayedItems();
    EXPECT_EQ(watch->take(), Calls{""});
    EXPECT_EQ(bar->displayedItemSet(), nullptr);
    EXPECT_THAT(bar->toolbarAllowedItemIdentifiers(toolbar), IsEmpty());
}

TEST_F(DynamicBarTest, ChoosesTheProvidedSetOrTheFirstEnabledOne) {
    Calls asked;
    bool first = true;
    std::shared_ptr<DynamicToolbarItemSet> provided;
    const auto one = bar->addItemSet([&] { return asked.push_back("one"), first; });
    const auto two = bar->addItemSet([&] { return asked.push_back("two"), true; });
    const auto reload = [&] {
        asked.clear();
        bar->reloadDisplayedItems();
        return bar->displayedItemSet();
    };
    EXPECT_EQ(reload(), one);
    EXPECT_EQ(asked, Calls{"one"});
    first = false;
    EXPECT_EQ(reload(), two);
    EXPECT_EQ(asked, (Calls{"one", "two"}));
    first = true;
    provided = DynamicToolbarItemSet::create();
    bar->setItemSetProvider([&] { return asked.push_back("provider"), provided; });
    EXPECT_EQ(reload(), provided);
    EXPECT_EQ(asked, (Calls{"provider", "one"}));
    provided = nullptr;
    EXPECT_EQ(reload(), one);
}

TEST_F(DynamicBarTest, GivesTheFirstItemOfAnIdentifier) {
    bar->addItemSet();
    bar->addItem({.identifier = "missing"});                            // is passed over
    bar->addItem({.identifier = NSToolbarFlexibleSpaceItemIdentifier}); // is left to the toolbar
    const auto first = add("a");
    for (const char* later : {"a", "missing"})
        add(later);
    NSToolbar& toolbar = *bar->toolbar();
    EXPECT_EQ(bar->toolbarItemForItemIdentifier(toolbar, "a", true), nullptr);
    bar->setDisplayedItemSet(bar->itemSets()[0]);
    EXPECT_EQ(bar->toolbarItemForItemIdentifier(toolbar, "a", true), first->item());
    EXPECT_EQ(bar->toolbarMakeItemForIdentifier(toolbar, "a"), first->item());
    EXPECT_EQ(bar->toolbarItemForItemIdentifier(toolbar, "missing", true), nullptr);
    EXPECT_EQ(bar->toolbarItemForItemIdentifier(toolbar, "b", true), nullptr);
    bar->reloadDisplayedItems();
    EXPECT_EQ(shown(), (Identifiers{"NSToolbarFlexibleSpaceItem", "a", "a"}));
    for (int i = 0; i < 5; ++i) // one of them makes the set move its items
        EXPECT_EQ(bar->addItem(bar->itemSets()[0]->items()[2]), first);
}

// What is called in the middle of a reload changes what the reload works on.

TEST_F(DynamicBarTest, LetsPredicatesAndUpdatesChangeTheSets) {
    auto set = bar->addItemSet();
    add("a");
    set->setIsEnabled([&, weak = std::weak_ptr(set)] {
        bar->setItemSets({});
        weak.lock()->setIsEnabled([] { return false; });
        set = bar->addItemSet();
        add("new");
        return true;
    });
    const std::weak_ptr watched = set;
    bar->reloadDisplayedItems();
    EXPECT_EQ(shown(), Identifiers{"a"});
    EXPECT_EQ(bar->displayedItemSet(), watched.lock());
    // And an update its set.
    int updates = 0;
    set->items()[0]->setUpdate([&](DynamicToolbarItem& item) {
        ++updates;
        item.setUpdate(nullptr);
        set->setItems({});
        add("b")->setUpdate([&](DynamicToolbarItem&) { ++updates; });
    });
    bar->reloadDisplayedItems();
    EXPECT_TRUE(watched.expired());
    EXPECT_EQ(updates, 1);
    EXPECT_EQ(shown(), Identifiers{"b"});
}

TEST_F(DynamicBarTest, ReloadsUntilNobodyAsksForIt) {
    int updates = 0, last = 3;
    bar->addItemSet([&] { return updates < last; });
    const auto item = add("a");
    item->setUpdate([&](DynamicToolbarItem&) {
        ++updates;
        bar->reloadDisplayedItems();
    });
    bar->addItemSet();
    add("b");
    bar->reloadDisplayedItems();
    EXPECT_EQ(updates, 3);
    EXPECT_EQ(shown(), Identifiers{"b"}) << "the set that is enabled now";
    last = 1000;
    EXPECT_DEATH(bar->reloadDisplayedItems(),
                 "The items of a bar asked to be reloaded 100 times in a row.");

    item->setUpdate([](DynamicToolbarItem&) { throw std::runtime_error("not now"); });
    EXPECT_THROW(bar->reloadDisplayedItems(), std::runtime_error);
    item->setUpdate([&](DynamicToolbarItem&) { ++updates; });
    bar->reloadDisplayedItems();
    EXPECT_EQ(updates, 4);
}

TEST_F(DynamicBarTest, ShowsNoDefaultItemsAndMayBeReleasedByAnUpdate) {
    const auto toolbar = bar->toolbar();
    bar->addItemSet();
    add("removed")->setRemovedFromBar(true);
    bar->reloadDisplayedItems();
    const auto window = NSWindow::create({200, 100});
    window->setToolbar(toolbar);
    EXPECT_TRUE(toolbar->items().empty());
    add("a")->setUpdate([&](DynamicToolbarItem&) { bar.reset(); });
    bar->reloadDisplayedItems();
    EXPECT_EQ(bar, nullptr);
    EXPECT_EQ(toolbar->itemIdentifiers(), Identifiers{"a"});
    EXPECT_EQ(toolbar->delegate(), nullptr);
}

// The builders

TEST_F(DynamicBarTest, BuildsImageButtons) {
    struct Model {
        void act() { ++acts; }
        int acts = 0;
    };
    const auto set = bar->addItemSet();
    const auto model = std::make_shared<Model>();
    const auto settle = [&](ImageButtonSettings& settings) {
        EXPECT_FALSE(settings.identifier || settings.displayName || settings.isNavigational ||
                     settings.imageName || settings.imageSize || settings.action);
        settings.displayName = "Back";
        settings.isNavigational = true;
        settings.imageName = "chevron.left";
        settings.action = Selector("act", &Model::act);
        settings.target = model;
    };
    const auto update = [](DynamicToolbarItem& updated, NSButton& control) {
        EXPECT_EQ(updated.identifier(), updated.item()->itemIdentifier());
        EXPECT_TRUE(isUUID(updated.identifier()));
        EXPECT_EQ(updated.item()->view().get(), &control);
        control.setTitle("updated");
    };
    const auto button = set->addItem({.createImageButton = settle, .update = update});
    EXPECT_EQ(looks(*built()), "Back, Back, navigational");
    EXPECT_EQ(button->title(), "");
    EXPECT_EQ(static_cast<int>(button->bezelStyle()), 11);
    EXPECT_EQ(button->image()->size(), CGSize(19, 19));
    EXPECT_EQ(button->image()->accessibilityDescription(), "chevron.left");
    button->performClick();
    EXPECT_EQ(model->acts, 1);
    bar->reloadDisplayedItems();
    EXPECT_EQ(button->title(), "updated");
}

TEST_F(DynamicBarTest, BuildsSearchFields) {
    bar->addItemSet();
    const auto given = NSSearchField::create();
    given->setPlaceholderString("old");
    given->setAction(Selector("old", [] {}));
    const auto field = bar->addItem({.createSearchField = [&](SearchFieldSettings& settings) {
        settings.displayName = "Search";
        settings.searchField = given;
    }});
    EXPECT_EQ(field, given);
    EXPECT_FALSE(field->placeholderString() || field->action());
    ASSERT_TRUE(built<NSSearchToolbarItem>());
    EXPECT_EQ(built<NSSearchToolbarItem>()->searchField(), field);
    EXPECT_EQ(looks(*built()), ", ");
    const auto made = bar->addItem({.createSearchField = [](SearchFieldSettings& settings) {
        settings.placeholderString = "Find";
    }});
    EXPECT_EQ(made->placeholderString(), "Find");
}

TEST_F(DynamicBarTest, BuildsSeparatorsAndMenus) {
    bar->addItemSet();
    const auto split = bar->addItem({.createSplitView = [](SplitViewSettings&) {}});
    const auto separator = built<NSTrackingSeparatorToolbarItem>();
    ASSERT_TRUE(separator);
    EXPECT_EQ(separator->splitView(), split);
    EXPECT_EQ(separator->dividerIndex(), 0);

    const auto plain = bar->addItem({.createMenuButton = [](MenuButtonSettings&) {}});
    EXPECT_TRUE(plain->showsIndicator() && plain->menu());
    const auto menu = NSMenu::create();
    const auto settle = [&](MenuButtonSettings& settings) {
        settings.identifier = "menu";
        settings.showsIndicator = false;
        settings.menu = menu;
        settings.displayName = "More";
        settings.imageName = "ellipsis";
        settings.imageSize = CGSize(12, 12);
    };
    const auto update = [](DynamicToolbarItem&, NSMenuToolbarItem& it) { it.setLabel("updated"); };
    const auto item = bar->addItem({.createMenuButton = settle, .update = update});
    EXPECT_EQ(item->itemIdentifier(), "menu");
    EXPECT_EQ(looks(*item), "More, More");
    EXPECT_FALSE(item->showsIndicator());
    EXPECT_EQ(item->menu(), menu);
    EXPECT_EQ(item->image()->size(), CGSize(12, 12));
    bar->reloadDisplayedItems();
    EXPECT_EQ(item->label(), "updated");
}

TEST_F(DynamicBarTest, BuildsGroups) {
    using Group = NSToolbarItemGroup;
    bar->addItemSet();
    // An image of a name by which there is a symbol too, and one that others have as well.
    const auto star = NSImage::create(CGSize(64, 64)), own = NSImage::create(CGSize(64, 64));
    ASSERT_TRUE(star->setName("star") && own->setName("interface test"));
    const auto images = bar->addItem({.createImageGroup = [](ButtonGroupSettings& settings) {
        settings.imageNames = {"star", "no such picture", "interface test"};
        settings.titles = {"Star", "Nothing", "Own"};
        settings.selectedIndex = 1;
    }});
    EXPECT_EQ(images->selectionMode(), Group::SelectionMode::selectOne);
    EXPECT_EQ(images->selectedIndex(), -1);
    ASSERT_EQ(images->subitems().size(), 2u);
    EXPECT_TRUE(images->subitems()[0]->image()->isTemplate());
    EXPECT_EQ(images->subitems()[1]->label(), "Own");
    EXPECT_EQ(images->subitems()[1]->image()->size(), CGSize(19, 19));
    EXPECT_EQ(own->size(), CGSize(64, 64));

    const auto titles = bar->addItem({.createTitleGroup = [](ButtonGroupSettings& settings) {
        settings.titles = {"Day", "Week"};
        settings.selectedIndex = 1;
        settings.selectionMode = Group::SelectionMode::selectAny;
        settings.controlRepresentation = Group::ControlRepresentation::collapsed;
        settings.displayName = "Span";
        settings.isNavigational = true;
    }});
    EXPECT_EQ(looks(*titles), "Span, Span, navigational");
    EXPECT_EQ(titles->controlRepresentation(), Group::ControlRepresentation::collapsed);
    titles->press(0);
    EXPECT_TRUE(titles->isSelected(0) && titles->isSelected(1));
    titles->press(1);
    EXPECT_TRUE(titles->isSelected(0) && !titles->isSelected(1));

    const auto subitem = NSToolbarItem::create("subitem");
    const auto given = bar->addItem({.createTitleGroup = [&](ButtonGroupSettings& settings) {
        settings.subitems = {subitem};
        settings.titles = {"replaced", "replaced"};
        settings.selectedIndex = 0;
    }});
    EXPECT_EQ(given->subitems(), std::vector{subitem});
    EXPECT_EQ(given->selectedIndex(), 0);
}

// Touch bars

TEST_F(DynamicBarTest, SetsIdentifiersOfTouchBarsOnEveryReload) {
    touchBar->addItem({.identifier = "dropped"});
    touchBar->reloadDisplayedItems();
    int updates = 0;
    touchBar->addItemSet([] { return true; });
    const auto a = touchBar->addItem({.identifier = "a"});
    a->setItem(NSTouchBarItem::create("a"));
    const auto b = touchBar->addItem({.identifier = "b"});
    b->setUpdate([&](DynamicTouchBarItem&) { ++updates; });
    touchBar->addItemSet([]() -> bool { throw std::logic_error("the second set was asked"); });
    touchBar->reloadDisplayedItems();
    b->setRemovedFromBar(true);
    touchBar->reloadDisplayedItems();
    touchBar->reloadDisplayedItems();
    EXPECT_EQ(updates, 3);
    EXPECT_EQ(watch->shown, (Calls{"", "ab", "a", "a"}));
    EXPECT_EQ(touchBar->touchBar()->items(), std::vector{a->item()});
    EXPECT_EQ(touchBar->makeItem("a"), a->item());
    EXPECT_EQ(touchBar->makeItem("b"), nullptr);
    touchBar->setItemSets({});
    touchBar->reloadDisplayedItems();
    EXPECT_EQ(watch->shown.back(), "");
    EXPECT_EQ(touchBar->makeItem("a"), nullptr);
}

TEST_F(DynamicBarTest, BuildsButtonsOfTouchBars) {
    const auto set = touchBar->addItemSet({});
    int acts = 0;
    const auto settle = [&](DynamicTouchBarItemButtonSettings& settings) {
        settings.minimumWidth = 80;
        settings.title = "Go";
        settings.imageName = "arrow.right";
        settings.imageSize = CGSize(14, 14);
        settings.imagePosition = NSCellImagePosition::imageRight;
        settings.tintColor = NSColor::red;
        settings.bezelColor = NSColor::blue;
        settings.action = Selector("go", [&] { ++acts; });
    };
    const auto update = [](DynamicTouchBarItem&, NSButton& it) { it.setTitle("Went"); };
    const auto button = touchBar->addItem({.createButton = settle, .update = update});
    EXPECT_EQ(button->title(), "Go");
    EXPECT_EQ(button->image()->size(), CGSize(14, 14));
    EXPECT_EQ(button->imagePosition(), NSCellImagePosition::imageRight);
    EXPECT_EQ(button->contentTintColor(), NSColor::red);
    EXPECT_EQ(button->bezelColor(), NSColor::blue);
    button->performClick();
    EXPECT_EQ(acts, 1);
    button->setFrame({0, 0, 20, 20});
    EXPECT_EQ(button->frame().size, CGSize(80, 20));
    EXPECT_EQ(set->items()[0]->item()->view(), button);
    touchBar->reloadDisplayedItems();
    EXPECT_EQ(button->title(), "Went");

    const auto nameless = [](DynamicTouchBarItemButtonSettings& settings) {
        settings.imageSize = CGSize(14, 14);
        settings.imagePosition = NSCellImagePosition::imageAbove;
    };
    const auto plain = touchBar->addItem({.createButton = nameless});
    EXPECT_EQ(plain->imagePosition(), NSCellImagePosition::noImage);
    EXPECT_FALSE(plain->image() || plain->contentTintColor() || plain->bezelColor());
    EXPECT_NE(set->items()[0]->identifier(), set->items()[1]->identifier());
}

TEST_F(DynamicBarTest, HoldsTheViewsOfTouchBarsInTheWindow) {
    touchBar->addItemSet({});
    const auto add = [&](double width) {
        const auto create = [=] { return NSView::create({0, 0, width, 20}); };
        return touchBar->addItem<NSView>({.create = create});
    };
    const auto left = add(60);
    touchBar->addItem({.identifier = NSTouchBarItemIdentifierFlexibleSpace});
    const auto right = add(40);
    touchBar->reloadDisplayedItems();
    window->layoutIfNeeded();
    EXPECT_EQ(left->convertToBase({}), CGPoint(0, 100)) << "above the content";
    EXPECT_EQ(right->convertToBase({}), CGPoint(60, 100));
    EXPECT_EQ(left->frame().size, CGSize(60, 30));
    bar->addItemSet();
    DynamicBarTest::add("t")->item()->setView(NSView::create({0, 0, 10, 25}));
    bar->reloadDisplayedItems();
    window->layoutIfNeeded();
    EXPECT_EQ(built()->view()->convertToBase({}), CGPoint(0, 100));
    EXPECT_EQ(left->convertToBase({}), CGPoint(0, 125)) << "above the toolbar";
    touchBar->itemSets()[0]->items()[0]->setRemovedFromBar(true);
    touchBar->reloadDisplayedItems();
    window->layoutIfNeeded();
    EXPECT_EQ(left->window(), nullptr);
    EXPECT_EQ(right->window(), window);
}
