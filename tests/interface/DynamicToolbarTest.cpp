#include <tests/Testing.h>

#include <zorvan/interface/DynamicToolbar.h>
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

/// What a toolbar shows after each change.
struct Watch : NSWindowObserver {
    explicit Watch(const NSToolbar& watched) : toolbar(watched) {}
    void toolbarDidChange() override {
        std::string all;
        for (const std::string& identifier : toolbar.itemIdentifiers())
            all += identifier;
        shown.push_back(all);
    }
    Calls take() { return std::exchange(shown, {}); }

    const NSToolbar& toolbar;
    Calls shown;
};

class DynamicToolbarTest : public testing::Test {
protected:
    DynamicToolbarTest() {
        window->setToolbar(bar->toolbar());
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
    std::shared_ptr<NSWindow> window = NSWindow::create({200, 100});
    std::shared_ptr<Watch> watch = std::make_shared<Watch>(*bar->toolbar());
};

} // namespace

TEST_F(DynamicToolbarTest, BeginsAsItShould) {
    const NSToolbar& toolbar = *bar->toolbar();
    EXPECT_EQ(toolbar.identifier(), "bar");
    EXPECT_FALSE(toolbar.autosavesConfiguration());
    EXPECT_TRUE(toolbar.showsBaselineSeparator());
    EXPECT_EQ(static_cast<int>(toolbar.displayMode()), 2);
    EXPECT_EQ(toolbar.delegate(), bar);
    EXPECT_FALSE(bar->displayedItemSet() || !bar->itemSets().empty() || bar->itemSetProvider());
    const auto other = DynamicToolbar::create()->toolbar()->identifier();
    EXPECT_TRUE(isUUID(other)) << other;
    EXPECT_NE(DynamicToolbar::create()->toolbar()->identifier(), other);
    add("dropped, for want of a set");
    const auto set = bar->addItemSet();
    add("b");
    bar->addItemSet();
    add("c");
    EXPECT_EQ(set->identifiers(), Identifiers{"b"});
    EXPECT_TRUE(set->isEnabled()());
}

TEST_F(DynamicToolbarTest, EditsTheToolbarOnlyWhenItsItemsChange) {
    bar->addItemSet();
    const auto a = add("a"), b = add("b");
    bar->reloadDisplayedItems();
    EXPECT_EQ(watch->take(), (Calls{"a", "ab"}));
    EXPECT_EQ(bar->toolbar()->items(), (std::vector{a->item(), b->item()}));
    bar->reloadDisplayedItems();
    EXPECT_TRUE(watch->take().empty());

    a->setRemovedFromBar(true);
    bar->reloadDisplayedItems();
    EXPECT_EQ(watch->take(), (Calls{"b", "", "b"})) << "all go, from the first";
    EXPECT_EQ(shown(), Identifiers{"b"});
    EXPECT_EQ(bar->toolbarAllowedItemIdentifiers(*bar->toolbar()), (Identifiers{"a", "b"}));
    EXPECT_EQ(bar->toolbarDefaultItemIdentifiers(*bar->toolbar()), (Identifiers{"a", "b"}));
    EXPECT_TRUE(bar->toolbarSelectableItemIdentifiers(*bar->toolbar()).empty());

    bar->setItemSets({});
    bar->reloadDisplayedItems();
    EXPECT_EQ(watch->take(), Calls{""});
    EXPECT_EQ(bar->displayedItemSet(), nullptr);
    EXPECT_TRUE(bar->toolbarAllowedItemIdentifiers(*bar->toolbar()).empty());
}

TEST_F(DynamicToolbarTest, ChoosesTheProvidedSetOrTheFirstEnabledOne) {
    Calls asked;
    bool first = true, second = true;
    std::shared_ptr<DynamicToolbarItemSet> provided;
    const auto one = bar->addItemSet([&] { return asked.push_back("one"), first; });
    const auto two = bar->addItemSet([&] { return asked.push_back("two"), second; });
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
    second = false;
    EXPECT_EQ(reload(), nullptr);

    provided = DynamicToolbarItemSet::create();
    bar->setItemSetProvider([&] { return asked.push_back("provider"), provided; });
    EXPECT_EQ(reload(), provided);
    EXPECT_EQ(asked, (Calls{"provider", "one", "two"}));
    first = true;
    EXPECT_EQ(reload(), provided);
    EXPECT_EQ(asked, (Calls{"provider", "one"}));
    provided = nullptr;
    EXPECT_EQ(reload(), one);
}

TEST_F(DynamicToolbarTest, UpdatesBeforeItShowsTheSet) {
    Calls order;
    bar->addItemSet();
    for (const char* name : {"a", "b"})
        add(name)->setUpdate([&, this](DynamicToolbarItem& item) {
            EXPECT_EQ(bar->displayedItemSet(), nullptr);
            order.push_back(item.identifier());
        });
    bar->itemSets()[0]->items()[1]->setRemovedFromBar(true);
    bar->reloadDisplayedItems();
    EXPECT_EQ(order, (Calls{"a", "b"}));
    EXPECT_EQ(watch->take(), Calls{"a"});
}

