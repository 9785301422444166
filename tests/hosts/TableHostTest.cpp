#include "ItemViewTest.h"

#include <zorvan/files/NSPasteboard.h>
#include <zorvan/interface/NSTableView.h>
#include <zorvan/platform/appkit/NSScrollView.h>

#include <QHeaderView>
#include <QMimeData>
#include <QTableView>

namespace {

struct Source : NSTableViewDataSource, NSTableViewDelegate {
    std::int64_t numberOfRows(const NSTableView&) const override {
        return lie ? lie : std::ssize(items);
    }
    std::string text(const NSTableView&, std::int64_t column, std::int64_t row) const override {
        asked = std::max(asked, row);
        if (throws)
            throw std::runtime_error("no text");
        if (row >= std::ssize(items))
            throw std::out_of_range("no such item");
        if (makesViews && column)
            return {};
        return (column ? "size " : "item ") + std::to_string(items[static_cast<std::size_t>(row)]);
    }
    double heightOfRow(const NSTableView& table, std::int64_t row) const override {
        if (throws && row == 5)
            throw std::runtime_error("no height");
        return row == tall ? 60 : table.rowHeight() + more;
    }
    std::shared_ptr<NSView> view(NSTableView&, std::int64_t column, std::int64_t) override {
        if (throws)
            throw std::runtime_error("no view");
        if (!makesViews || column == 0)
            return nullptr;
        const auto made = NSView::create();
        made->setAccessibilityLabel("view");
        return made;
    }
    std::optional<URL> draggedURL(const NSTableView&, std::int64_t row) const override {
        if (row % 2)
            return std::nullopt;
        return URL({.fileURLWithPath = "/pictures/" + std::to_string(row) + " a.png"});
    }
    void rowOpened(NSTableView&, std::int64_t row) override { opened = row; }
    void sortOrderDidChange(NSTableView& table) override {
        std::reverse(items.begin(), items.end());
        table.reloadData();
    }

    std::vector<int> items;
    std::int64_t lie = 0, opened = -1, tall = -1;
    mutable std::int64_t asked = -1;
    double more = 0;
    bool makesViews = false, throws = false;
};

/// Forty rows, which come after the window has shown the table.
class TableHostTest : public ItemViewTest {
protected:
    TableHostTest() {
        table->setNumberOfColumns(2);
        table->tableColumns()[0]->setTitle("Name");
        scrollView->setDocumentView(table);
        window->setContentView(scrollView);
        source->items.resize(40);
        std::iota(source->items.begin(), source->items.end(), 0);
        table->setDataSource(source);
        table->setDelegate(source);
    }

    QTableView& widget() const { return shown<QTableView>(); }
    IndexSet selected() const override {
        EXPECT_EQ(selectedInWidget(), table->selectedRowIndexes());
        return table->selectedRowIndexes();
    }
    double origin() const { return scrollView->contentView()->bounds().y(); }

    const std::shared_ptr<NSTableView> table = NSTableView::create();
    const std::shared_ptr<NSScrollView> scrollView = NSScrollView::create({0, 0, 240, 160});
    const std::shared_ptr<Source> source = std::make_shared<Source>();
};

TEST_F(TableHostTest, ShowsItsDataWheneverItComes) {
    EXPECT_EQ(text(39, 1), "size 39");
    EXPECT_TRUE(widget().horizontalHeader()->isVisible());
    EXPECT_EQ(model().headerData(0, Qt::Horizontal).toString(), "Name");
    // Another table, filled before.
    const auto before = NSTableView::create();
    before->setNumberOfColumns(2);
    before->setDataSource(source);
    before->selectOnlyRow(3);
    window->setContentView(before);
    ASSERT_EQ(&widget(), widgetFor(*before));
    EXPECT_EQ(selectedInWidget(), IndexSet({3}));
    EXPECT_FALSE(widget().horizontalHeader()->isVisible()) << "no column has a title";
    before->setNumberOfColumns(3);
    EXPECT_EQ(model().columnCount(), 3);
    before->setNumberOfColumns(1);
    EXPECT_EQ(model().columnCount(), 1);
}

TEST_F(TableHostTest, AsksForWhatIsSeenOnly) {
    source->items.resize(100000);
    source->makesViews = true;
    source->asked = -1;
    table->reloadData();
    const QAbstractItemView& view = widget();
    EXPECT_LT(source->asked, 50);
    const std::size_t inSight = table->subviews().size();
    EXPECT_GT(inSight, 2u);
    EXPECT_LT(inSight, 50u);
    EXPECT_TRUE(view.indexWidget(at(0, 1)));
    EXPECT_FALSE(view.indexWidget(at(0, 0)));
    EXPECT_EQ(text(0, 1), "view") << "for those who do not see it";
    table->scrollRowToVisible(5000);
    EXPECT_LE(table->subviews().size(), inSight + 2) << "others are let go";
    EXPECT_FALSE(view.indexWidget(at(0, 1)));
    EXPECT_TRUE(view.indexWidget(at(5000, 1)));
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, view.visualRect(at(4999, 1)).center());
    EXPECT_EQ(selected(), IndexSet({4999})) << "through the view of a cell";
}

