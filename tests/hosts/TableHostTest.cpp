#include "HostTest.h"

#include <tests/collections/RandomEditions.h>

#include <zorvan/collections/ManagedList.h>
#include <zorvan/files/NSPasteboard.h>
#include <zorvan/interface/ManagedListViewReloader.h>
#include <zorvan/interface/NSTableViewObserver.h>
#include <zorvan/platform/dispatch/NSNotificationCenter.h>

#include <QAbstractItemModelTester>
#include <QAccessible>
#include <QHeaderView>
#include <QMimeData>
#include <QScrollBar>
#include <QTableView>

#include <random>
#include <stdexcept>

namespace {

using Options = NSTableView::AnimationOptions;

struct Source : NSTableViewDataSource, NSTableViewDelegate {
    std::int64_t numberOfRows(const NSTableView&) const override {
        return lie ? lie : static_cast<std::int64_t>(items.size());
    }
    std::string text(const NSTableView&, std::int64_t column, std::int64_t row) const override {
        asked = std::max(asked, row);
        if (throws)
            throw std::runtime_error("no text");
        if (row >= static_cast<std::int64_t>(items.size()))
            throw std::out_of_range("no such item");
        return (column ? "size " : "item ") + std::to_string(items[static_cast<std::size_t>(row)]);
    }
    double heightOfRow(const NSTableView& table, std::int64_t row) const override {
        if (throws && row == 5)
            throw std::runtime_error("no height");
        return row == tall ? 60 : table.rowHeight();
    }
    std::shared_ptr<NSView> view(NSTableView&, std::int64_t column, std::int64_t row) override {
        if (throws)
            throw std::runtime_error("no view");
        if (!makesViews || column == 0)
            return nullptr;
        const auto view = NSView::create();
        view->setAccessibilityLabel("view " + std::to_string(items[static_cast<std::size_t>(row)]));
        return view;
    }
    std::optional<URL> draggedURL(const NSTableView&, std::int64_t row) const override {
        if (row % 2)
            return std::nullopt;
        return URL({.fileURLWithPath = "/pictures/" + std::to_string(row) + " a.png"});
    }
    void rowOpened(NSTableView&, std::int64_t row) override { opened = row; }
    void sortOrderDidChange(NSTableView& table) override {
        const bool up = table.sortOrder()->isAscending;
        std::sort(items.begin(), items.end(), [up](int a, int b) { return up ? a < b : b < a; });
        table.reloadData();
    }

    std::vector<int> items;
    std::int64_t lie = 0, opened = -1, tall = -1;
    mutable std::int64_t asked = -1;
    bool makesViews = false, throws = false;
};

class TableHostTest : public HostTest {
protected:
    TableHostTest() {
        table->setNumberOfColumns(2);
        table->tableColumns()[0]->setTitle("Name");
        for (int i = 0; i < 40; ++i)
            source->items.push_back(i);
        scrollView->setDocumentView(table);
        window->setContentView(scrollView);
    }

    /// As the window shows the table; given its data after it has come into the window.
    QTableView& shown() {
        if (!table->dataSource()) {
            table->setDataSource(source);
            table->setDelegate(source);
        }
        settle();
        auto* const widget = host->widget().findChild<QTableView*>();
        EXPECT_TRUE(widget);
        return *widget;
    }
    QPoint middleOf(int row) { return shown().visualRect(shown().model()->index(row, 0)).center(); }
    void click(int row, Qt::KeyboardModifiers modifiers = {},
               Qt::MouseButton button = Qt::LeftButton) {
        QTest::mouseClick(shown().viewport(), button, modifiers, middleOf(row));
        settle();
    }
    IndexSet selectedInWidget() {
        IndexSet rows;
        for (const QModelIndex& index : shown().selectionModel()->selectedRows())
            rows.insert(index.row());
        return rows;
    }
    void expectSelected(const IndexSet& rows) {
        EXPECT_EQ(table->selectedRowIndexes(), rows);
        EXPECT_EQ(selectedInWidget(), rows);
    }
    /// The texts as the widget shows them, a word a row.
    std::string texts() {
        std::string all;
        for (int row = 0; row < shown().model()->rowCount(); ++row)
            all += shown().model()->index(row, 0).data().toString().mid(5).toStdString() + " ";
        return all;
    }

