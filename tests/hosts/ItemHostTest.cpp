#include "HostTest.h"

#include <tests/collections/RandomEditions.h>
#include <tests/interface/Tree.h>

#include <zorvan/interface/NSCollectionView.h>

#include <QAbstractItemModelTester>
#include <QAccessible>
#include <QListView>
#include <QScrollBar>
#include <QTreeView>

#include <stdexcept>

namespace {

class OutlineHostTest : public HostTest {
protected:
    OutlineHostTest() {
        outline->setNumberOfColumns(1);
        window->setContentView(outline);
        outline->setOutlineDataSource(tree);
        settle();
        shown = qobject_cast<QTreeView*>(widgetFor(*outline));
        shown->setFocus();
    }

    /// The texts from the top, with a dot for each level; the selected ones in brackets.
    std::string rows() const {
        std::string all;
        for (QModelIndex index = shown->model()->index(0, 0); index.isValid();
             index = shown->indexBelow(index)) {
            const bool isSelected = shown->selectionModel()->isSelected(index);
            for (QModelIndex holder = index.parent(); holder.isValid(); holder = holder.parent())
                all += ".";
            const std::string name = index.data().toString().toStdString();
            all += (isSelected ? "[" + name + "]" : name) + " ";
        }
        return all;
    }

    const std::shared_ptr<Tree> tree = std::make_shared<Tree>();
    const std::shared_ptr<NSOutlineView> outline = NSOutlineView::create();
    QTreeView* shown = nullptr;
};

TEST_F(OutlineHostTest, ExpandsFromBothSides) {
    QAbstractItemModelTester tester(shown->model(),
                                    QAbstractItemModelTester::FailureReportingMode::Fatal);
    EXPECT_EQ(rows(), "a e ");
    outline->expandItem(tree->top[0]);
    outline->selectOnlyRow(3);
    EXPECT_EQ(rows(), "a .b .d [e] ");
    press(Qt::Key_Right);
    EXPECT_TRUE(outline->isItemExpanded(tree->top[1]));
    press(Qt::Key_Right);
    EXPECT_EQ(rows(), "a .b .d e .[f] ");
    EXPECT_EQ(outline->selectedRowIndexes(), IndexSet({4}));
    press(Qt::Key_Left);
    press(Qt::Key_Left);
    EXPECT_FALSE(outline->isItemExpanded(tree->top[1]));
    EXPECT_EQ(rows(), "a .b .d [e] ");
    press(Qt::Key_Home);
    press(Qt::Key_End, Qt::ShiftModifier);
    EXPECT_EQ(outline->selectedRowIndexes(), IndexSet({0, 1, 2, 3}));
    outline->selectOnlyRow(3);
    outline->expandAllItems();
    EXPECT_EQ(rows(), "a .b ..c .d [e] .f ");
    outline->collapseItem(tree->top[0]);
    EXPECT_EQ(rows(), "a [e] .f ");
    QTest::keyClicks(shown, "a");
    EXPECT_EQ(outline->selectedRowIndexes(), IndexSet({0}));
}

TEST_F(OutlineHostTest, FollowsAReloadAndKeepsWhatIsOpen) {
    outline->expandItem(tree->top[1]);
    outline->selectOnlyRow(1);
    tree->top.erase(tree->top.begin());
    tree->top.push_back(node("g"));
    outline->reloadData();
    EXPECT_EQ(rows(), "e .[f] g ") << "rows stay selected by number";
    // Without a word: seen at the next change.
    tree->top.pop_back();
    outline->collapseItem(tree->top[0]);
    EXPECT_EQ(rows(), "e ");
    outline->setOutlineDataSource(nullptr);
    EXPECT_EQ(rows(), "");
}

TEST_F(OutlineHostTest, ReadersOfTheScreenHearWhatIsOpen) {
    QAccessible::setActive(true);
    outline->expandItem(tree->top[0]);
    auto* const face = QAccessible::queryAccessibleInterface(shown);
    ASSERT_TRUE(face && face->tableInterface());
    EXPECT_EQ(face->role(), QAccessible::Tree);
    auto* const cell = face->tableInterface()->cellAt(0, 0);
    EXPECT_EQ(cell->text(QAccessible::Name), "a");
    EXPECT_TRUE(cell->state().expanded);
    QAccessible::setActive(false);
}

struct Items : NSCollectionViewDataSource {
    std::int64_t numberOfSections(const NSCollectionView&) const override {
        return static_cast<std::int64_t>(sections.size());
    }
    std::int64_t numberOfItems(const NSCollectionView&, std::int64_t section) const override {
        return static_cast<std::int64_t>(sections[static_cast<std::size_t>(section)].size());
    }
    std::string text(const NSCollectionView&, IndexPath path) const override {
        return "item " + std::to_string(item(path));
    }
    std::shared_ptr<NSView> viewForItem(NSCollectionView&, IndexPath) override {
        if (throws)
            throw std::runtime_error("no view");
        return makesViews ? NSView::create() : nullptr;
    }
    void itemOpened(NSCollectionView&, IndexPath path) override { opened = path; }
    int item(IndexPath path) const {
        return sections[static_cast<std::size_t>(path.section)]
                       [static_cast<std::size_t>(path.item)];
    }