TEST_F(DynamicToolbarTest, GivesTheFirstItemOfAnIdentifier) {
    bar->addItemSet();
    const auto first = add("a");
    add("a");
    bar->addItem({.identifier = "none"});
    NSToolbar& toolbar = *bar->toolbar();
    EXPECT_EQ(bar->toolbarItemForItemIdentifier(toolbar, "a", true), nullptr);
    bar->setDisplayedItemSet(bar->itemSets()[0]);
    EXPECT_EQ(bar->toolbarItemForItemIdentifier(toolbar, "a", true), first->item());
    EXPECT_EQ(bar->toolbarMakeItemForIdentifier(toolbar, "a"), first->item());
    EXPECT_EQ(bar->toolbarItemForItemIdentifier(toolbar, "none", true), nullptr);
    EXPECT_EQ(bar->toolbarItemForItemIdentifier(toolbar, "b", true), nullptr);
    // Spaces are left to the toolbar, and what is missing is passed over.
    bar->setItemSets({});
    bar->addItemSet();
    bar->addItem({.identifier = "missing"});
    bar->addItem({.identifier = NSToolbarFlexibleSpaceItemIdentifier});
    add("b");
    bar->reloadDisplayedItems();
    EXPECT_EQ(shown(), (Identifiers{"NSToolbarFlexibleSpaceItem", "b"}));
}

// What is called in the middle of a reload changes what the reload works on.

TEST_F(DynamicToolbarTest, LetsPredicatesAndUpdatesChangeTheSets) {
    auto set = bar->addItemSet();
    add("a");
    set->setIsEnabled([&, weak = std::weak_ptr(set)] {
        bar->setItemSets({});
        weak.lock()->setIsEnabled([] { return false; });
        bar->addItemSet();
        add("new");
        return true;
    });
    const std::weak_ptr watched = set;
    set.reset();
    bar->reloadDisplayedItems();
    EXPECT_EQ(shown(), Identifiers{"a"});
    EXPECT_EQ(bar->displayedItemSet(), watched.lock());
    bar->reloadDisplayedItems();
    EXPECT_EQ(shown(), Identifiers{"new"});
    EXPECT_TRUE(watched.expired());
    // And an update its set.
    bar->setItemSets({});
    set = bar->addItemSet();
    int updates = 0;
    add("a")->setUpdate([&](DynamicToolbarItem& item) {
        ++updates;
        item.setUpdate(nullptr);
        set->setItems({});
        add("b")->setUpdate([&](DynamicToolbarItem&) { ++updates; });
    });
    bar->reloadDisplayedItems();
    EXPECT_EQ(updates, 1);
    EXPECT_EQ(shown(), Identifiers{"b"});
}