    const std::shared_ptr<NSTableView> table = NSTableView::create();
    const std::shared_ptr<NSScrollView> scrollView = NSScrollView::create({0, 0, 240, 160});
    const std::shared_ptr<Source> source = std::make_shared<Source>();
};

TEST_F(TableHostTest, ShowsItsDataWheneverItComes) {
    EXPECT_EQ(shown().model()->rowCount(), 40);
    EXPECT_EQ(shown().model()->index(39, 1).data().toString(), "size 39");
    EXPECT_TRUE(shown().horizontalHeader()->isVisible());
    // Another table, filled before.
    const auto before = NSTableView::create();
    before->setNumberOfColumns(2);
    before->setDataSource(source);
    before->selectOnlyRow(3);
    window->setContentView(before);
    settle();
    auto* const widget = qobject_cast<QTableView*>(widgetFor(*before));
    ASSERT_TRUE(widget);
    EXPECT_EQ(widget->model()->rowCount(), 40);
    EXPECT_EQ(widget->selectionModel()->selectedRows().size(), 1);
    EXPECT_FALSE(widget->horizontalHeader()->isVisible()) << "no column has a title";
    before->setNumberOfColumns(3);
    EXPECT_EQ(widget->model()->columnCount(), 3);
}

TEST_F(TableHostTest, AsksForWhatIsSeenOnly) {
    source->items.resize(100000);
    QTableView& widget = shown();
    EXPECT_LT(source->asked, 50);
    source->makesViews = true;
    table->reloadData();
    settle();
    const std::size_t inSight = table->subviews().size();
    EXPECT_GT(inSight, 2u);
    EXPECT_LT(inSight, 50u);
    EXPECT_TRUE(widget.indexWidget(widget.model()->index(0, 1)));
    EXPECT_FALSE(widget.indexWidget(widget.model()->index(0, 0)));
    EXPECT_EQ(widget.model()->index(0, 1).data().toString(), "size 0");
    table->scrollRowToVisible(5000);
    settle();
    EXPECT_LE(table->subviews().size(), inSight + 2) << "others are let go";
    EXPECT_FALSE(widget.indexWidget(widget.model()->index(0, 1)));
    EXPECT_TRUE(widget.indexWidget(widget.model()->index(5000, 1)));
    QTest::mouseClick(widget.viewport(), Qt::LeftButton, {},
                      widget.visualRect(widget.model()->index(4999, 1)).center());
    expectSelected({4999});
}

TEST_F(TableHostTest, ClicksSelectAndAreTold) {
    int announced = 0;
    const auto observer = NSNotificationCenter::defaultCenter()->addObserver(
        NSNotificationName(NSTableView::selectionDidChangeNotification), table, nullptr,
        [&](const Notification&) { ++announced; });
    click(1);
    expectSelected({1});
    EXPECT_EQ(table->clickedRow(), 1);
    click(3, Qt::ShiftModifier);
    expectSelected({1, 2, 3});
    click(2, Qt::ControlModifier);
    expectSelected({1, 3});
    EXPECT_EQ(announced, 3);
    click(3, {}, Qt::RightButton);
    expectSelected({1, 3});
    EXPECT_EQ(table->clickedRow(), 3);
    click(0, {}, Qt::RightButton);
    expectSelected({0});
    QTest::mouseDClick(shown().viewport(), Qt::LeftButton, {}, middleOf(2));
    EXPECT_EQ(source->opened, 2);
    // What an observer makes of it is what is shown.
    const auto veto = NSNotificationCenter::defaultCenter()->addObserver(
        NSNotificationName(NSTableView::selectionDidChangeNotification), table, nullptr,
        [&](const Notification&) { table->selectOnlyRow(5); });
    click(1);
    expectSelected({5});
    NSNotificationCenter::defaultCenter()->removeObserver(veto);
    NSNotificationCenter::defaultCenter()->removeObserver(observer);
}

TEST_F(TableHostTest, TheKeyboardDoesEverything) {
    shown().setFocus();
    EXPECT_EQ(window->firstResponder(), table);
    press(Qt::Key_Right);
    QTest::keyClicks(&shown(), "item 27");
    expectSelected({27});
    press(Qt::Key_Return);
    EXPECT_EQ(source->opened, 27);
    table->selectOnlyRow(0);
    const IndexSet all(IndexSet::Range{0, 40});
    const struct {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        IndexSet selected;
    } table_[] = {
        {Qt::Key_Down, {}, {1}},
        {Qt::Key_Down, Qt::ShiftModifier, {1, 2}},
        {Qt::Key_Down, Qt::ShiftModifier, {1, 2, 3}},
        {Qt::Key_Up, Qt::ShiftModifier, {1, 2}},
        {Qt::Key_End, {}, {39}},
        {Qt::Key_Home, {}, {0}},
        {Qt::Key_A, Qt::ControlModifier, all},
        {Qt::Key_Down, {}, {1}},
        {Qt::Key_Down, Qt::ControlModifier, {1}},
        {Qt::Key_Space, Qt::ControlModifier, {1, 2}},
    };
    for (const auto& step : table_) {
        press(step.key, step.modifiers);
        EXPECT_EQ(table->selectedRowIndexes(), step.selected) << step.key;
    }
    press(Qt::Key_PageDown);
    EXPECT_GT(*table->selectedRowIndexes().first(), 3);
    table->selectOnlyRows({3, 5});
    press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "item 3\tsize 3\nitem 5\tsize 5");
    press(Qt::Key_Down);
    EXPECT_EQ(table->selectedRowIndexes(), IndexSet({4})) << "goes on from what is selected";
}

