#include <tests/Listener.h>
#include <tests/Testing.h>
#include <tests/collections/RandomEditions.h>

#include <zorvan/collections/ManagedList.h>
#include <zorvan/interface/ManagedListViewReloader.h>
#include <zorvan/interface/NSTableViewObserver.h>
#include <zorvan/interface/NSWindow.h>
#include <zorvan/platform/appkit/NSAnimationContext.h>

using Calls = std::vector<std::string>;
using Options = NSTableView::AnimationOptions;

namespace {

/// A cell view that remembers which item it was made for.
struct ItemView : NSView {
    explicit ItemView(int shown) : NSView(Key{}, {}), item(shown) {}
    int item;
};

struct Source : NSTableViewDataSource, NSTableViewDelegate {
    std::int64_t numberOfRows(const NSTableView&) const override {
        return static_cast<std::int64_t>(items.size());
    }
    std::shared_ptr<NSView> view(NSTableView&, std::int64_t, std::int64_t row) override {
        return std::make_shared<ItemView>(items[static_cast<std::size_t>(row)]);
    }
    std::string text(const NSTableView&, std::int64_t, std::int64_t row) const override {
        return "item " + std::to_string(items[static_cast<std::size_t>(row)]);
    }
    double heightOfRow(const NSTableView&, std::int64_t row) const override {
        ++heightsAsked;
        return 10 + static_cast<double>(row % 3);
    }
    void rowOpened(NSTableView&, std::int64_t row) override { opened = row; }
    void sortOrderDidChange(NSTableView& table) override {
        sortedBy = table.sortOrder() ? table.sortOrder()->column->title() : "none";
    }
    std::vector<int> items;
    mutable std::int64_t heightsAsked = 0;
    std::string sortedBy;
    std::int64_t opened = -1;
};

struct Recorder : NSTableViewObserver {
    void updatesDidBegin() override { calls.emplace_back("begin"); }
    void updatesDidEnd() override { calls.emplace_back("end"); }
    void rowsInserted(const IndexSet& at, Options options) override {
        calls.push_back("insert " + at.description() + " " + std::to_string(options.rawValue));
    }
    void rowsRemoved(const IndexSet& at, Options options) override {
        calls.push_back("remove " + at.description() + " " + std::to_string(options.rawValue));
    }
    void rowMoved(std::int64_t from, std::int64_t to) override {
        calls.push_back("move " + std::to_string(from) + " " + std::to_string(to));
    }
    void cellsReloaded(const IndexSet& rows, const IndexSet& columns) override {
        calls.push_back("cells " + rows.description() + " " + columns.description());
    }
    void rowHeightsDidChange(const IndexSet& rows) override {
        const NSAnimationContext& context = NSAnimationContext::currentContext();
        const bool isAtOnce = context.duration() == 0 && !context.allowsImplicitAnimation();
        calls.push_back("heights " + rows.description() + (isAtOnce ? " at once" : ""));
    }
    void reloaded() override { calls.emplace_back("reload"); }
    void selectionDidChange() override { calls.emplace_back("select"); }
    void columnDidChange(std::int64_t at) override {
        calls.push_back("column " + std::to_string(at));
    }
    Calls calls;
};

struct Fixture {
    explicit Fixture(std::vector<int> items = {}, std::int64_t columns = 2) {
        source->items = std::move(items);
        table->setNumberOfColumns(columns);
        table->setDataSource(source);
        table->setDelegate(source);
        table->addObserver(recorder);
    }
    /// Every cell view, made or found, stands where its item does.
    void expectRows() {
        ASSERT_EQ(table->numberOfRows(), static_cast<std::int64_t>(source->items.size()));
        for (std::int64_t row = 0; row < table->numberOfRows(); ++row) {
            const auto view = std::dynamic_pointer_cast<ItemView>(table->view(0, row, true));
            ASSERT_TRUE(view);
            ASSERT_EQ(view->item, source->items[static_cast<std::size_t>(row)]) << "row " << row;
        }
    }

    std::shared_ptr<Source> source = std::make_shared<Source>();
    std::shared_ptr<NSTableView> table = NSTableView::create();
    std::shared_ptr<Recorder> recorder = std::make_shared<Recorder>();
    Calls& calls = recorder->calls;
};

} // namespace

