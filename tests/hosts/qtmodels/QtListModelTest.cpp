// Models of Qt over lists: every change told as what it is, indexes that follow their items.

#include "tests/hosts/Things.h"
#include "tests/hosts/qtmodels/Watcher.h"

namespace {

const QtListModel<Thing>::Roles roles{{Qt::DisplayRole, [](const Thing& t) { return t.self; }}};

/// Indexes kept of all rows, to be found where their things are.
class Followed {
public:
    explicit Followed(QtListModel<Thing>& model) {
        for (int row = 0; row < model.rowCount(); ++row)
            indexes_.emplace_back(model.index(row, 0), model.item(row).self);
    }
    void expectFollowing(const std::vector<Thing>& items) const {
        const std::vector<int> selves = selvesOf(items);
        for (const auto& [index, self] : indexes_) {
            const auto found = std::find(selves.begin(), selves.end(), self);
            const auto row = found == selves.end() ? -1 : found - selves.begin();
            ASSERT_EQ(index.row(), row) << "of thing " << self;
        }
    }

private:
    std::vector<std::pair<QPersistentModelIndex, int>> indexes_;
};

/// After each change: what the model shows, keeps and has selected.
template <class List>
void expectShown(QtListModel<Thing>& model, const List& list, const std::vector<Thing>& items,
                 const Watcher& watcher, const Followed& followed) {
    ASSERT_THAT(watcher.shown(), testing::ElementsAreArray(selvesOf(items)));
    ASSERT_NO_FATAL_FAILURE(followed.expectFollowing(items));
    ASSERT_EQ(rowsOf(*model.selectionModel()), list.selection());
    ASSERT_EQ(watcher.selectedRoles(), list.selection());
}

TEST(QtListModel, FollowsAManagedListThroughThousandsOfChanges) {
    // Where equal things are hidden, a removal or a move through a filter takes the first of them
    // in the full list: which of them come back is another question.
    for (const bool hasEquals : {true, false}) {
        Changes changes(1, hasEquals ? 7 : 1'000'000'000);
        const auto list = ManagedList<Thing>::create(changes.things(40));
        QtListModel<Thing> model(list, roles);
        const Tester tester(&model, Tester::FailureReportingMode::Fatal);
        const Watcher watcher(model, Watcher::Removed::stillThere);
        for (int i = 0; i < 3000; ++i) {
            SCOPED_TRACE(i);
            const Followed followed(model);
            const std::int64_t kind = changes.below(10);
            const std::int64_t rest = changes.below(3);
            if (kind == 7)
                list->reverseOrder();
            else if (kind == 8)
                list->setFilter([rest](const Thing& t) { return t.self % 3 != rest; });
            else if (kind == 9)
                list->setFilter({});
            else if (!(hasEquals && list->filter() && (kind == 2 || kind == 3)))
                change(*list, changes, kind);
            ASSERT_NO_FATAL_FAILURE(expectShown(model, *list, list->items(), watcher, followed));
            if (list->allItems().size() > 150) {
                list->setFilter({});
                list->removeAllItems();
            }
        }
        EXPECT_EQ(watcher.resets, 0);
        EXPECT_GT(watcher.insertions, 100);
        EXPECT_GT(watcher.removals, 100);
        EXPECT_GT(watcher.layouts, 100);
    }
}

TEST(QtListModel, FollowsASelectableArrayThroughThousandsOfChanges) {
    Changes changes(3);
    const auto array = SelectableArray<Thing>::create();
    QtListModel<Thing> model(array, roles);
    const Tester tester(&model, Tester::FailureReportingMode::Fatal);
    const Watcher watcher(model, Watcher::Removed::gone);
    for (int i = 0; i < 3000; ++i) {
        SCOPED_TRACE(i);
        const Followed followed(model);
        const std::int64_t kind = changes.below(10);
        if (kind == 7)
            array->reverseElementsOrder();
        else if (kind == 8 && array->count() > 0)
            array->replace({0, array->elements().front().self}, 0);
        else if (kind == 9 && changes.below(10) == 0)
            array->setEntries({{true, {1, -2 * i - 1}}, {false, {2, -2 * i - 2}}});
        else
            change(*array, changes, kind);
        ASSERT_NO_FATAL_FAILURE(expectShown(model, *array, array->elements(), watcher, followed));
        if (array->count() > 150)
            array->removeAllElements();
    }
    EXPECT_EQ(watcher.resets, 0);
    EXPECT_GT(watcher.removals, 100);
}

TEST(QtListModel, TellsEachChangeOnceAndAsWhatItIs) {
    Changes changes(4);
    const auto list = ManagedList<Thing>::create(changes.things(300));
    QtListModel<Thing> model(list, roles);
    IndexSet everySecond;
    for (std::int64_t i = 0; i < 200; i += 2)
        everySecond.insert(i);
    struct Case {
        const char* name;
        std::function<void()> run;
        std::array<qsizetype, 4> told; // insertions, removals, layouts, data
    };
    const Case cases[]{{"insert", [&] { list->insert(changes.things(3), 5); }, {1, 0, 0, 0}},
                       {"remove",
                        [&] {
                            list->remove({0, 1, 5, 9});
                        },
                        {0, 3, 0, 0}},
                       {"a hundred ranges", [&] { list->remove(everySecond); }, {0, 0, 1, 0}},
                       {"move",
                        [&] {
                            list->move({1, 4}, 9);
                        },
                        {0, 0, 1, 0}},
                       {"sort", [&] { list->sort(byName); }, {0, 0, 1, 0}},
                       {"reverse", [&] { list->reverseOrder(); }, {0, 0, 1, 0}},
                       {"filter",
                        [&] { list->setFilter([](const Thing& t) { return t.name < 3; }); },
                        {0, 0, 1, 0}},
                       {"out of sight",
                        [&] {
                            list->insert({{5, -1}}, 0);
                        },
                        {0, 0, 0, 0}},
                       {"no filter", [&] { list->setFilter({}); }, {0, 0, 1, 0}},
                       {"select", [&] { list->setSelection({2}); }, {0, 0, 0, 0}},
                       {"in place",
                        [&] {
                            model.itemsDidChange({1, 2, 7, 100'000});
                        },
                        {0, 0, 0, 2}}};
    for (const Case& c : cases) {
        const QSignalSpy insertions(&model, &QAbstractItemModel::rowsInserted);
        const QSignalSpy removals(&model, &QAbstractItemModel::rowsRemoved);
        const QSignalSpy layouts(&model, &QAbstractItemModel::layoutChanged);
        const QSignalSpy data(&model, &QAbstractItemModel::dataChanged);
        c.run();
        EXPECT_EQ((std::array{insertions.count(), removals.count(), layouts.count(), data.count()}),
                  c.told)
            << c.name;
    }
}

TEST(QtListModel, SelectsBothWays) {
    Changes changes(5);
    const auto list = ManagedList<Thing>::create(changes.things(10));
    QtListModel<Thing> model(list,
                             std::vector<QtColumn<Thing>>{{.roles = roles}, {.roles = roles}});
    QItemSelectionModel& selection = *model.selectionModel();
    selection.select(model.index(3, 1), QItemSelectionModel::Select); // one cell
    selection.select(model.index(5, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
    EXPECT_EQ(list->selection(), IndexSet({3, 5}));
    list->selectAll();
    EXPECT_EQ(selection.selectedRows().size(), 10);
    // Everything is selected, and the first and the last item go out of sight.
    QSignalSpy told(&selection, &QItemSelectionModel::selectionChanged);
    list->setFilter([](const Thing& t) { return t.self > 0 && t.self < 9; });
    EXPECT_GE(told.count(), 1);
    EXPECT_EQ(rowsOf(selection), IndexSet(IndexSet::Range{0, 8}));

    list->setSelection({1, 2, 6});
    selection.setCurrentIndex(model.index(6, 0), QItemSelectionModel::NoUpdate);
    told.clear();
    const QSignalSpy current(&selection, &QItemSelectionModel::currentRowChanged);
    list->setFilter([](const Thing& t) { return t.self < 4; });
    EXPECT_EQ(rowsOf(selection), IndexSet({2, 3}));
    EXPECT_EQ(told.count(), 1); // what is out of sight is selected no more
    EXPECT_EQ(current.count(), 1);
    EXPECT_FALSE(selection.currentIndex().isValid());
    selection.clear();
    EXPECT_TRUE(list->isSelectionEmpty());
    EXPECT_TRUE(model.setData(model.index(1, 0), true, QtRowModel::selectedRole));
    EXPECT_EQ(list->selection(), IndexSet({1}));
    EXPECT_EQ(model.roleNames().value(QtRowModel::selectedRole), "selected");
}

TEST(QtListModel, SlotsMaySelectWhatCame) {
    Changes changes(6);
    const auto list = ManagedList<Thing>::create(changes.things(5));
    QtListModel<Thing> model(list, roles);
    QObject::connect(&model, &QAbstractItemModel::rowsInserted, [&](const QModelIndex&, int first) {
        model.selectionModel()->select(model.index(first, 0), QItemSelectionModel::ClearAndSelect);
    });
    list->insert(changes.things(1), 2);
    EXPECT_EQ(list->selection(), IndexSet({2}));
    EXPECT_EQ(rowsOf(*model.selectionModel()), IndexSet({2}));
}

std::shared_ptr<NotificationObserver> observe(const std::shared_ptr<ManagedList<Thing>>& list,
                                              std::string_view name, std::function<void()> told) {
    return NSNotificationCenter::defaultCenter()->addObserver(
        NSNotificationName(name), list, nullptr, [told](const Notification&) { told(); });
}

TEST(QtListModel, FollowsChangesThatAnObserverMakesBeforeItIsTold) {
    Changes changes(7);
    const auto list = ManagedList<Thing>::create(changes.things(20));
    int left = 3; // changes within changes
    const auto first = observe(list, ManagedList<Thing>::didReloadNotification, [&] {
        if (left-- > 0)
            change(*list, changes, left % 2 ? 4 : 2);
    });
    QtListModel<Thing> model(list, roles);
    const Tester tester(&model, Tester::FailureReportingMode::Fatal);
    const Watcher watcher(model, Watcher::Removed::stillThere);
    const Followed followed(model);
    list->reverseOrder();
    expectShown(model, *list, list->items(), watcher, followed);
    EXPECT_EQ(watcher.layouts, 2);
    EXPECT_EQ(watcher.resets, 0);
    NSNotificationCenter::defaultCenter()->removeObserver(first);
}

TEST(QtListModel, IsRightAgainAfterAnObserverHasThrown) {
    Changes changes(8);
    for (const auto name :
         {ManagedList<Thing>::willReloadNotification, ManagedList<Thing>::didReloadNotification})
        for (const auto kind : {0, 1, 2}) {
            const auto list = ManagedList<Thing>::create(changes.things(20));
            // One is told before the model, the other after it.
            const auto before = observe(list, name, [] { throw std::runtime_error("no"); });
            QtListModel<Thing> model(list, roles);
            const Watcher watcher(model, Watcher::Removed::stillThere);
            const auto after = observe(list, name, [] { throw std::runtime_error("no"); });
            for (const auto& thrower : {before, after}) {
                EXPECT_THROW(kind == 0   ? list->insert(changes.things(3), 4)
                             : kind == 1 ? list->remove({1, 2, 5, 7})
                                         : list->sort(byName),
                             std::runtime_error);
                NSNotificationCenter::defaultCenter()->removeObserver(thrower);
            }
            list->insert(changes.things(1), 0);
            EXPECT_THAT(watcher.shown(), testing::ElementsAreArray(selvesOf(list->items())));
            EXPECT_EQ(watcher.resets, 1);
        }
}

const QtListModel<int>::Roles number{{Qt::DisplayRole, [](int i) { return i; }}};

TEST(QtListModel, MovesAndRemovesRowsForViews) {
    const auto list = ManagedList<int>::create({0, 1, 2, 3, 4});
    QtListModel<int> model(list, number);
    list->setSelection({1});
    EXPECT_TRUE(model.moveRows({}, 3, 2, {}, 0));
    EXPECT_THAT(list->items(), ElementsAre(3, 4, 0, 1, 2));
    EXPECT_EQ(list->selection(), IndexSet({3})); // the row that was selected
    EXPECT_TRUE(model.removeRows(1, 2));
    EXPECT_THAT(list->items(), ElementsAre(3, 1, 2));
    EXPECT_FALSE(model.removeRows(2, 2));
    EXPECT_FALSE(model.moveRows({}, 0, 2, {}, 1));
    EXPECT_FALSE(model.moveRows({}, 0, 1, {}, 4));

    const std::unique_ptr<QMimeData> dragged(
        model.mimeData({model.index(0, 0), model.index(2, 0)}));
    list->reverseOrder(); // while the mouse is on its way: 2 1 3
    EXPECT_FALSE(model.canDropMimeData(dragged.get(), Qt::CopyAction, 1, 0, {}));
    EXPECT_FALSE(model.dropMimeData(dragged.get(), Qt::MoveAction, -1, -1, {})); // and yet:
    EXPECT_THAT(list->items(), ElementsAre(1, 2, 3));
    const QtListModel<int> other(ManagedList<int>::create({7}), number);
    EXPECT_FALSE(other.canDropMimeData(dragged.get(), Qt::MoveAction, 0, 0, {}));
}

TEST(QtListModel, EditsAndSortsColumns) {
    const auto array = SelectableArray<std::string>::create();
    array->append({"b", "a"});
    const auto text = [](const std::string& s) { return QString::fromStdString(s); };
    const auto enter = [](std::string& s, const QVariant& value) {
        s = value.toString().toStdString();
        return !s.empty();
    };
    QtListModel<std::string> model(
        array, std::vector<QtColumn<std::string>>{{.title = "Name",
                                                   .roles = {{Qt::DisplayRole, text}},
                                                   .setters = {{Qt::EditRole, enter}},
                                                   .order = std::less<>()},
                                                  {.roles = {}}});
    EXPECT_EQ(model.headerData(0, Qt::Horizontal).toString(), QString("Name"));
    EXPECT_TRUE(model.flags(model.index(0, 0)) & Qt::ItemIsEditable);
    EXPECT_FALSE(model.flags(model.index(0, 1)) & Qt::ItemIsEditable);
    const QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    EXPECT_TRUE(model.setData(model.index(0, 0), "c"));
    EXPECT_FALSE(model.setData(model.index(1, 0), ""));
    EXPECT_FALSE(model.setData(model.index(1, 1), "d"));
    EXPECT_EQ(changed.count(), 1);
    model.sort(0);
    EXPECT_THAT(array->elements(), ElementsAre("a", "c"));
    model.sort(0, Qt::DescendingOrder);
    model.sort(1);
    EXPECT_THAT(array->elements(), ElementsAre("c", "a"));
}

TEST(QtListModel, SettersOfAManagedListChangeWhatAnItemStandsFor) {
    using Name = std::shared_ptr<std::string>;
    const Name name = std::make_shared<std::string>("a");
    const auto inside = [](Name& item, const QVariant& value) {
        *item = value.toString().toStdString();
        return true;
    };
    const auto away = [](Name& item, const QVariant&) {
        item = nullptr;
        return true;
    };
    QtListModel<Name> model(
        ManagedList<Name>::create({name}),
        std::vector<QtColumn<Name>>{
            {.roles = {}, .setters = {{Qt::EditRole, inside}, {Qt::UserRole, away}}}});
    const QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    EXPECT_TRUE(model.setData(model.index(0, 0), "b"));
    EXPECT_EQ(*name, "b");
    EXPECT_EQ(changed.count(), 1);
    EXPECT_DEATH(model.setData(model.index(0, 0), 1, Qt::UserRole),
                 "A setter changed an item of a managed list, and not what the item stands for.");
}

TEST(QtListModel, GoesWithoutATrace) {
    const auto array = SelectableArray<int>::create();
    int runs = 0;
    SelectableArray<int>::Action kept;
    array->setEditionHandler([&](const auto& action) {
        ++runs;
        kept = action;
        action();
    });
    auto model = std::make_unique<QtListModel<int>>(array, number);
    array->append({1, 2});
    EXPECT_EQ(model->rowCount(), 2);
    model.reset();
    kept(); // as a redo would
    array->append({3});
    EXPECT_EQ(runs, 2);
    EXPECT_THAT(array->elements(), ElementsAre(1, 2, 1, 2, 3));
    EXPECT_DEATH(QtListModel<int>(std::shared_ptr<ManagedList<int>>(), number),
                 "There is no list to show.");
    EXPECT_DEATH(QtListModel<int>(array, std::vector<QtColumn<int>>()),
                 "A model of rows has at least one column.");
}

} // namespace