TEST_F(TableHostTest, FilesAreDraggedOutAndCopied) {
    const QAbstractItemModel& model = *shown().model();
    click(2);
    EXPECT_TRUE(shown().dragEnabled());
    click(3);
    EXPECT_FALSE(shown().dragEnabled()) << "a drag selects";
    const std::unique_ptr<QMimeData> data(model.mimeData(
        {model.index(2, 0), model.index(3, 0), model.index(4, 0), model.index(4, 1)}));
    const QList<QUrl> files{QUrl::fromLocalFile("/pictures/2 a.png"),
                            QUrl::fromLocalFile("/pictures/4 a.png")};
    EXPECT_EQ(data->urls(), files);
    table->selectOnlyRows({2, 3, 4});
    press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->mimeData()->urls(), files);
    EXPECT_EQ(NSPasteboard::generalPasteboard()->fileURLs().size(), 2u);
}

TEST_F(TableHostTest, HeadersSortAndResize) {
    const auto name = table->tableColumns()[0];
    QHeaderView& header = *shown().horizontalHeader();
    const auto clickHeader = [&] {
        QTest::mouseClick(header.viewport(), Qt::LeftButton, {},
                          QPoint(header.sectionViewportPosition(0) + 20, header.height() / 2));
        settle();
    };
    clickHeader();
    EXPECT_FALSE(table->sortOrder()) << "not a column to sort by";
    name->setSortable(true);
    clickHeader();
    ASSERT_TRUE(table->sortOrder());
    EXPECT_TRUE(table->sortOrder()->isAscending);
    clickHeader();
    EXPECT_FALSE(table->sortOrder()->isAscending);
    EXPECT_EQ(shown().model()->index(0, 0).data().toString(), "item 39");
    EXPECT_EQ(header.sortIndicatorOrder(), Qt::DescendingOrder);
    header.resizeSection(0, 77);
    EXPECT_EQ(name->width(), 77);
    name->setWidth(55);
    EXPECT_EQ(header.sectionSize(0), 55);
    name->setTitle("Title");
    EXPECT_EQ(shown().model()->headerData(0, Qt::Horizontal).toString(), "Title");
}

TEST_F(TableHostTest, FollowsEditionsExactly) {
    QAbstractItemModelTester tester(shown().model(),
                                    QAbstractItemModelTester::FailureReportingMode::Fatal);
    for (unsigned seed = 0; seed < 20; ++seed) {
        RandomEditions random(seed);
        const auto list = SelectableArray<int>::create();
        source->items.clear();
        table->reloadData();
        list->setEditionHandler([&](const SelectableArray<int>::Action& action) {
            // Indexes that are held stay with their items.
            std::vector<std::pair<QPersistentModelIndex, int>> held;
            for (std::size_t row = 0; row < source->items.size(); ++row)
                held.emplace_back(shown().model()->index(static_cast<int>(row), 1),
                                  source->items[row]);
            const SelectableArrayEdition edition = action();
            source->items = list->elements();
            table->reloadEditedData(edition, Options::effectFade);
            if (!edition.as<SelectableArrayEdition::Replace>())
                for (const auto& [index, item] : held) {
                    const auto row = static_cast<std::size_t>(index.row());
                    ASSERT_TRUE(!index.isValid() || source->items[row] == item);
                }
            const auto stayed = std::count_if(held.begin(), held.end(),
                                              [](const auto& one) { return one.first.isValid(); });
            const bool isMove = edition.as<SelectableArrayEdition::Move>() != nullptr;
            ASSERT_TRUE(!isMove || stayed == list->count());
        });
        for (int step = 0; step < 25; ++step) {
            random.edit(*list);
            std::string expected;
            for (const int item : list->elements())
                expected += std::to_string(item) + " ";
            ASSERT_EQ(texts(), expected);
            ASSERT_EQ(selectedInWidget(), list->selection());
        }
    }
}