TEST(NSTableView, ShowsEditionsByTheCallsThatFit) {
    using Edition = SelectableArrayEdition;
    struct {
        Edition edition;
        std::vector<int> items;
        Calls calls;
    } table[] = {
        {Edition::Insert{2, 1}, {0, 8, 9, 1, 2}, {"begin", "insert {1...2} 32", "end"}},
        {Edition::Replace{1}, {0, 9, 2}, {"cells {1} {0...1}"}},
        {Edition::Remove{{0, 2}}, {1}, {"begin", "remove {0, 2} 32", "end"}},
        {Edition::Move{{0, 1}, 3}, {2, 0, 1}, {"begin", "move 0 2", "move 0 2", "end"}},
        {Edition::Move{{1, 2}, 0}, {1, 2, 0}, {"begin", "move 1 0", "move 2 1", "end"}},
        {Edition::Select{{1}}, {0, 1, 2}, {"select"}},
        {Edition::Reload{{0}}, {7, 8}, {"reload", "select"}},
    };
    for (const auto& row : table) {
        Fixture shown({0, 1, 2});
        shown.expectRows();
        shown.source->items = row.items;
        shown.table->reloadEditedData(row.edition, Options::slideDown);
        EXPECT_EQ(shown.calls, row.calls);
        shown.expectRows();
    }
}

TEST(NSTableView, ShowsManagedListEditions) {
    const IndexSet middle{1, 2};
    const auto list = ManagedList<int>::create({0, 1, 2, 3});
    Fixture shown({0, 1, 2, 3});
    const Listener did(ManagedList<int>::didReloadNotification, list, [&](const auto& note) {
        shown.source->items = list->items();
        ManagedList<int>::ViewReloader(*ManagedList<int>::edition(note)).reload(*shown.table);
    });
    struct {
        std::function<void()> change;
        Calls calls;
    } table[] = {
        {[&] { list->setSelection(middle); }, {"select"}},
        {[&] { list->insert({9}, 0); }, {"begin", "insert {0} 1", "select", "end", "select"}},
        {[&] { list->remove({0}); }, {"begin", "remove {0} 1", "end"}},
        {[&] { list->move({0}, 2); }, {"cells {0...3} {0...1}", "select"}},
        {[&] { list->setFilter([](int item) { return item > 1; }); }, {"reload", "select"}},
        {[&] { list->reverseOrder(); }, {"cells {0...1} {0...1}"}},
    };
    for (const auto& row : table) {
        row.change();
        EXPECT_EQ(std::exchange(shown.calls, {}), row.calls);
        EXPECT_EQ(shown.table->selectedRowIndexes(), list->selection());
        shown.expectRows();
    }
    list->setSelection({0});
    shown.calls.clear();
    const Listener close(NSTableView::selectionDidChangeNotification, shown.table,
                         [&](const auto&) { shown.table = nullptr; });
    list->remove({0});
    EXPECT_EQ(shown.calls, (Calls{"begin", "remove {0} 1", "select", "end"})) << "to its end";
}

TEST(NSTableView, FollowsAListThroughRandomEditions) {
    RandomEditions random(3);
    for (int round = 0; round < 100; ++round) {
        Fixture shown;
        const auto list = SelectableArray<int>::create();
        list->setEditionHandler([&](const SelectableArray<int>::Action& action) {
            const SelectableArrayEdition edition = action();
            shown.source->items = list->elements();
            shown.table->reloadEditedData(edition, Options::effectFade);
        });
        for (int step = 0; step < 40; ++step) {
            random.edit(*list);
            shown.expectRows();
            ASSERT_EQ(shown.table->selectedRowIndexes(), list->selection());
        }
    }
}

TEST(NSTableView, TakesInScatteredRows) {
    std::mt19937 random(5);
    for (int round = 0; round < 50; ++round) {
        Fixture shown({0, 1, 2, 3, 4, 5, 6, 7});
        shown.table->selectOnlyRows({1, 2, 5, 7});
        shown.expectRows();
        IndexSet places, selection;
        for (std::int64_t row = 0; row < std::ssize(shown.source->items); ++row) {
            auto place = shown.source->items.begin() + row;
            if (random() % 2) {
                place = shown.source->items.insert(place, -1);
                places.insert(row);
            } else if (const int item = *place; item == 1 || item == 2 || item == 5 || item == 7) {
                selection.insert(row);
            }
        }
        shown.table->insertRows(places, Options::effectNone);
        shown.expectRows();
        ASSERT_EQ(shown.table->selectedRowIndexes(), selection);
    }
}

