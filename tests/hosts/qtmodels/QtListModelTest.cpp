// Models of Qt over lists: every change told as what it is, indexes that follow their items.

#include "tests/hosts/Things.h"

#include <zorvan/hosts/qtmodels/QtListModel.h>

#include <QAbstractItemModelTester>
#include <QItemSelectionModel>
#include <QSignalSpy>

namespace {

using Tester = QAbstractItemModelTester;

IndexSet rowsOf(const QItemSelectionModel& model) {
    IndexSet rows;
    for (const QModelIndex& index : model.selectedIndexes())
        rows.insert(index.row());
    return rows;
}

/// Keeps by the signals alone what a model of numbers shows, as a view would, and fails when the
/// model says anything else at any moment at which it speaks.
class Watcher : public QObject {
public:
    /// Whether rows that are about to be removed have their data still.
    enum class Removed { stillThere, gone };

    Watcher(const QAbstractItemModel& model, Removed removed) : model_(model), removed_(removed) {
        using Model = QAbstractItemModel;
        readAll();
        connect(&model, &Model::rowsAboutToBeInserted, this, [this] { expectAll(); });
        connect(
            &model, &Model::rowsInserted, this, [this](const QModelIndex&, int first, int last) {
                ++insertions;
                rows_.insert(rows_.begin() + first, static_cast<std::size_t>(last - first + 1), {});
                read(first, last + 1);
                expectAll();
            });
        connect(&model, &Model::rowsAboutToBeRemoved, this, [this] { expectAll(); });
        connect(&model, &Model::rowsRemoved, this, [this](const QModelIndex&, int first, int last) {
            ++removals;
            rows_.erase(rows_.begin() + first, rows_.begin() + last + 1);
            expectAll();
        });
        connect(&model, &Model::layoutAboutToBeChanged, this, [this] { expectAll(); });
        connect(&model, &Model::layoutChanged, this, [this] { ++layouts, readAll(); });
        connect(&model, &Model::modelReset, this, [this] { ++resets, readAll(); });
        connect(&model, &Model::dataChanged, this,
                [this](const QModelIndex& first, const QModelIndex& last) {
                    read(first.row(), last.row() + 1);
                });
    }

    std::vector<int> shown() const {
        std::vector<int> numbers;
        for (const Row& row : rows_)
            numbers.push_back(row.number);
        return numbers;
    }
    IndexSet selectedRoles() const {
        IndexSet selected;
        for (std::size_t i = 0; i < rows_.size(); ++i)
            if (rows_[i].isSelected)
                selected.insert(static_cast<std::int64_t>(i));
        return selected;
    }

    int insertions = 0, removals = 0, layouts = 0, resets = 0;

private:
    struct Row {
        int number = 0;
        bool isSelected = false;
    };

    void readAll() {
        rows_.assign(static_cast<std::size_t>(model_.rowCount()), {});
        read(0, model_.rowCount());
    }
    void read(int first, int end) {
        for (int i = first; i < end; ++i) {
            const QModelIndex index = model_.index(i, 0);
            rows_[static_cast<std::size_t>(i)] = {index.data().toInt(),
                                                  index.data(QtRowModel::selectedRole).toBool()};
        }
    }
    void expectAll() const {
        ASSERT_EQ(model_.rowCount(), std::ssize(rows_));
        for (int i = 0; i < model_.rowCount(); ++i) {
            const QVariant data = model_.index(i, 0).data();
            if (data.isValid() || removed_ == Removed::stillThere) {
                ASSERT_EQ(data.toInt(), rows_[static_cast<std::size_t>(i)].number) << "row " << i;
            }
        }
    }

    const QAbstractItemModel& model_;
    const Removed removed_;
    std::vector<Row> rows_;
};

const QtListModel<Thing>::Roles roles{{Qt::DisplayRole, [](const Thing& t) { return t.self; }}};

/// A model of things, and all that tells what it says of them.
template <class List>
struct Followed {
    explicit Followed(std::shared_ptr<List> followed, Watcher::Removed removed)
        : list(std::move(followed)), model(list, roles), watcher(model, removed) {}

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
        const std::vector<int> selves = selvesOf(shownItems(*list));
        ASSERT_THAT(watcher.shown(), testing::ElementsAreArray(selves));
        for (const auto& [index, self] : before) {
            const auto found = std::find(selves.begin(), selves.end(), self);
            const auto row = found == selves.end() ? -1 : found - selves.begin();
            ASSERT_EQ(index.row(), row) << "of thing " << self;
        }
        ASSERT_EQ(rowsOf(*model.selectionModel()), list->selection());
        ASSERT_EQ(watcher.selectedRoles(), list->selection());
    }
    void changeThousandsOfTimes(Changes& changes) {
        const Tester tester(&model, Tester::FailureReportingMode::Fatal);
        ::changeThousandsOfTimes(
            *list, changes, [this] { return indexes(); },
            [this](const auto& before) { expectFollowing(before); });
        EXPECT_EQ(watcher.resets, 0);
        EXPECT_GT(watcher.insertions, 100);
        EXPECT_GT(watcher.removals, 100);
        EXPECT_GT(watcher.layouts, 100);
    }

