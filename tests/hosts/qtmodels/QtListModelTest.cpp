// Models of Qt over lists: every change told as what it is, indexes that follow their items.

#include "tests/hosts/Things.h"

#include <zorvan/hosts/qtmodels/QtListModel.h>
#include <zorvan/hosts/qtmodels/QtMainQueue.h>
#include <zorvan/platform/dispatch/DispatchQueue.h>

#include <QAbstractItemModelTester>
#include <QItemSelectionModel>
#include <QSignalSpy>
#include <QTest>

namespace {

using Tester = QAbstractItemModelTester;

IndexSet rowsOf(const QItemSelectionModel& model) {
    IndexSet rows;
    for (const QModelIndex& index : model.selectedIndexes())
        rows.insert(index.row());
    return rows;
}

const QtListModel<Thing>::Roles roles{{Qt::DisplayRole, [](const Thing& t) { return t.self; }}};

/// A model of things, and what its signals alone say that it shows, as a view would keep it. Fails
/// when the model says anything else at any moment at which it speaks.
template <class List>
struct Followed {
    explicit Followed(std::shared_ptr<List> followed)
        : list(std::move(followed)), model(list, roles) {
        readAll();
        const auto expect = [this] { expectAll(); };
        connect(&QAbstractItemModel::rowsAboutToBeInserted, expect);
        connect(&QAbstractItemModel::rowsInserted, [this](QModelIndex, int first, int last) {
            told += 'i';
            rows.insert(rows.begin() + first, static_cast<std::size_t>(last - first + 1), {});
            read(first, last + 1);
            expectAll();
        });
        connect(&QAbstractItemModel::rowsAboutToBeRemoved, expect);
        connect(&QAbstractItemModel::rowsRemoved, [this](QModelIndex, int first, int last) {
            told += 'r';
            rows.erase(rows.begin() + first, rows.begin() + last + 1);
            expectAll();
        });
        connect(&QAbstractItemModel::layoutAboutToBeChanged, expect);
        connect(&QAbstractItemModel::layoutChanged, [this] { told += 'l', readAll(); });
        connect(&QAbstractItemModel::modelReset, [this] { told += 'n', readAll(); });
        connect(&QAbstractItemModel::dataChanged, [this](QModelIndex first, QModelIndex last) {
            told += 'd';
            read(first.row(), last.row() + 1);
        });
    }

    using Indexes = std::vector<std::pair<QPersistentModelIndex, int>>;

    /// Of all rows, to be found where their things are.
    Indexes indexes() const {
        Indexes indexes;
        for (int row = 0; row < model.rowCount(); ++row)
            indexes.emplace_back(model.index(row, 0), model.item(row).self);
        return indexes;
    }
    /// After a change: what the model shows, keeps and has selected.
    void expectFollowing(const Indexes& before) const {
        std::map<int, int> places;
        for (const Thing& thing : shownItems(*list)) {
            const auto place = static_cast<int>(places.size());
            places[thing.self] = place;
            ASSERT_EQ(rows.at(static_cast<std::size_t>(place)),
                      Row(thing.self, list->selection().contains(place)));
        }
        ASSERT_EQ(rows.size(), places.size());
        for (const auto& [index, self] : before)
            ASSERT_EQ(index.row(), places.contains(self) ? places[self] : -1) << "of " << self;
        ASSERT_EQ(rowsOf(*model.selectionModel()), list->selection());
    }
    void changeThousandsOfTimes(Changes& changes) {
        const Tester tester(&model, Tester::FailureReportingMode::Fatal);
        changes.changeThousandsOfTimes(
            *list, [this] { return indexes(); },
            [this](const auto& before) { expectFollowing(before); });
        for (const char kind : {'i', 'r', 'l'})
            EXPECT_GT(std::ranges::count(told, kind), 100);
        EXPECT_EQ(std::ranges::count(told, 'n'), 0);
    }

    const std::shared_ptr<List> list;
    QtListModel<Thing> model;
    /// A letter for each insertion, removal, layout, change of data, and reset to a new state.
    std::string told;

private:
    using Row = std::pair<int, bool>; // the thing's self, and whether it is selected