TEST(NSTableView, TellsOfTheRowsAlsoWhenTheyAreItsSelection) {
    Fixture shown({0, 1, 2, 3});
    NSTableView& table = *shown.table;
    table.selectOnlyRows({1, 3});
    shown.calls.clear();
    table.insertRows(table.selectedRowIndexes(), Options::effectNone);
    table.moveRows(table.selectedRowIndexes(), 0);
    table.removeRows(table.selectedRowIndexes(), Options::effectNone);
    EXPECT_EQ(shown.calls, (Calls{"insert {1, 3} 0", "select", "move 2 0", "move 5 1", "select",
                                  "remove {0...1} 0", "select"}));
    table.addTableColumn(table.tableColumns().front());
    EXPECT_EQ(table.tableColumns().back(), table.tableColumns().front());
}

TEST(NSTableView, MayBeAskedAndReloadedByWhoeverIsToldOfItsCellViews) {
    struct Asking : NSViewObserver {
        void subviewsDidChange() override { height = table->heightOfRow(1999); }
        void frameDidChange() override { table->reloadData(); }
        std::shared_ptr<NSTableView> table;
        double height = 0;
    };
    Fixture shown({0, 1, 2}, 1);
    const auto asking = std::make_shared<Asking>();
    asking->table = shown.table;
    shown.expectRows();
    shown.table->addObserver(std::static_pointer_cast<NSViewObserver>(asking));
    shown.source->items.resize(2000);
    shown.table->reloadData();
    EXPECT_EQ(asking->height, 11);
    shown.expectRows();
    shown.table->cell(1)->addObserver(asking);
    shown.table->tableColumns()[0]->setWidth(333);
    EXPECT_EQ(shown.table->cell(1), nullptr);
}

TEST(NSTableView, GoesOnWhenSomebodyThrows) {
    Fixture shown({0, 1, 2});
    NSScrollView::create({0, 0, 150, 50})->setDocumentView(shown.table);
    shown.table->selectOnlyRow(1);
    struct Throwing : NSTableViewObserver {
        void selectionDidChange() override { throw std::runtime_error("selection"); }
        void rowHeightsDidChange(const IndexSet&) override { throw std::runtime_error("heights"); }
    };
    auto throwing = std::make_shared<Throwing>();
    shown.table->addObserver(throwing);
    EXPECT_THROW(shown.table->resizeRowHeights(), std::runtime_error);
    EXPECT_EQ(NSAnimationContext::groupingDepth(), 0);
    shown.source->items = {0, 2};
    shown.calls.clear();
    EXPECT_THROW(shown.table->reloadEditedData(SelectableArrayEdition::Remove{{1}}, {}),
                 std::runtime_error);
    EXPECT_EQ(shown.calls, (Calls{"begin", "remove {1} 0", "select", "reload", "end"}));
    throwing.reset();
    shown.source->items.push_back(3);
    shown.table->reloadEditedData(SelectableArrayEdition::Insert{1, 2}, {});
    EXPECT_EQ(shown.table->frame().height(), 10 + 11 + 12);
}

TEST(NSTableView, AsksForHeightsOncePerChange) {
    constexpr std::int64_t count = 400;
    Fixture shown{std::vector<int>(count)};
    NSScrollView::create(CGRect(0, 0, 150, 50))->setDocumentView(shown.table);
    IndexSet odd;
    for (std::int64_t row = 1; row < 2 * count; row += 2)
        odd.insert(row);
    shown.source->heightsAsked = 0;
    const IndexSet moved = odd.intersection(IndexSet(IndexSet::Range{0, count}));
    shown.table->reloadEditedData(SelectableArrayEdition::Move{moved, 9}, Options::effectNone);
    EXPECT_LE(shown.source->heightsAsked, 2 * count);
    shown.source->heightsAsked = 0;
    shown.source->items.resize(2 * count);
    shown.table->insertRows(odd, Options::effectNone);
    EXPECT_LE(shown.source->heightsAsked, 2 * count);
}

TEST(NSTableView, ChangesTheHeightsOfItsRowsInTheAnimationThatThereIsOrAtOnce) {
    Fixture shown({0, 1});
    NSAnimationContext::beginGrouping();
    NSAnimationContext::currentContext().setAllowsImplicitAnimation(true);
    shown.table->resizeRowHeights();
    shown.table->noteHeightOfAllRowsChanged();
    NSAnimationContext::endGrouping();
    EXPECT_EQ(shown.calls, (Calls{"heights {0...1} at once", "heights {0...1}"}));
}