TEST_F(TableHostTest, SeveralUpdatesAreOneChange) {
    QAbstractItemModelTester tester(shown().model(),
                                    QAbstractItemModelTester::FailureReportingMode::Fatal);
    int resets = 0;
    QObject::connect(shown().model(), &QAbstractItemModel::modelReset, [&] { ++resets; });
    const QPersistentModelIndex held = shown().model()->index(10, 0);
    click(10);
    table->scrollTopRow(8, false);
    settle();
    const int top = shown().verticalScrollBar()->value();
    auto& items = source->items;
    items.erase(items.begin(), items.begin() + 3);
    items.insert(items.begin(), {100, 101});
    items.insert(items.end(), 102);
    table->beginUpdates();
    table->removeRows({0, 1, 2}, {});
    EXPECT_EQ(texts().find("9"), std::string::npos) << "nothing is read meanwhile";
    table->insertRows({0, 1, 40 - 1}, {});
    table->endUpdates();
    EXPECT_EQ(shown().model()->rowCount(), 40);
    EXPECT_EQ(held.row(), 9);
    EXPECT_EQ(shown().currentIndex().row(), 9);
    EXPECT_EQ(held.data().toString(), "item 10");
    expectSelected({9});
    EXPECT_EQ(shown().verticalScrollBar()->value(), top);
    EXPECT_EQ(resets, 0);
}

TEST_F(TableHostTest, RowsAreAsHighAsTheTableSays) {
    source->tall = 2;
    EXPECT_EQ(shown().rowHeight(2), 60);
    EXPECT_EQ(shown().rowHeight(3), 24);
    source->tall = 3;
    source->items.insert(source->items.begin(), {-1});
    table->insertRows({0}, {});
    EXPECT_EQ(shown().rowHeight(2), 24);
    EXPECT_EQ(shown().rowHeight(3), 60);
    table->setRowHeight(30);
    EXPECT_EQ(shown().rowHeight(2), 30);
    table->setDelegate(nullptr);
    EXPECT_EQ(shown().rowHeight(3), 30);
}

TEST_F(TableHostTest, ScrollsBothWays) {
    QScrollBar& bar = *shown().verticalScrollBar();
    const auto origin = [&] { return scrollView->contentView()->bounds().y(); };
    table->scrollTopRow(12, false);
    EXPECT_EQ(bar.value(), 12 * 24);
    bar.setValue(100);
    EXPECT_EQ(origin(), 100);
    table->scrollRowToVisible(39);
    EXPECT_TRUE(shown().viewport()->rect().contains(middleOf(39)));
    EXPECT_EQ(origin(), bar.value());
    bar.setValue(100);
    window->setContentView(nullptr);
    settle();
    EXPECT_EQ(origin(), 100) << "without a widget";
    window->setContentView(scrollView);
    EXPECT_EQ(shown().verticalScrollBar()->value(), 100) << "in the next one";
}

TEST_F(TableHostTest, ReadersOfTheScreenGetEverything) {
    QAccessible::setActive(true);
    source->makesViews = true;
    table->setAccessibilityLabel("Pictures");
    shown();
    table->selectOnlyRow(1);
    auto* const face = QAccessible::queryAccessibleInterface(&shown());
    ASSERT_TRUE(face && face->tableInterface());
    EXPECT_EQ(face->text(QAccessible::Name), "Pictures");
    EXPECT_EQ(face->tableInterface()->rowCount(), 40);
    EXPECT_EQ(face->tableInterface()->columnDescription(0), "Name");
    EXPECT_EQ(face->tableInterface()->selectedRows(), QList<int>({1}));
    auto* const cell = face->tableInterface()->cellAt(1, 0);
    ASSERT_TRUE(cell);
    EXPECT_EQ(cell->text(QAccessible::Name), "item 1");
    EXPECT_TRUE(cell->state().selected);
    QAccessible::setActive(false);
}