TEST_F(TableHostTest, ClicksSelectAndAreTold) {
    int announced = 0;
    observe(NSTableView::selectionDidChangeNotification, [&] { ++announced; });
    const std::tuple<int, Qt::KeyboardModifiers, Qt::MouseButton, IndexSet> clicks[] = {
        {1, {}, Qt::LeftButton, {1}},
        {3, Qt::ShiftModifier, Qt::LeftButton, {1, 2, 3}},
        {2, Qt::ControlModifier, Qt::LeftButton, {1, 3}},
        {3, {}, Qt::RightButton, {1, 3}},
        {0, {}, Qt::RightButton, {0}}};
    for (const auto& [row, modifiers, button, selection] : clicks) {
        click(row, modifiers, button);
        EXPECT_EQ(selected(), selection);
        EXPECT_EQ(table->clickedRow(), row);
    }
    EXPECT_EQ(announced, 4);
    QTest::mouseDClick(shown().viewport(), Qt::LeftButton, {}, middleOf(2));
    EXPECT_EQ(source->opened, 2);
    observe(NSTableView::selectionDidChangeNotification, [&] { table->selectOnlyRow(5); });
    click(1);
    EXPECT_EQ(selected(), IndexSet({5})) << "what an observer makes of it";
    observe(NSTableView::selectionDidChangeNotification, [&] { window->setContentView(nullptr); });
    click(1);
    EXPECT_FALSE(top().findChild<QTableView*>());
}

struct MenuTable : NSTableView {
    MenuTable() : NSTableView(Key{}, CGRect()) {}
    std::shared_ptr<NSMenu> menu(const NSEvent& with) override {
        asked = row(convertFromBase(with.locationInWindow).y);
        return nullptr;
    }
    std::int64_t asked = -1;
};

TEST_F(TableHostTest, MenusAreForTheRowThatIsMeant) {
    const auto asking = std::make_shared<MenuTable>();
    asking->setNumberOfColumns(1);
    asking->setRowHeight(20.5);
    asking->setDataSource(source);
    scrollView->setDocumentView(asking);
    shown().verticalScrollBar()->setValue(300);
    shown().setCurrentIndex(at(18));
    for (const auto& [reason, row] :
         {std::pair(QContextMenuEvent::Mouse, 16), {QContextMenuEvent::Keyboard, 18}}) {
        QContextMenuEvent event(reason, middleOf(16),
                                shown().viewport()->mapToGlobal(middleOf(16)));
        QCoreApplication::sendEvent(shown().viewport(), &event);
        EXPECT_EQ(asking->asked, row);
        EXPECT_EQ(asking->clickedRow(), row);
    }
}

