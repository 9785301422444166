#include "ItemViewTest.h"

#include <tests/interface/Tree.h>

#include <zorvan/interface/NSCollectionView.h>
#include <zorvan/platform/appkit/NSScrollView.h>

#include <QListView>
#include <QTreeView>

namespace {

class OutlineHostTest : public ItemViewTest {
protected:
    OutlineHostTest() {
        outline->setNumberOfColumns(1);
        window->setContentView(outline);
        outline->setOutlineDataSource(tree);
        shown().setFocus();
    }

    /// The texts from the top, with a dot for each level; the selected ones in brackets.
    std::string rows() const {
        std::string all;
        for (QModelIndex index = at(0); index.isValid();
             index = shown<QTreeView>().indexBelow(index)) {
            const bool isSelected = shown().selectionModel()->isSelected(index);
            for (QModelIndex holder = index.parent(); holder.isValid(); holder = holder.parent())
                all += ".";
            const std::string name = index.data().toString().toStdString();
            all += (isSelected ? "[" + name + "]" : name) + " ";
        }
        return all;
    }
    IndexSet selected() const override { return outline->selectedRowIndexes(); }

    const std::shared_ptr<Tree> tree = std::make_shared<Tree>();
    const std::shared_ptr<NSOutlineView> outline = NSOutlineView::create();
};

TEST_F(OutlineHostTest, ExpandsFromBothSidesAndFollowsReloads) {
    const Tester tester(&model(), Tester::FailureReportingMode::Fatal);
    outline->expandItem(tree->top[0]);
    outline->selectOnlyRow(3);
    EXPECT_EQ(rows(), "a .b .d [e] ");
    expectSelections({{Qt::Key_Right, {}, {3}}, {Qt::Key_Right, {}, {4}}});
    EXPECT_EQ(rows(), "a .b .d e .[f] ");
    expectSelections({{Qt::Key_Left, {}, {3}}, {Qt::Key_Left, {}, {3}}});
    EXPECT_FALSE(outline->isItemExpanded(tree->top[1]));
    expectSelections({{Qt::Key_Home, {}, {0}}, {Qt::Key_End, Qt::ShiftModifier, {0, 1, 2, 3}}});
    outline->selectOnlyRow(3);
    outline->expandAllItems();
    EXPECT_EQ(rows(), "a .b ..c .d [e] .f ");
    press(Qt::Key_A, Qt::ControlModifier);
    press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "a\nb\nc\nd\ne\nf");
    outline->selectOnlyRow(4);
    outline->collapseItem(tree->top[0]);
    EXPECT_EQ(rows(), "a [e] .f ");
    QTest::keyClicks(&shown(), "a");
    EXPECT_EQ(selected(), IndexSet({0}));
    // A reload keeps what is open.
    outline->selectOnlyRow(1);
    tree->top.erase(tree->top.begin());
    tree->top.push_back(node("g"));
    outline->reloadData();
    EXPECT_EQ(rows(), "e .[f] g ") << "rows stay selected by number";
    // Without a word: seen at the next change.
    outline->collapseItem(tree->top[0]);
    tree->top.pop_back();
    outline->expandItem(tree->top[0]);
    EXPECT_EQ(rows(), "e .f ");
    outline->setNumberOfColumns(2);
    EXPECT_EQ(model().columnCount(), 2);
    outline->setOutlineDataSource(nullptr);
    EXPECT_EQ(rows(), "");
}

TEST_F(OutlineHostTest, ManyRowsExpandSoon) {
    for (int i = 0; i < 30000; ++i)
        tree->top.push_back(node("h", {node("i")}));
    outline->reloadData();
    settle();
    const auto start = std::chrono::steady_clock::now();
    outline->expandAllItems();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    EXPECT_TRUE(shown<QTreeView>().isExpanded(at(30001)));
}

struct Items : NSCollectionViewDataSource {
    std::int64_t numberOfSections(const NSCollectionView&) const override {
        return std::ssize(sections);
    }
    std::int64_t numberOfItems(const NSCollectionView&, std::int64_t section) const override {
        return std::ssize(sections[static_cast<std::size_t>(section)]);
    }
    std::string text(const NSCollectionView&, IndexPath path) const override {
        return "item " + std::to_string(sections.at(static_cast<std::size_t>(path.section))
                                            .at(static_cast<std::size_t>(path.item)));
    }
    std::shared_ptr<NSView> viewForItem(NSCollectionView&, IndexPath) override {
        return makesViews ? NSView::create() : nullptr;
    }
    void itemOpened(NSCollectionView&, IndexPath path) override { opened = path; }