TEST(NSTableView, RemembersWhatItIsSortedBy) {
    Fixture shown({0, 1}, 2);
    const auto name = shown.table->tableColumns()[0], size = shown.table->tableColumns()[1];
    name->setTitle("name");
    EXPECT_EQ(shown.calls, Calls{"column 0"});
    shown.table->setSortOrder({{.column = name, .isAscending = false}});
    EXPECT_EQ(std::exchange(shown.source->sortedBy, ""), "name");
    shown.table->setSortOrder({{.column = name, .isAscending = false}});
    shown.table->removeTableColumn(size);
    EXPECT_EQ(shown.source->sortedBy, "") << "the same again";
    shown.table->removeTableColumn(name);
    EXPECT_EQ(shown.source->sortedBy, "none");
    shown.table->setSortOrder({{.column = size}});
    EXPECT_FALSE(shown.table->sortOrder()) << "not a column of the table";
}

TEST(NSTableViewDeathTest, CatchesEditionsThatLie) {
    Fixture shown({0, 1, 2});
    EXPECT_DEATH(
        shown.table->reloadEditedData(SelectableArrayEdition::Remove{{0}}, Options::effectFade),
        "^After its updates a table view has 2 rows, but its data source has 3.\n$");
    EXPECT_DEATH(shown.table->removeRows({3}, Options::effectNone),
                 "^A row lies outside the table view.\n$");
    EXPECT_DEATH(shown.table->insertRows({5}, Options::effectNone), "outside the table view");
    EXPECT_DEATH(shown.table->moveRows({0}, 4), "outside the table view");
    EXPECT_DEATH(shown.table->endUpdates(), "^A table view ends updates that have not begun.\n$");
}

TEST(NSTableView, SelectsWhereItIsClicked) {
    using Flags = NSEvent::ModifierFlags;
    Fixture shown({0, 1, 2, 3, 4, 5});
    const auto window = NSWindow::create({300, 200});
    const auto scrollView = NSScrollView::create({10, 50, 200, 50}); // the rows take 66 points
    window->contentView()->addSubview(scrollView);
    scrollView->setDocumentView(shown.table);
    int announced = 0;
    const Listener did(NSTableView::selectionDidChangeNotification, shown.table,
                       [&](const Notification&) { ++announced; });
    const auto click = [&](double fromTop, Flags flags = {}, std::int64_t count = 1) {
        window->sendEvent({.type = NSEvent::EventType::leftMouseDown,
                           .locationInWindow = {20, 100 - fromTop},
                           .clickCount = count,
                           .modifierFlags = flags});
        return shown.table->selectedRowIndexes();
    };
    EXPECT_EQ(click(11), IndexSet({1}));
    EXPECT_EQ(click(40, Flags::shift), IndexSet({1, 2, 3}));
    EXPECT_EQ(shown.table->clickedRowIndexes(), IndexSet({1, 2, 3}));
    EXPECT_EQ(click(25, Flags::control), IndexSet({1, 3}));
    EXPECT_EQ(shown.table->clickedRowIndexes(), IndexSet({2})) << "not selected any more";
    EXPECT_EQ(click(1, Flags::command), IndexSet({0, 1, 3}));
    shown.table->scrollTopRow(2, false);
    EXPECT_EQ(click(44, Flags::shift), IndexSet({3, 4, 5})) << "from the nearest one above";
    EXPECT_EQ(shown.source->opened, -1);
    EXPECT_EQ(click(1, {}, 2), IndexSet({2}));
    EXPECT_EQ(shown.source->opened, 2);
    shown.table->mouseDown({.type = NSEvent::EventType::leftMouseDown, .locationInWindow = {}});
    EXPECT_EQ(shown.table->selectedRowIndexes(), IndexSet()) << "below the last row";
    EXPECT_EQ(shown.table->clickedRow(), -1);
    EXPECT_EQ(shown.table->clickedRowIndexes(), IndexSet());
    // Only what differs is announced.
    announced = 0;
    shown.table->selectOnlyRows({1, 7});
    shown.table->selectOnlyRow(1);
    EXPECT_EQ(announced, 1);
    shown.table->selectAlsoRow(2);
    EXPECT_EQ(shown.table->selectedRowIndexes(), IndexSet({1, 2}));
}