TEST_F(TableHostTest, TheKeyboardDoesEverything) {
    shown().setFocus();
    EXPECT_EQ(window->firstResponder(), table);
    press(Qt::Key_Right);
    QTest::keyClicks(&shown(), "item 27");
    EXPECT_EQ(selected(), IndexSet({27}));
    press(Qt::Key_Return);
    EXPECT_EQ(source->opened, 27);
    table->selectOnlyRow(0);
    expectSelections({{Qt::Key_Down, {}, {1}},
                      {Qt::Key_Down, Qt::ShiftModifier, {1, 2}},
                      {Qt::Key_Down, Qt::ShiftModifier, {1, 2, 3}},
                      {Qt::Key_Up, Qt::ShiftModifier, {1, 2}},
                      {Qt::Key_End, {}, {39}},
                      {Qt::Key_Home, {}, {0}},
                      {Qt::Key_A, Qt::ControlModifier, IndexSet(IndexSet::Range{0, 40})},
                      {Qt::Key_Down, {}, {1}},
                      {Qt::Key_Down, Qt::ControlModifier, {1}},
                      {Qt::Key_Space, Qt::ControlModifier, {1, 2}}});
    table->selectOnlyRows({3, 5});
    press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "item 3\tsize 3\nitem 5\tsize 5");
    press(Qt::Key_Down);
    EXPECT_EQ(selected(), IndexSet({4})) << "goes on from what is selected";
    table->selectOnlyRows({2, 3, 4});
    press(Qt::Key_C, Qt::ControlModifier);
    const QList<QUrl> files{QUrl::fromLocalFile("/pictures/2 a.png"),
                            QUrl::fromLocalFile("/pictures/4 a.png")};
    EXPECT_EQ(QGuiApplication::clipboard()->mimeData()->urls(), files);
    EXPECT_EQ(NSPasteboard::generalPasteboard()->fileURLs().size(), 2u);
}

TEST_F(TableHostTest, HeadersSortAndResize) {
    const auto name = table->tableColumns()[0];
    QHeaderView& header = *widget().horizontalHeader();
    const auto clickHeader = [&] {
        QTest::mouseClick(header.viewport(), Qt::LeftButton, {},
                          QPoint(header.sectionViewportPosition(0) + 20, header.height() / 2));
    };
    clickHeader();
    EXPECT_FALSE(table->sortOrder()) << "not a column to sort by";
    name->setSortable(true);
    clickHeader();
    ASSERT_TRUE(table->sortOrder());
    EXPECT_TRUE(table->sortOrder()->isAscending);
    EXPECT_EQ(text(0), "item 39");
    clickHeader();
    EXPECT_FALSE(table->sortOrder()->isAscending);
    EXPECT_EQ(header.sortIndicatorOrder(), Qt::DescendingOrder);
    header.resizeSection(0, 77);
    EXPECT_EQ(name->width(), 77);
    name->setWidth(55);
    EXPECT_EQ(header.sectionSize(0), 55);
}

TEST_F(TableHostTest, FollowsEditionsExactly) {
    source->items.clear();
    table->reloadData();
    expectExactEditions(source->items, [&](const SelectableArrayEdition& edition) {
        table->reloadEditedData(edition, NSTableView::AnimationOptions::effectFade);
    });
}

TEST_F(TableHostTest, SeveralUpdatesAreOneChange) {
    const Tester tester(&model(), Tester::FailureReportingMode::Fatal);
    const QPersistentModelIndex held = at(10);
    click(10);
    table->scrollTopRow(8, false);
    const int top = shown().verticalScrollBar()->value();
    auto& items = source->items;
    items.erase(items.begin());
    items[0] = items[1] = 100;
    items.push_back(102);
    table->beginUpdates();
    table->removeRows({0, 1, 2}, {});
    EXPECT_EQ(text(9), "") << "nothing is read meanwhile";
    table->insertRows({0, 1, 40 - 1}, {});
    table->endUpdates();
    EXPECT_EQ(held.row(), 9) << "no reset";
    EXPECT_EQ(shown().currentIndex().row(), 9);
    EXPECT_EQ(text(9), "item 10");
    EXPECT_EQ(selected(), IndexSet({9}));
    EXPECT_EQ(shown().verticalScrollBar()->value(), top);
}

TEST_F(TableHostTest, RowsAreAsHighAsTheTableSays) {
    source->tall = 2;
    table->noteHeightOfAllRowsChanged();
    EXPECT_EQ(widget().rowHeight(2), 60);
    EXPECT_EQ(widget().rowHeight(3), 24);
    source->tall = 0;
    source->items.insert(source->items.begin(), {-1});
    table->insertRows({0}, {});
    EXPECT_EQ(widget().rowHeight(0), 60);
    EXPECT_EQ(widget().rowHeight(3), 24);
    table->setRowHeight(30);
    EXPECT_EQ(widget().rowHeight(3), 30);
    table->setDelegate(nullptr);
    EXPECT_EQ(widget().rowHeight(0), 30);
}

TEST_F(TableHostTest, ManyRowsOfTheirOwnHeightsComeSoon) {
    source->items.resize(100000);
    source->more = 6;
    const auto start = std::chrono::steady_clock::now();
    table->reloadData();
    settle();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
    EXPECT_EQ(widget().rowHeight(99999), 30);
}

