#include <tests/Testing.h>
#include <tests/collections/RandomEditions.h>

#include <zorvan/interface/NSCollectionView.h>

using Calls = std::vector<ViewCall>;
using Edition = SelectableArrayEdition;

namespace {

struct Source : NSCollectionViewDataSource {
    std::int64_t numberOfItems(const NSCollectionView&, std::int64_t) const override {
        return count;
    }
    std::int64_t count = 0;
};

struct Fixture {
    explicit Fixture(std::int64_t count) {
        source->count = count;
        view->setDataSource(source);
        view->setCallObserver([this](const ViewCall& call) { calls.push_back(call); });
    }
    std::shared_ptr<Source> source = std::make_shared<Source>();
    std::shared_ptr<NSCollectionView> view = NSCollectionView::create();
    Calls calls;
};

} // namespace

TEST(NSCollectionView, showsEditionsByTheCallsThatFit) {
    const ViewCall animator{"animator", ""}, batch{"performBatchUpdates", ""};
    const ViewCall first{"moveItem", "(0, 0), (1, 0)"}, second{"moveItem", "(1, 0), (2, 0)"};
    const ViewCall reload{"reloadSections", "{0}"};
    struct {
        Edition edition;
        std::int64_t count;
        Calls calls;
    } table[] = {
        {Edition::Insert{2, 1}, 5, {animator, batch, {"insertItems", "(1, 0), (2, 0)"}}},
        {Edition::Replace{1}, 3, {animator, batch, {"reloadItems", "(1, 0)"}}},
        {Edition::Remove{{0, 2}}, 1, {animator, batch, {"deleteItems", "(0, 0), (2, 0)"}}},
        {Edition::Move{{0, 1}, 3}, 3, {animator, batch, first, second}},
        {Edition::Select{{1}}, 3, {{"setSelectionIndexPaths", "(1, 0)"}}},
        {Edition::Reload{{0}}, 2, {reload, {"setSelectionIndexPaths", "(0, 0)"}}},
    };
    for (const auto& row : table) {
        Fixture shown(3);
        shown.source->count = row.count;
        shown.view->reloadEditedData(row.edition);
        EXPECT_EQ(shown.calls, row.calls);
        EXPECT_EQ(shown.view->numberOfItems(0), row.count);
    }
}

TEST(NSCollectionView, followsTheSelectionOfAList) {
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
        IndexSet selected;
        for (const IndexPath path : shown.view->selectionIndexPaths())
            selected.insert(path.item);
        ASSERT_EQ(selected, list->selection());
    }
}

TEST(NSCollectionViewDeathTest, catchesEditionsThatLie) {
    Fixture shown(3);
    EXPECT_DEATH(shown.view->reloadEditedData(Edition::Remove{{0}}),
                 "^After its updates section 0 of a collection view has 2 items, but its data "
                 "source has 3.\n$");
    EXPECT_DEATH(shown.view->deleteItems({{3, 0}}), "^A path lies outside the collection view.\n$");
    EXPECT_DEATH(shown.view->insertItems({{0, 1}}), "outside the collection view");
}

TEST(NSCollectionView, registersNibsByIdentifier) {
    Fixture shown(0);
    shown.view->register_({.cellIdentifiers = std::vector<std::string>{"photo", "film"}});
    shown.view->register_({.footerIdentifiers = std::vector<std::string>{"photo"}});
    EXPECT_EQ(shown.calls, (Calls{{"registerNib", "photo, photo"},
                                  {"registerNib", "film, film"},
                                  {"registerNib", "photo, SectionFooter, photo"}}));
    ASSERT_TRUE(shown.view->nib("film"));
    EXPECT_EQ(shown.view->nib("film")->name, "film");
    EXPECT_TRUE(shown.view->nib(NSCollectionView::sectionFooter, "photo"));
    EXPECT_FALSE(shown.view->nib(NSCollectionView::sectionHeader, "photo"));
}

TEST(NSCollectionView, findsItemsInARectangle) {
    Fixture shown(7);
    EXPECT_TRUE(shown.view->indexPathsForItems(CGRect(0, 0, 1000, 1000)).empty());
    shown.view->setFrame(CGRect(0, 0, 200, 100));
    shown.view->setCollectionViewLayout(
        std::make_shared<NSCollectionViewFlowLayout>(CGSize(50, 50), 10)); // three a line
    EXPECT_TRUE(shown.view->collectionViewFlowLayout());
    EXPECT_FALSE(shown.view->collectionViewGridLayout());
    struct {
        CGRect rect;
        std::vector<std::int64_t> items;
    } table[] = {
        {{0, 0, 10, 10}, {0}},     {{50, 0, 10, 10}, {}}, {{40, 40, 30, 9}, {0, 1}},
        {{0, 120, 200, 500}, {6}}, {{0, -50, 1, 1}, {}},  {{0, 1e300, 10, 10}, {}},
    };
    for (const auto& row : table) {
        std::vector<std::int64_t> found;
        for (const IndexPath path : shown.view->indexPathsForItems(row.rect))
            found.push_back(path.item);
        EXPECT_EQ(found, row.items) << row.rect.x() << ", " << row.rect.y();
    }
}