    template <class Signal, class Slot>
    void connect(Signal signal, Slot slot) {
        QObject::connect(&model, signal, slot);
    }
    void readAll() {
        rows.assign(static_cast<std::size_t>(model.rowCount()), {});
        read(0, model.rowCount());
    }
    void read(int first, int end) {
        for (int i = first; i < end; ++i) {
            const QModelIndex index = model.index(i, 0);
            rows[static_cast<std::size_t>(i)] = {index.data().toInt(),
                                                 index.data(QtRowModel::selectedRole).toBool()};
        }
    }
    /// Rows that are about to be removed from an array have lost their data already.
    void expectAll() const {
        ASSERT_EQ(model.rowCount(), std::ssize(rows));
        for (int i = 0; i < model.rowCount(); ++i) {
            const QVariant data = model.index(i, 0).data();
            if (data.isValid() || std::is_same_v<List, ManagedList<Thing>>) {
                ASSERT_EQ(data.toInt(), rows[static_cast<std::size_t>(i)].first) << "row " << i;
            }
        }
    }

    std::vector<Row> rows;
};

TEST(QtListModel, FollowsListsThroughThousandsOfChanges) {
    for (const int nameCount : {7, 1'000'000'000}) {
        Changes changes(1, nameCount);
        Followed(ManagedList<Thing>::create(changes.things(40))).changeThousandsOfTimes(changes);
        Followed(SelectableArray<Thing>::create()).changeThousandsOfTimes(changes);
    }
}

TEST(QtListModel, TellsEachChangeOnceAndAsWhatItIs) {
    Changes changes(4);
    Followed followed(ManagedList<Thing>::create(changes.things(300)));
    auto& list = *followed.list;
    IndexSet everySecond;
    for (std::int64_t i = 0; i < 200; i += 2)
        everySecond.insert(i);
    const auto told = [&](const std::function<void()>& act) {
        list.setSelection({});
        followed.told.clear();
        act();
        return followed.told;
    };
    EXPECT_EQ(told([&] { list.insert(changes.things(3), 5); }), "i");
    EXPECT_EQ(told([&] { list.remove(IndexSet{0, 1, 5, 9}); }), "rrr");
    EXPECT_EQ(told([&] { list.remove(everySecond); }), "l") << "a hundred ranges";
    EXPECT_EQ(told([&] { list.move(IndexSet{1, 4}, 9); }), "l");
    EXPECT_EQ(told([&] { list.setFilter([](const Thing& t) { return t.name < 3; }); }), "l");
    EXPECT_EQ(told([&] { list.insert({{5, -1}}, 0); }), "") << "out of sight";
    EXPECT_EQ(told([&] { list.setSelection({2}); }), "d");
    EXPECT_EQ(told([&] { followed.model.itemsDidChange({1, 2, 7, 100'000}); }), "dd");
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
    // Slots may select what came.
    QObject::connect(&model, &QAbstractItemModel::rowsInserted, [&](const QModelIndex&, int first) {
        selection.select(model.index(first, 0), QItemSelectionModel::ClearAndSelect);
    });
    list->insert(changes.things(1), 2);
    EXPECT_EQ(list->selection(), IndexSet({2}));
    EXPECT_EQ(rowsOf(selection), IndexSet({2}));
    list->setSelection({1, 3, 6});
    selection.setCurrentIndex(model.index(6, 0), QItemSelectionModel::NoUpdate);
    const QSignalSpy told(&selection, &QItemSelectionModel::selectionChanged),
        current(&selection, &QItemSelectionModel::currentRowChanged),
        data(&model, &QAbstractItemModel::dataChanged);
    list->setFilter([](const Thing& t) { return t.self < 4; });
    EXPECT_EQ(rowsOf(selection), IndexSet({1, 2}));
    EXPECT_EQ(told.count(), 1); // what is out of sight is selected no more
    EXPECT_EQ(current.count(), 1);
    EXPECT_FALSE(selection.currentIndex().isValid());
    selection.clear();
    EXPECT_TRUE(list->isSelectionEmpty());
    EXPECT_EQ(data.count(), 0) << "nobody has asked for the role";
    EXPECT_TRUE(model.setData(model.index(1, 0), true, QtRowModel::selectedRole));
    EXPECT_EQ(list->selection(), IndexSet({1}));
    EXPECT_EQ(model.roleNames().value(QtRowModel::selectedRole), "selected");
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
            changes.change(*list, left % 2 ? 4 : 2);
    });
    Followed followed(list);
    const Tester tester(&followed.model, Tester::FailureReportingMode::Fatal);
    const auto before = followed.indexes();
    list->reverseOrder();
    followed.expectFollowing(before);
    EXPECT_EQ(std::ranges::count(followed.told, 'l'), 2);
    EXPECT_EQ(std::ranges::count(followed.told, 'n'), 0);
    NSNotificationCenter::defaultCenter()->removeObserver(first);
}

TEST(QtListModel, IsRightAgainAfterAnObserverHasThrown) {
    Changes changes(8);
    const auto fail = [] { throw std::runtime_error("no"); };
    for (const auto name :
         {ManagedList<Thing>::willReloadNotification, ManagedList<Thing>::didReloadNotification})
        for (const int kind : {0, 1, 2}) {
            const auto list = ManagedList<Thing>::create(changes.things(20));
            // One is told before the model, the other after it.
            const auto before = observe(list, name, fail);
            const Followed followed(list);
            const auto after = observe(list, name, fail);
            for (const auto& thrower : {before, after}) {
                EXPECT_THROW(kind == 0   ? list->insert(changes.things(3), 4)
                             : kind == 1 ? list->remove({1, 2, 5, 7})
                                         : list->sort(byName),
                             std::runtime_error);
                NSNotificationCenter::defaultCenter()->removeObserver(thrower);
            }
            list->insert(changes.things(1), 0);
            followed.expectFollowing({});
            EXPECT_EQ(std::ranges::count(followed.told, 'n'), 1);
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
    EXPECT_TRUE(model.canDropMimeData(dragged.get(), Qt::MoveAction, 1, 0, {}));
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
    const auto set = [](Name& item, const QVariant& value) {
        if (value.isNull())
            item = nullptr;
        else
            *item = value.toString().toStdString();
        return true;
    };
    QtListModel<Name> model(
        ManagedList<Name>::create({name}),
        std::vector<QtColumn<Name>>{{.roles = {}, .setters = {{Qt::EditRole, set}}}});
    const QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    EXPECT_TRUE(model.setData(model.index(0, 0), "b"));
    EXPECT_EQ(*name, "b");
    EXPECT_EQ(changed.count(), 1);
    EXPECT_DEATH(model.setData(model.index(0, 0), QVariant()),
                 "A setter changed an item of a managed list, and not what the item stands for.");
}

TEST(QtListModel, SettersMayChangeTheList) {
    const auto array = SelectableArray<int>::create();
    array->append({1, 2, 3});
    const auto turn = [&](int& item, const QVariant& value) {
        array->reverseElementsOrder();
        item = value.toInt();
        return true;
    };
    QtListModel<int> model(
        array, std::vector<QtColumn<int>>{{.roles = {}, .setters = {{Qt::EditRole, turn}}}});
    EXPECT_TRUE(model.setData(model.index(0, 0), 7));
    EXPECT_THAT(array->elements(), ElementsAre(3, 2, 7));
}

TEST(QtListModel, GoesWithoutATrace) {
    const auto array = SelectableArray<int>::create();
    int runs = 0;
    SelectableArray<int>::Action kept;
    const auto own = [&](const SelectableArray<int>::Action& action) {
        ++runs;
        kept = action;
        action();
    };
    array->setEditionHandler(own);
    auto model = std::make_unique<QtListModel<int>>(array, number);
    for (int i = 0; i < 3; ++i) // the new one is there before the old one goes
        model = std::make_unique<QtListModel<int>>(array, number);
    array->append({1, 2});
    EXPECT_EQ(model->rowCount(), 2);
    model.reset();
    EXPECT_TRUE(array->editionHandler().target<std::remove_const_t<decltype(own)>>());
    kept(); // as a redo would
    array->append({3});
    EXPECT_EQ(runs, 2);
    EXPECT_THAT(array->elements(), ElementsAre(1, 2, 1, 2, 3));
    EXPECT_DEATH(QtListModel<int>(std::shared_ptr<ManagedList<int>>(), number),
                 "There is no list to show.");
    EXPECT_DEATH(QtListModel<int>(array, std::vector<QtColumn<int>>()),
                 "A model of rows has at least one column.");
}

TEST(QtMainQueue, RunsOnTheLoopOfQt) {
    int count = 1;
    char name[] = "test";
    char* arguments[] = {name, nullptr};
    const QCoreApplication application(count, arguments);
    QtMainQueue::attach();
    QtMainQueue::attach();
    bool hasRun = false;
    DispatchQueue::main()->async([&] { hasRun = true; });
    EXPECT_TRUE(QTest::qWaitFor([&] { return hasRun; }, 10000));
}

} // namespace