TEST_F(TableHostTest, OutlivesSourcesThatLieAndThrow) {
    source->lie = std::numeric_limits<std::int64_t>::max() / 2;
    table->setRowHeight(1);
    shown();
    EXPECT_LE(shown().model()->rowCount(), 1 << 24);
    source->lie = -5;
    table->reloadData();
    EXPECT_EQ(shown().model()->rowCount(), 0);
    source->lie = 0;
    table->reloadData();
    source->throws = true;
    testing::internal::CaptureStdout();
    EXPECT_EQ(shown().model()->index(0, 0).data().toString(), "");
    EXPECT_EQ(shown().model()->index(1, 0).data().toString(), "");
    const std::string said = testing::internal::GetCapturedStdout();
    const std::string line = "A view could not be filled: no text\n";
    EXPECT_NE(said.find(line), std::string::npos);
    EXPECT_EQ(said.find(line), said.rfind(line)) << "once";
    // A height that cannot be given reaches whoever asks; once it can, all is well.
    EXPECT_THROW(table->noteHeightOfAllRowsChanged(), std::runtime_error);
    EXPECT_THROW((void)table->heightOfRow(20), std::runtime_error);
    testing::internal::CaptureStdout();
    shown().verticalScrollBar()->setValue(30);
    settle();
    testing::internal::GetCapturedStdout();
    source->throws = false;
    table->setRowHeight(20);
    EXPECT_EQ(table->heightOfRow(20), 20);
    EXPECT_EQ(shown().rowHeight(20), 20);
    // Rows that have gone without a word are empty.
    source->items.resize(3);
    testing::internal::CaptureStdout();
    shown().viewport()->grab();
    EXPECT_EQ(shown().model()->index(10, 0).data().toString(), "");
    testing::internal::GetCapturedStdout();
    // The source is gone, the window goes on.
    table->setDataSource(nullptr);
    settle();
    EXPECT_EQ(shown().model()->rowCount(), 3) << "set again";
}

TEST_F(TableHostTest, MayLeaveTheWindowInTheMiddleOfAClick) {
    const auto observer = NSNotificationCenter::defaultCenter()->addObserver(
        NSNotificationName(NSTableView::selectionDidChangeNotification), table, nullptr,
        [&](const Notification&) { window->setContentView(nullptr); });
    click(1);
    NSNotificationCenter::defaultCenter()->removeObserver(observer);
    EXPECT_FALSE(host->widget().findChild<QTableView*>());
    EXPECT_EQ(table->selectedRowIndexes(), IndexSet({1}));
    window->setContentView(scrollView);
    expectSelected({1});
}

TEST_F(TableHostTest, AScrollViewTakesAnyDocument) {
    const auto tall = NSView::create({0, 0, 100, 500});
    scrollView->setDocumentView(tall);
    settle();
    QWidget* const document = widgetFor(*tall);
    ASSERT_TRUE(document);
    EXPECT_FALSE(host->widget().findChild<QTableView*>());
    auto* const bar =
        widgetFor(*scrollView)->findChild<QScrollBar*>("", Qt::FindChildrenRecursively);
    ASSERT_TRUE(bar);
    const auto area = qobject_cast<QAbstractScrollArea*>(document->parentWidget()->parentWidget());
    ASSERT_TRUE(area);
    EXPECT_EQ(area->verticalScrollBar()->value(), area->verticalScrollBar()->maximum())
        << "y grows upward: the bottom is shown at first";
    scrollView->contentView()->setBoundsOrigin({0, 100});
    EXPECT_EQ(area->verticalScrollBar()->value(), 500 - 100 - scrollView->frame().height());
    area->verticalScrollBar()->setValue(0);
    EXPECT_EQ(scrollView->contentView()->bounds().maxY(), 500);
    EXPECT_EQ(document->y(), 0);
    // Where one reads from right to left, the bar across counts from there.
    tall->setFrame({0, 0, 600, 500});
    QApplication::setLayoutDirection(Qt::RightToLeft);
    settle();
    const int out = area->horizontalScrollBar()->maximum();
    EXPECT_EQ(area->horizontalScrollBar()->value(), out);
    EXPECT_EQ(document->x(), 0) << "what was shown stays";
    area->horizontalScrollBar()->setValue(0);
    EXPECT_EQ(document->x(), -out);
    EXPECT_EQ(scrollView->contentView()->bounds().x(), out);
    scrollView->contentView()->setBoundsOrigin({10, 0});
    EXPECT_EQ(area->horizontalScrollBar()->value(), out - 10);
    QApplication::setLayoutDirection(Qt::LeftToRight);
}

} // namespace