    const std::shared_ptr<List> list;
    QtListModel<Thing> model;
    const Watcher watcher;
};

TEST(QtListModel, FollowsAManagedListThroughThousandsOfChanges) {
    for (const int nameCount : {7, 1'000'000'000}) {
        Changes changes(1, nameCount);
        Followed followed(ManagedList<Thing>::create(changes.things(40)),
                          Watcher::Removed::stillThere);
        followed.changeThousandsOfTimes(changes);
    }
}

TEST(QtListModel, FollowsASelectableArrayThroughThousandsOfChanges) {
    Changes changes(3);
    Followed(SelectableArray<Thing>::create(), Watcher::Removed::gone)
        .changeThousandsOfTimes(changes);
}

TEST(QtListModel, TellsEachChangeOnceAndAsWhatItIs) {
    Changes changes(4);
    const auto list = ManagedList<Thing>::create(changes.things(300));
    QtListModel<Thing> model(list, roles);
    IndexSet everySecond;
    for (std::int64_t i = 0; i < 200; i += 2)
        everySecond.insert(i);
    using Told = std::array<qsizetype, 4>; // insertions, removals, layouts, data
    const auto told = [&](const std::function<void()>& act) {
        const QSignalSpy insertions(&model, &QAbstractItemModel::rowsInserted);
        const QSignalSpy removals(&model, &QAbstractItemModel::rowsRemoved);
        const QSignalSpy layouts(&model, &QAbstractItemModel::layoutChanged);
        const QSignalSpy data(&model, &QAbstractItemModel::dataChanged);
        act();
        return Told{insertions.count(), removals.count(), layouts.count(), data.count()};
    };
    const Told layout{0, 0, 1, 0}, nothing{0, 0, 0, 0};
    EXPECT_EQ(told([&] { list->insert(changes.things(3), 5); }), (Told{1, 0, 0, 0}));
    EXPECT_EQ(told([&] { list->remove(IndexSet{0, 1, 5, 9}); }), (Told{0, 3, 0, 0}));
    EXPECT_EQ(told([&] { list->remove(everySecond); }), layout) << "a hundred ranges";
    EXPECT_EQ(told([&] { list->move(IndexSet{1, 4}, 9); }), layout);
    EXPECT_EQ(told([&] { list->sort(byName); }), layout);
    EXPECT_EQ(told([&] { list->reverseOrder(); }), layout);
    EXPECT_EQ(told([&] { list->setFilter([](const Thing& t) { return t.name < 3; }); }), layout);
    EXPECT_EQ(told([&] { list->insert({{5, -1}}, 0); }), nothing) << "out of sight";
    EXPECT_EQ(told([&] { list->setFilter({}); }), layout);
    EXPECT_EQ(told([&] { list->setSelection({2}); }), nothing);
    EXPECT_EQ(told([&] { model.itemsDidChange(IndexSet{1, 2, 7, 100'000}); }), (Told{0, 0, 0, 2}));
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
    Followed followed(list, Watcher::Removed::stillThere);
    const Tester tester(&followed.model, Tester::FailureReportingMode::Fatal);
    const auto before = followed.indexes();
    list->reverseOrder();
    followed.expectFollowing(before);
    EXPECT_EQ(followed.watcher.layouts, 2);
    EXPECT_EQ(followed.watcher.resets, 0);
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
            const Followed followed(list, Watcher::Removed::stillThere);
            const auto after = observe(list, name, fail);
            for (const auto& thrower : {before, after}) {
                EXPECT_THROW(kind == 0   ? list->insert(changes.things(3), 4)
                             : kind == 1 ? list->remove({1, 2, 5, 7})
                                         : list->sort(byName),
                             std::runtime_error);
                NSNotificationCenter::defaultCenter()->removeObserver(thrower);
            }
            list->insert(changes.things(1), 0);
            EXPECT_THAT(followed.watcher.shown(),
                        testing::ElementsAreArray(selvesOf(list->items())));
            EXPECT_EQ(followed.watcher.resets, 1);
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