TEST(NSTableView, ScrollsItsRowsIntoPlace) {
    Fixture shown(std::vector<int>(100));
    const auto scrollView = NSScrollView::create(CGRect(0, 0, 150, 50));
    scrollView->setDocumentView(shown.table);
    shown.table->expandFirstColumnWidth();
    EXPECT_EQ(shown.table->frame().size, CGSize(250, 1099)); // 10, 11, 12, 10 ...
    EXPECT_EQ(shown.table->frameOfCell(1, 3), CGRect(150, 33, 100, 10));
    EXPECT_EQ(shown.table->frameOfCell(2, 0), CGRect());
    EXPECT_EQ(shown.table->row(33.0), 3);
    EXPECT_EQ(shown.table->row(32.9), 2);
    EXPECT_EQ(shown.table->row(1099.0), -1);

    struct Watch : NSViewObserver {
        void boundsOriginDidChange(bool animated) override { glides += animated; }
        int glides = 0;
    };
    const auto watch = std::make_shared<Watch>();
    scrollView->contentView()->addObserver(watch);
    shown.table->selectOnlyRows({1, 99});
    const std::pair<std::function<void(NSTableView&)>, double> table[] = {
        {[](NSTableView& t) { t.scrollRowToVisible(2); }, 0},
        {[](NSTableView& t) { t.scrollRowToVisible(9); }, 109 - 50},
        {[](NSTableView& t) { t.scrollToFirstSelectedRow(); }, 10},
        {[](NSTableView& t) { t.scrollToLastSelectedRow(); }, 1099 - 50},
        {[](NSTableView& t) { t.centreRow(30, false); }, 330 + (10 - 50) * 0.5},
        {[](NSTableView& t) { t.scrollTopRow(0, true); }, 0},
    };
    for (const auto& [scroll, shownFrom] : table) {
        scroll(*shown.table);
        EXPECT_EQ(scrollView->contentView()->bounds().y(), shownFrom);
    }
    EXPECT_EQ(watch->glides, 1);
}

TEST(NSTableView, KeepsItsColumnsAndTheirViews) {
    Fixture shown({0, 1, 2}, 3);
    EXPECT_EQ(shown.table->lastCellView(), nullptr);
    shown.expectRows();
    shown.table->keepCellViews({0});
    EXPECT_EQ(shown.table->firstCellView(), shown.table->view(0, 0, true));
    EXPECT_EQ(shown.table->cell(1), nullptr);
    EXPECT_EQ(shown.table->subviews().size(), 1u);
    shown.table->tableColumns()[0]->setWidth(30);
    EXPECT_EQ(shown.table->cell(0)->frame().width(), 30) << "follows its column";
    shown.calls.clear();
    shown.table->setNumberOfColumns(3);
    EXPECT_TRUE(shown.calls.empty());
    shown.table->reloadFirstAndLastColumnData();
    EXPECT_EQ(shown.calls, (Calls{"cells {0...2} {0, 2}"}));
    EXPECT_EQ(shown.table->firstCellView(), nullptr);
    shown.table->setNumberOfColumns(0);
    EXPECT_EQ(shown.table->numberOfColumns(), 0);
    shown.calls.clear();
    shown.table->reloadFirstColumnData();
    EXPECT_TRUE(shown.calls.empty());
}

TEST(NSTableView, DrawsWhatIsScrolledIntoSightAndNothingElse) {
    Fixture shown(std::vector<int>(20));
    shown.table->setDelegate(nullptr); // so that it draws texts, in rows of one height
    const auto window = NSView::create(CGRect(0, 0, 240, 140));
    const auto scrollView = NSScrollView::create(CGRect(20, 20, 200, 100));
    window->addSubview(scrollView);
    scrollView->setDocumentView(shown.table);
    shown.table->setRowHeight(-1);
    EXPECT_EQ(shown.table->rowHeight(), 0);
    shown.table->setRowHeight(20);
    shown.table->selectOnlyRow(6);
    shown.table->scrollTopRow(5, false);

    const auto bitmap = window->render(2);
    ASSERT_TRUE(bitmap);
    const auto darkest = [&](int left, int top, int right, int bottom) {
        int least = 255;
        for (int y = top; y < bottom; ++y)
            for (int x = left; x < right; ++x)
                least = std::min<int>(least, bitmap->row(y)[x * 4]);
        return least;
    };
    // The second row in sight is the selected one: its red is that of the selection colour.
    EXPECT_EQ(darkest(40, 80, 440, 120), 0);
    EXPECT_LT(darkest(40, 40, 240, 80), 120);  // the text of the first row, in the first column
    EXPECT_LT(darkest(240, 40, 440, 80), 120); // and in the second
    // Behind the texts every second row, from the second on, is a little darker.
    EXPECT_LT(darkest(420, 40, 440, 80), 255);
    EXPECT_EQ(darkest(420, 160, 440, 200), 255);
    // Around the scroll view all is white, though the table is taller than it.
    for (const auto& [left, top, right, bottom] :
         {std::tuple(0, 0, 480, 40), {0, 240, 480, 280}, {0, 0, 40, 280}, {440, 0, 480, 280}})
        EXPECT_EQ(darkest(left, top, right, bottom), 255) << left << ", " << top;
}