    std::vector<std::vector<int>> sections{std::vector<int>(50)};
    IndexPath opened{-1, -1};
    bool makesViews = false;
};

/// Four items of 40 points a line, 10 between them.
class CollectionHostTest : public ItemViewTest {
protected:
    CollectionHostTest() {
        window->setContentSize({220, 160});
        window->setContentView(scrollView);
        scrollView->setDocumentView(view);
        std::iota(source->sections[0].begin(), source->sections[0].end(), 0);
        view->setDataSource(source);
        view->setCollectionViewLayout(
            std::make_shared<NSCollectionViewFlowLayout>(CGSize(40, 40), 10));
        shown<QListView>().setFocus();
    }

    IndexSet selected() const override {
        EXPECT_EQ(view->selectionIndexPaths(), selectedInWidget().mapToIndexPaths());
        return selectedInWidget();
    }

    const std::shared_ptr<Items> source = std::make_shared<Items>();
    const std::shared_ptr<NSCollectionView> view = NSCollectionView::create();
    const std::shared_ptr<NSScrollView> scrollView = NSScrollView::create();
};

TEST_F(CollectionHostTest, ItemsStandWhereTheLayoutSays) {
    EXPECT_EQ(shown().visualRect(at(5)), QRect(50, 50, 40, 40));
    EXPECT_EQ(shown().indexAt({60, 60}).row(), 5);
    EXPECT_FALSE(shown().indexAt({45, 45}).isValid());
    source->makesViews = true;
    view->reloadData();
    settle();
    const std::size_t made = view->subviews().size();
    EXPECT_GT(made, 11u);
    EXPECT_LT(made, 25u);
    EXPECT_EQ(shown().indexWidget(at(5))->geometry(), QRect(50, 50, 40, 40));
    const auto fifth = view->view({5, 0}, false);
    EXPECT_EQ(fifth->frame(), CGRect(50, 50, 40, 40));
    shown().verticalScrollBar()->setValue(5);
    settle();
    EXPECT_EQ(view->view({5, 0}, false), fifth) << "what stays in sight stays";
    shown().verticalScrollBar()->setValue(0);
    view->setSelectionIndexPaths({{5, 0}});
    const QImage picture = shown().viewport()->grab().toImage();
    EXPECT_EQ(picture.pixelColor(53, 53), picture.pixelColor(87, 87)) << "all of it looks selected";
    EXPECT_NE(picture.pixelColor(53, 53), picture.pixelColor(3, 53));
    shown().verticalScrollBar()->setValue(10000);
    EXPECT_FALSE(shown().indexWidget(at(0)));
    EXPECT_TRUE(shown().indexWidget(at(49)));
    EXPECT_LT(view->subviews().size(), 25u);
    EXPECT_GT(scrollView->contentView()->bounds().y(), 0);
    QApplication::setLayoutDirection(Qt::RightToLeft);
    shown().verticalScrollBar()->setValue(0);
    const int width = shown().viewport()->width();
    EXPECT_EQ(shown().visualRect(at(5)), QRect(width - 90, 50, 40, 40));
    EXPECT_EQ(shown().indexAt({width - 60, 60}).row(), 5);
    click(5);
    expectSelections({{Qt::Key_Left, {}, {6}}});
    click(8, Qt::ShiftModifier);
    EXPECT_EQ(selected(), IndexSet({6, 7, 8}));
    QApplication::setLayoutDirection(Qt::LeftToRight);
}

TEST_F(CollectionHostTest, KeysAndMouseSelect) {
    const auto click = [&](int item, Qt::KeyboardModifiers modifiers = {}) {
        ItemViewTest::click(item, modifiers);
        return selected();
    };
    click(1);
    EXPECT_EQ(click(6, Qt::ShiftModifier), IndexSet({1, 2, 3, 4, 5, 6})) << "in their order";
    EXPECT_EQ(click(3, Qt::ControlModifier), IndexSet({1, 2, 4, 5, 6}));
    click(1);
    expectSelections({{Qt::Key_Down, {}, {5}},
                      {Qt::Key_Right, {}, {6}},
                      {Qt::Key_Up, {}, {2}},
                      {Qt::Key_Up, {}, {2}},
                      {Qt::Key_Left, {}, {1}},
                      {Qt::Key_Down, Qt::ShiftModifier, {1, 2, 3, 4, 5}},
                      {Qt::Key_End, {}, {49}},
                      {Qt::Key_Down, {}, {49}},
                      {Qt::Key_Home, {}, {0}},
                      {Qt::Key_A, Qt::ControlModifier, IndexSet(IndexSet::Range{0, 50})}});
    press(Qt::Key_Home);
    press(Qt::Key_PageDown);
    EXPECT_EQ(selected().count(), 1);
    EXPECT_GT(*selected().first(), 7);
    EXPECT_EQ(*selected().first() % 4, 0) << "straight down";
    view->setSelectionIndexPaths({{39, 0}});
    expectSelections({{Qt::Key_PageDown, {}, {49}}}); // the nearest in that line
    QTest::keyClicks(&shown(), "item 33");
    EXPECT_EQ(selected(), IndexSet({33}));
    EXPECT_TRUE(shown().viewport()->rect().contains(middleOf(33)));
    press(Qt::Key_Return);
    EXPECT_EQ(source->opened, (IndexPath{33, 0}));
}