TEST_F(TableHostTest, ScrollsBothWays) {
    const QScrollBar& bar = *shown().verticalScrollBar();
    table->scrollTopRow(12, false);
    EXPECT_EQ(bar.value(), 12 * 24);
    table->scrollRowToVisible(39);
    EXPECT_TRUE(shown().viewport()->rect().contains(middleOf(39)));
    EXPECT_EQ(origin(), bar.value());
    source->items.push_back(40);
    table->beginUpdates();
    table->insertRows({40}, {});
    table->scrollRowToVisible(40);
    table->endUpdates();
    EXPECT_LT(shown().visualRect(at(40)).bottom(), shown().viewport()->height()) << "all of it";
    shown().verticalScrollBar()->setValue(100);
    window->setContentView(nullptr);
    EXPECT_EQ(origin(), 100) << "without a widget";
    window->setContentView(scrollView);
    EXPECT_EQ(shown().verticalScrollBar()->value(), 100) << "in the next one";
    // Any other document.
    const auto tall = NSView::create({0, 0, 100, 500});
    scrollView->setDocumentView(tall);
    QWidget* const document = widgetFor(*tall);
    ASSERT_TRUE(document);
    auto& area = shown<QAbstractScrollArea>();
    QScrollBar &down = *area.verticalScrollBar(), &across = *area.horizontalScrollBar();
    scrollView->contentView()->setBoundsOrigin({0, 0});
    EXPECT_EQ(down.value(), down.maximum()) << "y grows upward";
    scrollView->contentView()->setBoundsOrigin({0, 100});
    EXPECT_EQ(down.value(), 500 - 100 - scrollView->frame().height());
    down.setValue(0);
    EXPECT_EQ(scrollView->contentView()->bounds().maxY(), 500);
    EXPECT_EQ(document->y(), 0);
    // Where one reads from right to left, the bar across counts from there.
    tall->setFrame({0, 0, 600, 500});
    QApplication::setLayoutDirection(Qt::RightToLeft);
    settle();
    const int out = across.maximum();
    EXPECT_EQ(across.value(), out);
    EXPECT_EQ(document->x(), 0) << "what was shown stays";
    across.setValue(0);
    EXPECT_EQ(document->x(), -out);
    EXPECT_EQ(scrollView->contentView()->bounds().x(), out);
    scrollView->contentView()->setBoundsOrigin({10, 0});
    EXPECT_EQ(across.value(), out - 10);
    QApplication::setLayoutDirection(Qt::LeftToRight);
}

TEST_F(TableHostTest, OutlivesSourcesThatLieAndThrow) {
    const auto countOf = [&](std::int64_t lie) {
        source->lie = lie;
        table->reloadData();
        return model().rowCount();
    };
    table->setDelegate(nullptr);
    constexpr int most = 1 << 24;
    EXPECT_EQ(countOf(std::numeric_limits<std::int64_t>::max() / 2), most);
    // As many rows as are shown keep their indexes, one more does not.
    countOf(most - 1);
    const QPersistentModelIndex last = at(most - 2);
    for (const int row : {most - 1, -1}) {
        ++source->lie;
        table->insertRows({0}, {});
        EXPECT_EQ(last.row(), row);
    }
    EXPECT_EQ(countOf(-5), 0);
    EXPECT_EQ(countOf(0), 40);
    table->setDelegate(source);
    source->throws = true;
    testing::internal::CaptureStdout();
    EXPECT_EQ(text(0) + text(1), "");
    const std::string said = testing::internal::GetCapturedStdout();
    const auto place = said.find("A view could not be filled: no text\n");
    EXPECT_TRUE(place != said.npos && place == said.rfind("A view could not be filled: no text\n"));
    // A height that cannot be given reaches whoever asks; once it can, all is well.
    EXPECT_THROW(table->noteHeightOfAllRowsChanged(), std::runtime_error);
    testing::internal::CaptureStdout();
    shown().verticalScrollBar()->setValue(30);
    source->throws = false;
    table->setRowHeight(20);
    EXPECT_EQ(widget().rowHeight(20), 20);
    // Rows that have gone without a word are empty.
    source->items.resize(3);
    shown().viewport()->grab();
    EXPECT_EQ(text(10), "");
    testing::internal::GetCapturedStdout();
    table->setDataSource(nullptr);
    EXPECT_EQ(model().rowCount(), 0);
}

} // namespace