    std::vector<std::vector<int>> sections{{}};
    IndexPath opened{-1, -1};
    bool makesViews = false, throws = false;
};

/// Four items of 40 points a line, 10 between them.
class CollectionHostTest : public HostTest {
protected:
    CollectionHostTest() {
        window->setContentSize({220, 160});
        window->setContentView(scrollView);
        scrollView->setDocumentView(view);
        settle();
        for (int i = 0; i < 50; ++i)
            source->sections[0].push_back(i);
        view->setDataSource(source);
        view->setCollectionViewLayout(
            std::make_shared<NSCollectionViewFlowLayout>(CGSize(40, 40), 10));
        settle();
        shown = host->widget().findChild<QListView*>();
        shown->setFocus();
    }

    IndexSet selected() const {
        IndexSet rows;
        for (const QModelIndex& index : shown->selectionModel()->selectedIndexes())
            rows.insert(index.row());
        EXPECT_EQ(view->selectionIndexPaths(), rows.mapToIndexPaths());
        return rows;
    }
    QPoint middleOf(int item) const {
        return shown->visualRect(shown->model()->index(item, 0)).center();
    }

    const std::shared_ptr<Items> source = std::make_shared<Items>();
    const std::shared_ptr<NSCollectionView> view = NSCollectionView::create();
    const std::shared_ptr<NSScrollView> scrollView = NSScrollView::create();
    QListView* shown = nullptr;
};

TEST_F(CollectionHostTest, ItemsStandWhereTheLayoutSays) {
    EXPECT_EQ(shown->model()->rowCount(), 50);
    EXPECT_EQ(shown->visualRect(shown->model()->index(5, 0)), QRect(50, 50, 40, 40));
    EXPECT_EQ(shown->indexAt({60, 60}).row(), 5);
    EXPECT_FALSE(shown->indexAt({45, 45}).isValid());
    EXPECT_GT(shown->verticalScrollBar()->maximum(), 0);
    source->makesViews = true;
    view->reloadData();
    settle();
    const std::size_t made = view->subviews().size();
    EXPECT_GT(made, 11u);
    EXPECT_LT(made, 25u);
    EXPECT_TRUE(shown->indexWidget(shown->model()->index(0, 0)));
    EXPECT_EQ(shown->indexWidget(shown->model()->index(5, 0))->geometry(), QRect(50, 50, 40, 40));
    const auto fifth = view->view({5, 0}, false);
    EXPECT_EQ(fifth->frame(), CGRect(50, 50, 40, 40));
    shown->verticalScrollBar()->setValue(5);
    settle();
    EXPECT_EQ(view->view({5, 0}, false), fifth) << "what stays in sight stays";
    shown->verticalScrollBar()->setValue(0);
    settle();
    const auto colour = [&](QPoint at) {
        return shown->viewport()->grab().toImage().pixelColor(at);
    };
    view->setSelectionIndexPaths({{5, 0}});
    settle();
    EXPECT_EQ(colour({53, 53}), colour({87, 87})) << "all of it looks selected";
    EXPECT_NE(colour({53, 53}), colour({3, 53}));
    shown->verticalScrollBar()->setValue(10000);
    settle();
    EXPECT_FALSE(shown->indexWidget(shown->model()->index(0, 0)));
    EXPECT_TRUE(shown->indexWidget(shown->model()->index(49, 0)));
    EXPECT_LT(view->subviews().size(), 25u);
    EXPECT_GT(scrollView->contentView()->bounds().y(), 0);
}

TEST_F(CollectionHostTest, KeysAndMouseSelect) {
    const auto click = [&](int item, Qt::KeyboardModifiers modifiers = {}) {
        QTest::mouseClick(shown->viewport(), Qt::LeftButton, modifiers, middleOf(item));
    };
    click(1);
    EXPECT_EQ(selected(), IndexSet({1}));
    click(6, Qt::ShiftModifier);
    EXPECT_EQ(selected(), IndexSet({1, 2, 3, 4, 5, 6})) << "in the order of the items";
    click(3, Qt::ControlModifier);
    EXPECT_EQ(selected(), IndexSet({1, 2, 4, 5, 6}));
    click(1);
    const struct {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        IndexSet selected;
    } table[] = {
        {Qt::Key_Down, {}, {5}}, {Qt::Key_Right, {}, {6}},
        {Qt::Key_Up, {}, {2}},   {Qt::Key_Up, {}, {2}},
        {Qt::Key_Left, {}, {1}}, {Qt::Key_Down, Qt::ShiftModifier, {1, 2, 3, 4, 5}},
        {Qt::Key_End, {}, {49}}, {Qt::Key_Down, {}, {49}},
        {Qt::Key_Home, {}, {0}}, {Qt::Key_A, Qt::ControlModifier, IndexSet(IndexSet::Range{0, 50})},
    };
    for (const auto& step : table) {
        press(step.key, step.modifiers);
        EXPECT_EQ(selected(), step.selected) << step.key;
    }
    press(Qt::Key_Home);
    press(Qt::Key_PageDown);
    EXPECT_EQ(selected().count(), 1);
    EXPECT_GT(*selected().first(), 7);
    EXPECT_EQ(*selected().first() % 4, 0) << "straight down";
    QTest::keyClicks(shown, "item 33");
    EXPECT_EQ(selected(), IndexSet({33}));
    EXPECT_TRUE(shown->viewport()->rect().contains(middleOf(33)));
    press(Qt::Key_Return);
    EXPECT_EQ(source->opened, (IndexPath{33, 0}));
}

TEST_F(CollectionHostTest, ItemsStandFromTheRightWhereOneReadsSo) {
    QApplication::setLayoutDirection(Qt::RightToLeft);
    settle();
    const int width = shown->viewport()->width();
    EXPECT_EQ(shown->visualRect(shown->model()->index(5, 0)), QRect(width - 90, 50, 40, 40));
    EXPECT_EQ(shown->indexAt({width - 60, 60}).row(), 5);
    QTest::mouseClick(shown->viewport(), Qt::LeftButton, {}, middleOf(5));
    press(Qt::Key_Left);
    EXPECT_EQ(selected(), IndexSet({6}));
    QTest::mouseClick(shown->viewport(), Qt::LeftButton, Qt::ShiftModifier, middleOf(8));
    EXPECT_EQ(selected(), IndexSet({6, 7, 8}));
    QApplication::setLayoutDirection(Qt::LeftToRight);
    settle();
    EXPECT_EQ(shown->visualRect(shown->model()->index(5, 0)), QRect(50, 50, 40, 40));
}

TEST_F(CollectionHostTest, ARubberBandSelects) {
    QWidget* const place = shown->viewport();
    QTest::mousePress(place, Qt::LeftButton, {}, {45, 5});
    for (const QPoint at : {QPoint(60, 30), QPoint(120, 60)}) {
        QMouseEvent move(QEvent::MouseMove, at, place->mapToGlobal(at), Qt::NoButton,
                         Qt::LeftButton, {});
        QCoreApplication::sendEvent(place, &move);
    }
    EXPECT_EQ(selected(), IndexSet({1, 2, 5, 6}));
    QTest::mouseRelease(place, Qt::LeftButton, {}, {120, 60});
    EXPECT_EQ(selected(), IndexSet({1, 2, 5, 6}));
    QTest::mouseClick(place, Qt::LeftButton, {}, {45, 5});
    EXPECT_EQ(selected(), IndexSet());
}

TEST_F(CollectionHostTest, FollowsEditionsExactly) {
    QAbstractItemModelTester tester(shown->model(),
                                    QAbstractItemModelTester::FailureReportingMode::Fatal);
    source->sections[0].clear();
    view->reloadData();
    const auto list = SelectableArray<int>::create();
    RandomEditions random(4);
    list->setEditionHandler([&](const SelectableArray<int>::Action& action) {
        std::vector<std::pair<QPersistentModelIndex, int>> held;
        for (std::size_t i = 0; i < source->sections[0].size(); ++i)
            held.emplace_back(shown->model()->index(static_cast<int>(i), 0),
                              source->sections[0][i]);
        const SelectableArrayEdition edition = action();
        source->sections[0] = list->elements();
        view->reloadEditedData(edition);
        if (!edition.as<SelectableArrayEdition::Replace>())
            for (const auto& [index, item] : held) {
                const auto row = static_cast<std::size_t>(index.row());
                ASSERT_TRUE(!index.isValid() || source->sections[0][row] == item);
            }
    });
    for (int step = 0; step < 300; ++step) {
        random.edit(*list);
        ASSERT_EQ(shown->model()->rowCount(), list->count());
        ASSERT_EQ(selected(), list->selection());
    }
}

TEST_F(CollectionHostTest, SectionsFollowEachOther) {
    source->sections = {{0, 1, 2}, {}, {3, 4}};
    view->reloadData();
    EXPECT_EQ(shown->model()->rowCount(), 5);
    EXPECT_EQ(shown->model()->index(3, 0).data().toString(), "item 3");
    const QPersistentModelIndex held = shown->model()->index(4, 0);
    source->sections = {{0, 4, 1, 2}, {9}, {3}};
    view->performBatchUpdates([&] {
        view->moveItem({1, 2}, {1, 0});
        view->insertItems({{0, 1}});
    });
    EXPECT_EQ(held.row(), 1);
    EXPECT_EQ(shown->model()->index(4, 0).data().toString(), "item 9");
    QTest::mouseClick(shown->viewport(), Qt::LeftButton, {}, middleOf(4));
    EXPECT_EQ(view->selectionIndexPaths(), (std::set<IndexPath>{{0, 1}}));
}

TEST_F(CollectionHostTest, OutlivesViewsThatCannotBeMade) {
    source->throws = true;
    testing::internal::CaptureStdout();
    view->reloadData();
    settle();
    EXPECT_NE(testing::internal::GetCapturedStdout().find("A view could not be filled: no view\n"),
              std::string::npos);
    view->setCollectionViewLayout(nullptr);
    settle();
    press(Qt::Key_Down);
    EXPECT_FALSE(shown->indexAt({20, 20}).isValid());
}

TEST_F(CollectionHostTest, ReadersOfTheScreenGetItemsAndSelection) {
    QAccessible::setActive(true);
    view->setSelectionIndexPaths({{2, 0}});
    auto* const face = QAccessible::queryAccessibleInterface(shown);
    ASSERT_TRUE(face && face->tableInterface());
    EXPECT_EQ(face->role(), QAccessible::List);
    EXPECT_EQ(face->tableInterface()->rowCount(), 50);
    auto* const item = face->tableInterface()->cellAt(2, 0);
    EXPECT_EQ(item->text(QAccessible::Name), "item 2");
    EXPECT_TRUE(item->state().selected);
    EXPECT_EQ(item->rect().size(), QSize(40, 40));
    QAccessible::setActive(false);
}

} // namespace
