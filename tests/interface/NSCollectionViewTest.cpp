#include <tests/Listener.h>
#include <tests/Testing.h>
#include <tests/collections/RandomEditions.h>

#include <zorvan/collections/ManagedList.h>
#include <zorvan/interface/ManagedListViewReloader.h>
#include <zorvan/interface/NSCollectionViewObserver.h>

using Calls = std::vector<std::string>;
using Updates = NSCollectionView::Updates;
using Edition = SelectableArrayEdition;

namespace {

struct Source : NSCollectionViewDataSource {
    std::int64_t numberOfItems(const NSCollectionView&, std::int64_t) const override {
        return count;
    }
    std::shared_ptr<NSView> viewForItem(NSCollectionView&, IndexPath) override {
        return NSView::create();
    }
    std::int64_t count = 0;
};

struct Recorder : NSCollectionViewObserver {
    void itemsUpdated(const Updates& batch, bool isAnimated) override {
        calls.emplace_back(isAnimated ? "animated batch" : "batch");
        updates = batch;
    }
    void sectionsReloaded(const IndexSet& sections) override {
        calls.push_back("reload " + sections.description());
    }
    void reloaded() override { calls.emplace_back("reload"); }
    void selectionDidChange() override { calls.emplace_back("select"); }
    Calls calls;
    Updates updates;
};

struct Fixture {
    explicit Fixture(std::int64_t count) {
        source->count = count;
        view->setDataSource(source);
        view->addObserver(recorder);
    }
    std::shared_ptr<Source> source = std::make_shared<Source>();
    std::shared_ptr<NSCollectionView> view = NSCollectionView::create();
    std::shared_ptr<Recorder> recorder = std::make_shared<Recorder>();
    Calls& calls = recorder->calls;
};

} // namespace

TEST(NSCollectionView, ShowsEditionsByTheCallsThatFit) {
    struct {
        Edition edition;
        std::int64_t count;
        Calls calls;
        Updates updates;
    } table[] = {
        {Edition::Insert{2, 1}, 5, {"animated batch"}, {.inserted = {{1, 0}, {2, 0}}}},
        {Edition::Replace{1}, 3, {"animated batch"}, {.reloaded = {{1, 0}}}},
        {Edition::Remove{{0, 2}}, 1, {"animated batch"}, {.deleted = {{0, 0}, {2, 0}}}},
        {Edition::Move{{0, 1}, 3},
         3,
         {"animated batch"},
         {.moved = {{{0, 0}, {1, 0}}, {{1, 0}, {2, 0}}}}},
        {Edition::Select{{1}}, 3, {"select"}, {}},
        {Edition::Reload{{0}}, 2, {"reload {0}", "select"}, {}},
    };
    for (const auto& row : table) {
        Fixture shown(3);
        shown.source->count = row.count;
        shown.view->reloadEditedData(row.edition);
        EXPECT_EQ(shown.calls, row.calls);
        EXPECT_EQ(shown.recorder->updates, row.updates);
    }
}

TEST(NSCollectionView, ForgetsABatchWhoseUpdatesThrow) {
    Fixture shown(3);
    const auto fail = [&] {
        shown.view->deleteItems({{0, 0}});
        throw std::runtime_error("no");
    };
    EXPECT_THROW(shown.view->performBatchUpdates(fail), std::runtime_error);
    EXPECT_EQ(shown.calls, Calls());
    shown.view->performBatchUpdates([&] {
        shown.view->reloadItems({{2, 0}});
        EXPECT_THROW(shown.view->animator().performBatchUpdates(fail), std::runtime_error);
    });
    EXPECT_EQ(shown.calls, Calls{"batch"});
    EXPECT_EQ(shown.recorder->updates, (Updates{.reloaded = {{2, 0}}}));
}

TEST(NSCollectionView, ManyEditionsInOneBatchAreSoonDone) {
    constexpr int count = 20000;
    Fixture shown(0);
    shown.source->count = count;
    const auto start = std::chrono::steady_clock::now();
    shown.view->performBatchUpdates([&] {
        for (int i = 0; i < count; ++i)
            shown.view->reloadEditedData(Edition::Insert{1, i});
    });
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
    EXPECT_EQ(shown.recorder->updates.inserted.size(), std::size_t{count});
}

TEST(NSCollectionView, FollowsTheSelectionOfAList) {
    RandomEditions random(9);
    Fixture shown(0);
    const auto list = SelectableArray<int>::create();
    list->setEditionHandler([&](const SelectableArray<int>::Action& action) {
        const Edition edition = action();
        shown.source->count = list->count();
        shown.view->reloadEditedData(edition);
    });
    for (int step = 0; step < 2000; ++step) {
        random.edit(*list);
        ASSERT_EQ(shown.view->numberOfItems(0), list->count());
        ASSERT_EQ(shown.view->selectionIndexPaths(), list->selection().mapToIndexPaths());
    }
}

TEST(NSCollectionViewDeathTest, CatchesEditionsThatLie) {
    Fixture shown(3);
    EXPECT_DEATH(shown.view->reloadEditedData(Edition::Remove{{0}}),
                 "^After its updates section 0 of a collection view has 2 items, but its data "
                 "source has 3.\n$");
    EXPECT_DEATH(shown.view->deleteItems({{3, 0}}), "^A path lies outside the collection view.\n$");
    EXPECT_DEATH(shown.view->insertItems({{0, 1}}), "outside the collection view");
}

