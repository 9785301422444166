#include <tests/Testing.h>

#include <zorvan/interface/DynamicTouchBar.h>
#include <zorvan/interface/NSWindow.h>
#include <zorvan/media/NSImage.h>

namespace {

using Calls = std::vector<std::string>;

/// The identifiers of a touch bar each time they are set.
struct Watch : NSWindowObserver {
    explicit Watch(const NSTouchBar& watched) : touchBar(watched) {}
    void touchBarDidChange() override {
        std::string all;
        for (const std::string& identifier : touchBar.defaultItemIdentifiers())
            all += identifier;
        calls.push_back(all);
    }
    const NSTouchBar& touchBar;
    Calls calls;
};

class DynamicTouchBarTest : public testing::Test {
protected:
    DynamicTouchBarTest() {
        window->setTouchBar(bar->touchBar());
        window->addObserver(watch);
    }
    std::shared_ptr<DynamicTouchBar> bar = DynamicTouchBar::create();
    std::shared_ptr<NSWindow> window = NSWindow::create({300, 100});
    std::shared_ptr<Watch> watch = std::make_shared<Watch>(*bar->touchBar());
};

} // namespace

TEST_F(DynamicTouchBarTest, SetsItsIdentifiersOnEveryReload) {
    EXPECT_EQ(bar->touchBar()->delegate(), bar);
    EXPECT_TRUE(bar->touchBar()->defaultItemIdentifiers().empty());
    bar->addItem({.identifier = "dropped"});
    bar->reloadDisplayedItems();
    int updates = 0;
    bar->addItemSet([] { return true; });
    const auto a = bar->addItem({.identifier = "a"});
    a->setItem(NSTouchBarItem::create("a"));
    const auto b = bar->addItem({.identifier = "b"});
    b->setUpdate([&](DynamicTouchBarItem&) { ++updates; });
    bar->addItemSet([]() -> bool { throw std::logic_error("the second set was asked"); });
    bar->reloadDisplayedItems();
    b->setRemovedFromBar(true);
    bar->reloadDisplayedItems();
    bar->reloadDisplayedItems();
    EXPECT_EQ(updates, 3);
    EXPECT_EQ(watch->calls, (Calls{"", "ab", "a", "a"}));
    EXPECT_EQ(bar->touchBar()->items(), std::vector{a->item()});
    EXPECT_EQ(bar->makeItem("a"), a->item());
    EXPECT_EQ(bar->makeItem("b"), nullptr);
    EXPECT_EQ(bar->makeItem("dropped"), nullptr);
    bar->setItemSets({});
    bar->reloadDisplayedItems();
    EXPECT_TRUE(bar->touchBar()->items().empty());
    EXPECT_EQ(bar->displayedItemSet(), nullptr);
    EXPECT_EQ(bar->makeItem("a"), nullptr);
}

TEST_F(DynamicTouchBarTest, BuildsButtons) {
    const auto set = bar->addItemSet({});
    int acts = 0;
    const auto button = bar->addItem(
        {.createButton =
             [&](DynamicTouchBarItemButtonSettings& settings) {
                 settings.minimumWidth = 80;
                 settings.title = "Go";
                 settings.imageName = "arrow.right";
                 settings.imageSize = CGSize(14, 14);
                 settings.imagePosition = NSCellImagePosition::imageRight;
                 settings.tintColor = NSColor::red;
                 settings.bezelColor = NSColor::blue;
                 settings.action = Selector("go", [&] { ++acts; });
             },
         .update = [](DynamicTouchBarItem&, NSButton& updated) { updated.setTitle("Went"); }});
    EXPECT_EQ(button->title(), "Go");
    EXPECT_EQ(button->image()->size(), CGSize(14, 14));
    EXPECT_EQ(button->imagePosition(), NSCellImagePosition::imageRight);
    EXPECT_EQ(button->contentTintColor(), NSColor::red);
    EXPECT_EQ(button->bezelColor(), NSColor::blue);
    button->performClick();
    EXPECT_EQ(acts, 1);
    button->setFrame({0, 0, 20, 20});
    EXPECT_EQ(button->frame().size, CGSize(80, 20));

    const auto plain =
        bar->addItem({.createButton = [](DynamicTouchBarItemButtonSettings& settings) {
            settings.imageSize = CGSize(14, 14);
            settings.imagePosition = NSCellImagePosition::imageAbove;
        }});
    EXPECT_EQ(plain->image(), nullptr);
    EXPECT_EQ(plain->imagePosition(), NSCellImagePosition::noImage);
    EXPECT_EQ(plain->title(), "");
    EXPECT_FALSE(plain->contentTintColor() || plain->bezelColor() || plain->action());
    EXPECT_NE(set->items()[0]->identifier(), set->items()[1]->identifier());
    const auto item = std::dynamic_pointer_cast<NSCustomTouchBarItem>(set->items()[0]->item());
    ASSERT_TRUE(item);
    EXPECT_EQ(item->identifier(), set->items()[0]->identifier());
    EXPECT_EQ(item->view(), button);
    bar->reloadDisplayedItems();
    EXPECT_EQ(button->title(), "Went");
}

TEST_F(DynamicTouchBarTest, HoldsItsViewsInTheWindow) {
    bar->addItemSet({});
    const auto left = bar->addItem<NSView>({.create = [] {
        return NSView::create({0, 0, 60, 20});
    }});
    bar->addItem({.identifier = NSTouchBarItemIdentifierFlexibleSpace});
    const auto right = bar->addItem<NSView>({.create = [] {
        return NSView::create({0, 0, 40, 20});
    }});
    bar->reloadDisplayedItems();
    window->layoutIfNeeded();
    EXPECT_EQ(left->convertToBase({}), CGPoint(0, 100)) << "above the content";
    EXPECT_EQ(right->convertToBase({}), CGPoint(60, 100));
    EXPECT_EQ(left->frame().size, CGSize(60, 30));
    bar->itemSets()[0]->items()[0]->setRemovedFromBar(true);
    bar->reloadDisplayedItems();
    window->layoutIfNeeded();
    EXPECT_EQ(left->window(), nullptr);
    EXPECT_EQ(right->window(), window);
}