TEST_F(CollectionHostTest, ARubberBandSelects) {
    QWidget& place = *shown().viewport();
    QTest::mousePress(&place, Qt::LeftButton, {}, {45, 5});
    drag(place, {60, 30});
    drag(place, {120, 60});
    QTest::mouseRelease(&place, Qt::LeftButton, {}, {120, 60});
    EXPECT_EQ(selected(), IndexSet({1, 2, 5, 6}));
    QTest::mouseClick(&place, Qt::LeftButton, {}, {45, 5});
    EXPECT_EQ(selected(), IndexSet());
    view->setCollectionViewLayout(nullptr);
    press(Qt::Key_Down);
    EXPECT_FALSE(shown().indexAt({20, 20}).isValid());
}

TEST_F(CollectionHostTest, ABandBeginsWithTheLeftButtonOnly) {
    click(1);
    QTest::mousePress(shown().viewport(), Qt::RightButton, {}, {45, 5}); // a menu gets the release
    view->setSelectionIndexPaths({{1, 0}});
    click(6, Qt::ShiftModifier);
    EXPECT_EQ(selected(), IndexSet({1, 2, 3, 4, 5, 6}));
}

/// Squares, two in a line: what is wider is higher too.
struct Squares : NSCollectionViewFlowLayout {
    Squares() : NSCollectionViewFlowLayout(CGSize(1, 1), 0) {}
    void prepare(const std::vector<std::int64_t>& itemCounts, double width) override {
        ++prepared;
        NSCollectionViewFlowLayout::operator=(
            NSCollectionViewFlowLayout(CGSize(width / 2, width / 2), 0));
        NSCollectionViewFlowLayout::prepare(itemCounts, width);
    }
    int prepared = 0;
};

TEST_F(CollectionHostTest, TheScrollBarStaysWhereItsRoomWouldNeedIt) {
    source->sections[0].resize(4);
    view->reloadData();
    const auto squares = std::make_shared<Squares>();
    view->setCollectionViewLayout(squares);
    for (const double height : {230.0, 215.0, 230.0}) {
        window->setContentSize({220, height});
        EXPECT_EQ(shown().verticalScrollBar()->isVisible(), height < 220);
        const int prepared = squares->prepared;
        settle();
        EXPECT_EQ(squares->prepared, prepared) << "comes to rest";
    }
    source->sections[0].resize(400000);
    view->reloadData();
    click(0);
    press(Qt::Key_End);
    EXPECT_TRUE(shown().viewport()->rect().contains(middleOf(399999))) << "however far it is";
}

TEST_F(CollectionHostTest, FollowsEditionsExactly) {
    source->sections[0].clear();
    view->reloadData();
    expectExactEditions(source->sections[0], [&](const SelectableArrayEdition& edition) {
        view->reloadEditedData(edition);
    });
}

TEST_F(CollectionHostTest, SectionsFollowEachOther) {
    source->sections = {{0, 1, 2}, {}, {3, 4}};
    view->reloadData();
    EXPECT_EQ(model().rowCount(), 5);
    EXPECT_EQ(text(3), "item 3");
    const QPersistentModelIndex held = at(4);
    source->sections = {{0, 4, 1, 2}, {9}, {3}};
    view->performBatchUpdates([&] {
        view->moveItem({1, 2}, {1, 0});
        view->insertItems({{0, 1}});
    });
    EXPECT_EQ(held.row(), 1);
    EXPECT_EQ(text(4), "item 9");
    click(4);
    EXPECT_EQ(view->selectionIndexPaths(), (std::set<IndexPath>{{0, 1}}));
}

} // namespace