TEST(NSCollectionView, RegistersNibsByIdentifier) {
    Fixture shown(0);
    shown.view->register_({.cellIdentifiers = std::vector<std::string>{"photo", "film"}});
    shown.view->register_({.footerIdentifiers = std::vector<std::string>{"photo"}});
    ASSERT_TRUE(shown.view->nib("film"));
    EXPECT_EQ(shown.view->nib("film")->name, "film");
    EXPECT_TRUE(shown.view->nib(NSCollectionView::sectionFooter, "photo"));
    EXPECT_FALSE(shown.view->nib(NSCollectionView::sectionHeader, "photo"));
}

TEST(NSCollectionView, PlacesItemsAndTheirViews) {
    Fixture shown(7);
    const auto item = shown.view->view({5, 0}, true);
    EXPECT_EQ(item->frame(), CGRect()) << "without a layout";
    EXPECT_TRUE(shown.view->indexPathsForItems(CGRect(0, 0, 1000, 1000)).empty());
    shown.view->setFrame(CGRect(0, 0, 170, 100));
    shown.view->setCollectionViewLayout(
        std::make_shared<NSCollectionViewFlowLayout>(CGSize(50, 50), 10)); // three a line, just so
    EXPECT_TRUE(shown.view->collectionViewFlowLayout());
    EXPECT_FALSE(shown.view->collectionViewGridLayout());
    struct {
        CGRect rect;
        std::vector<IndexPath> items;
    } table[] = {
        {{0, 0, 10, 10}, {{0, 0}}},     {{50, 0, 10, 10}, {}}, {{40, 40, 30, 9}, {{0, 0}, {1, 0}}},
        {{0, 120, 200, 500}, {{6, 0}}}, {{0, -50, 1, 1}, {}},  {{0, 1e300, 10, 10}, {}},
    };
    for (const auto& row : table)
        EXPECT_EQ(shown.view->indexPathsForItems(row.rect), row.items)
            << row.rect.x() << ", " << row.rect.y();
    EXPECT_EQ(item->frame(), CGRect(120, 60, 50, 50));
    EXPECT_EQ(shown.view->view({1, 0}, true)->frame(), CGRect(60, 0, 50, 50));
    shown.view->setFrame({0, 0, 400, 100});
    EXPECT_EQ(item->frame(), CGRect(300, 0, 50, 50));
    shown.source->count = 6;
    shown.view->deleteItems({{0, 0}});
    EXPECT_EQ(item->frame(), CGRect(240, 0, 50, 50)) << "with the item";
}

TEST(NSCollectionView, MayForgetViewsWhenItPlacesThem) {
    struct Forgetting : NSViewObserver {
        void frameDidChange() override { view->keepViews({}); }
        NSCollectionView* view;
    };
    Fixture shown(3);
    shown.view->setCollectionViewLayout(std::make_shared<NSCollectionViewFlowLayout>());
    const auto forgetting = std::make_shared<Forgetting>();
    forgetting->view = shown.view.get();
    for (std::int64_t item = 0; item < 3; ++item)
        shown.view->view({item, 0}, true)->addObserver(forgetting);
    shown.view->setFrame({0, 0, 1000, 300});
    EXPECT_EQ(shown.view->view({2, 0}, false), nullptr);
    EXPECT_TRUE(shown.view->subviews().empty());
}

TEST(NSCollectionView, PassesOverDecorationAndWhatALayoutGivesTooMuch) {
    struct Layout : NSCollectionViewFlowLayout {
        std::vector<NSCollectionViewLayoutAttributes>
        layoutAttributesForElements(const CGRect& in) const override {
            return {{in, {}},
                    {frameOfItem({0, 0}), IndexPath{0, 0}},
                    {frameOfItem({1, 0}), IndexPath{1, 0}}};
        }
    };
    Fixture shown(2);
    shown.view->setCollectionViewLayout(std::make_shared<Layout>());
    EXPECT_THAT(shown.view->indexPathsForItems({10, 10, 20, 20}), ElementsAre(IndexPath{0, 0}));
}

TEST(NSCollectionView, ShowsManagedListEditions) {
    const IndexSet first{0, 1}, middle{1, 2}, ends{0, 2};
    const auto list = ManagedList<int>::create({0, 1, 2, 3});
    Fixture shown(4);
    const Listener did(ManagedList<int>::didReloadNotification, list, [&](const auto& note) {
        shown.source->count = list->count();
        ManagedList<int>::ViewReloader(*ManagedList<int>::edition(note)).reload(*shown.view);
    });
    struct {
        std::function<void()> change;
        Calls calls;
        Updates updates;
    } table[] = {
        {[&] { list->setSelection(middle); }, {"select"}, {}},
        {[&] { list->insert({9}, 0); },
         {"animated batch", "select", "select"},
         {.inserted = {{0, 0}}}},
        {[&] { list->remove(ends); }, {"animated batch"}, {.deleted = {{0, 0}, {2, 0}}}},
        {[&] { list->move(first, 3); },
         {"animated batch", "select"},
         {.moved = {{{0, 0}, {1, 0}}, {{1, 0}, {2, 0}}}}},
        {[&] { list->reverseOrder(); }, {"reload", "select"}, {}},
        {[&] { list->setFilter([](int item) { return item > 1; }); }, {"reload", "select"}, {}},
    };
    for (const auto& row : table) {
        row.change();
        EXPECT_EQ(std::exchange(shown.calls, {}), row.calls);
        EXPECT_EQ(std::exchange(shown.recorder->updates, {}), row.updates);
        EXPECT_EQ(shown.view->selectionIndexPaths(), list->selection().mapToIndexPaths());
    }
}