TEST_F(DynamicToolbarTest, ReloadsUntilNobodyAsksForIt) {
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

TEST_F(DynamicToolbarTest, ShowsNoDefaultItemsAndMayBeReleasedByAnUpdate) {
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

namespace {

struct Model {
    void act() { ++acts; }
    int acts = 0;
};

} // namespace

TEST_F(DynamicToolbarTest, BuildsImageButtons) {
    bar->addItemSet();
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
    const auto button = bar->addItem({.createImageButton = settle, .update = update});
    EXPECT_EQ(looks(*built()), "Back, Back, navigational");
    EXPECT_EQ(built()->view(), button);
    EXPECT_EQ(button->title(), "");
    EXPECT_EQ(static_cast<int>(button->bezelStyle()), 11);
    EXPECT_EQ(button->image()->size(), CGSize(19, 19));
    EXPECT_EQ(button->image()->accessibilityDescription(), "chevron.left");
    button->performClick();
    EXPECT_EQ(model->acts, 1);
    bar->reloadDisplayedItems();
    EXPECT_EQ(button->title(), "updated");
}

TEST_F(DynamicToolbarTest, ResolvesImagesBySymbolThenByName) {
    bar->addItemSet();
    const auto image = [&](std::string name, std::optional<CGSize> size) {
        const auto settle = [&](ImageButtonSettings& settings) {
            settings.imageName = name;
            settings.imageSize = size;
        };
        return bar->addItem({.createImageButton = settle})->image();
    };
    const auto own = NSImage::create(CGSize(64, 64)), star = NSImage::create(CGSize(64, 64));
    ASSERT_TRUE(own->setName("interface test") && star->setName("star"));
    EXPECT_EQ(image("interface test", CGSize(30, 20))->size(), CGSize(30, 20));
    EXPECT_EQ(own->size(), CGSize(64, 64));
    EXPECT_TRUE(image("star", {})->isTemplate());
    EXPECT_EQ(image("no such picture", {}), nullptr);
}

TEST_F(DynamicToolbarTest, BuildsSearchFields) {
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

TEST_F(DynamicToolbarTest, BuildsSeparatorsAndMenus) {
    bar->addItemSet();
    const auto split = bar->addItem({.createSplitView = [](SplitViewSettings&) {}});
    const auto separator = built<NSTrackingSeparatorToolbarItem>();
    ASSERT_TRUE(separator);
    EXPECT_EQ(separator->splitView(), split);
    EXPECT_EQ(separator->dividerIndex(), 0);

    const auto plain = bar->addItem({.createMenuButton = [](MenuButtonSettings&) {}});
    EXPECT_TRUE(plain->showsIndicator());
    EXPECT_EQ(plain->menu()->numberOfItems(), 0);
    const auto menu = NSMenu::create();
    std::shared_ptr<NSToolbarItem> seen;
    const auto settle = [&](MenuButtonSettings& settings) {
        settings.identifier = "menu";
        settings.showsIndicator = false;
        settings.menu = menu;
        settings.displayName = "More";
        settings.imageName = "ellipsis";
        settings.imageSize = CGSize(12, 12);
    };
    const auto update = [&](DynamicToolbarItem&, NSMenuToolbarItem& updated) {
        seen = updated.shared_from_this();
    };
    const auto item = bar->addItem({.createMenuButton = settle, .update = update});
    EXPECT_EQ(item->itemIdentifier(), "menu");
    EXPECT_EQ(looks(*item), "More, More");
    EXPECT_FALSE(item->showsIndicator());
    EXPECT_EQ(item->menu(), menu);
    EXPECT_EQ(item->image()->size(), CGSize(12, 12));
    bar->reloadDisplayedItems();
    EXPECT_EQ(seen, item);
}

TEST_F(DynamicToolbarTest, BuildsGroups) {
    using Group = NSToolbarItemGroup;
    bar->addItemSet();
    const auto images = bar->addItem({.createImageGroup = [](ButtonGroupSettings& settings) {
        settings.imageNames = {"list.bullet", "no such picture", "square.grid.2x2"};
        settings.titles = {"List", "Nothing", "Grid"};
        settings.selectedIndex = 1;
    }});
    EXPECT_EQ(images->selectionMode(), Group::SelectionMode::selectOne);
    EXPECT_EQ(images->controlRepresentation(), Group::ControlRepresentation::automatic);
    ASSERT_EQ(images->subitems().size(), 2u);
    EXPECT_EQ(images->subitems()[1]->label(), "Grid");
    EXPECT_EQ(images->subitems()[1]->image()->size(), CGSize(19, 19));
    EXPECT_EQ(images->selectedIndex(), -1);

    const auto titles = bar->addItem({.createTitleGroup = [](ButtonGroupSettings& settings) {
        settings.titles = {"Day", "Week"};
        settings.selectedIndex = 1;
        settings.selectionMode = Group::SelectionMode::selectAny;
        settings.controlRepresentation = Group::ControlRepresentation::collapsed;
        settings.displayName = "Span";
        settings.isNavigational = true;
    }});
    EXPECT_EQ(titles->selectedIndex(), 1);
    EXPECT_EQ(titles->label(), "Span");
    EXPECT_TRUE(titles->isNavigational());
    EXPECT_EQ(titles->controlRepresentation(), Group::ControlRepresentation::collapsed);
    titles->press(0);
    EXPECT_TRUE(titles->isSelected(0) && titles->isSelected(1));
    titles->press(1);
    EXPECT_TRUE(titles->isSelected(0) && !titles->isSelected(1));

    const auto own = NSToolbarItem::create("own");
    const auto given = bar->addItem({.createTitleGroup = [&](ButtonGroupSettings& settings) {
        settings.subitems = {own};
        settings.titles = {"replaced", "replaced"};
        settings.selectedIndex = 0;
    }});
    EXPECT_EQ(given->subitems(), std::vector{own});
    EXPECT_EQ(given->selectedIndex(), 0);
}

TEST_F(DynamicToolbarTest, BuildsAnyView) {
    const auto set = bar->addItemSet();
    std::shared_ptr<NSSplitView> made;
    Calls order;
    const auto create = [&] { return made = NSSplitView::create({0, 0, 10, 10}); };
    const auto update = [&](DynamicToolbarItem& item, NSSplitView& updated) {
        order.push_back(item.identifier());
        EXPECT_EQ(&updated, made.get());
    };
    const auto view = set->addItem<NSSplitView>(
        {.identifier = "view", .displayName = "A view", .createView = create, .update = update});
    EXPECT_EQ(view, made);
    EXPECT_EQ(built()->view(), made);
    EXPECT_EQ(looks(*built()), "A view, A view");
    bar->reloadDisplayedItems();
    EXPECT_EQ(order, Calls{"view"});
}
