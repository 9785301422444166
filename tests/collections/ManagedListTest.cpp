#include <tests/collections/ListModel.h>

#include <zorvan/collections/ManagedList.h>

using Letters = ManagedList<char>;
using Action = ManagedListEdition::Action;

template class zorvan::ManagedList<bool>; // every member compiles

namespace {

/// Keeps what a list announces: "will" or "did", and the edition.
template <class Item>
class Announcements {
public:
    struct Post {
        bool isDid;
        typename ManagedList<Item>::Edition edition;
        std::optional<Reordering> reordering;
        std::vector<Item> items; // of the list, when it was told
        IndexSet selection;
    };

    explicit Announcements(const std::shared_ptr<ManagedList<Item>>& list) {
        for (const bool isDid : {false, true})
            observers_.push_back(center_->addObserver(
                NSNotificationName(isDid ? ManagedList<Item>::didReloadNotification
                                         : ManagedList<Item>::willReloadNotification),
                list, nullptr, [this, isDid, told = list.get()](const Notification& note) {
                    posts.push_back({isDid, *ManagedList<Item>::edition(note), told->reordering(),
                                     told->items(), told->selection()});
                }));
    }
    ~Announcements() {
        for (const auto& observer : observers_)
            center_->removeObserver(observer);
    }

    std::vector<Post> posts;

private:
    std::shared_ptr<NSNotificationCenter> center_ = NSNotificationCenter::defaultCenter();
    std::vector<std::shared_ptr<NotificationObserver>> observers_;
};

std::shared_ptr<Letters> letters(std::string_view text) {
    return Letters::create({text.begin(), text.end()});
}

} // namespace

TEST(ManagedList, AnnouncesEveryChangeTwice) {
    const std::vector<char> xy{'x', 'y'};
    const IndexSet kept{0, 3}, be{1, 4}, ac{0, 2}, beyond{2, 10}, same{0, 3, 99};
    const auto isAdf = [](char c) { return c == 'a' || c == 'd' || c == 'f'; };
    struct {
        const char* name;
        std::function<void(Letters&)> change;
        const char* shown;
        IndexSet selection;
        std::optional<Action> action;
        std::optional<IndexSet> places; // inserted, removed or moved to
    } table[] = {
        {"insert", [&](Letters& l) { l.insert(xy, 1); }, "axybcdef", {}, Action::insert, {{1, 2}}},
        {"remove", [&](Letters& l) { l.remove(be); }, "acdf", {0, 2}, Action::remove, be},
        {"move", [&](Letters& l) { l.move(ac, 4); }, "bdacef", {2, 3}, Action::move, {{2, 3}}},
        {"sort", [](Letters& l) { l.sort(std::greater<>{}); }, "fedcba", {2, 5}, Action::sort, {}},
        {"reverse", [](Letters& l) { l.reverseOrder(); }, "fedcba", {2, 5}, Action::sort, {}},
        {"select", [&](Letters& l) { l.setSelection(beyond); }, "abcdef", {2}, Action::select, {}},
        {"filter", [&](Letters& l) { l.setFilter(isAdf); }, "adf", {0, 1}, Action::filter, {}},
        {"append", [&](Letters& l) { l.append(xy); }, "abcdefxy", {}, Action::insert, {{6, 7}}},
        {"cut", [](Letters& l) { l.removeSelectedItems(); }, "bcef", {}, Action::remove, kept},
        {"move selected",
         [](Letters& l) { l.moveSelectedItems(1); },
         "adbcef",
         {0, 1},
         Action::move,
         {{0, 1}}},
        {"insert nothing", [](Letters& l) { l.insert({}, 0); }, "abcdef", kept, {}, {}},
        {"remove nothing", [](Letters& l) { l.remove({}); }, "abcdef", kept, {}, {}},
        {"move nothing", [](Letters& l) { l.move({}, 0); }, "abcdef", kept, {}, {}},
        {"same selection", [&](Letters& l) { l.setSelection(same); }, "abcdef", kept, {}, {}},
        {"no filter", [](Letters& l) { l.setFilter({}); }, "abcdef", kept, {}, {}},
    };
    for (const auto& row : table) {
        const auto list = letters("abcdef");
        list->setSelection(kept);
        Announcements<char> announced(list);
        row.change(*list);
        EXPECT_EQ(std::string(list->items().begin(), list->items().end()), row.shown) << row.name;
        EXPECT_EQ(list->selection(), row.selection) << row.name;
        ASSERT_EQ(announced.posts.size(), row.action ? 2u : 0u) << row.name;
        if (!row.action)
            continue;
        EXPECT_FALSE(announced.posts[0].isDid) << row.name;
        EXPECT_TRUE(announced.posts[1].isDid) << row.name;
        const auto& edition = announced.posts[1].edition;
        EXPECT_EQ(edition.action, *row.action) << row.name;
        EXPECT_EQ(edition.mayChangeCount(), list->count() != 6) << row.name;
        EXPECT_EQ(edition.oldSelection, kept) << row.name;
        EXPECT_EQ(edition.newSelection, row.selection) << row.name;
        const auto& places = edition.action == Action::insert   ? edition.insertedIndexes
                             : edition.action == Action::remove ? edition.removedIndexes
                                                                : edition.movedToIndexes;
        EXPECT_EQ(places, row.places) << row.name;
    }
}

TEST(ManagedList, KeepsEverythingWhenASortOrAFilterFails) {
    const auto list = letters("cab");
    list->setSelection({1});
    Announcements<char> announced(list);
    int calls = 0;
    const auto fails = [&calls](char a, char b) -> bool {
        if (++calls == 2)
            throw std::runtime_error("no order");
        return a < b;
    };
    EXPECT_THROW(list->sort(fails), std::runtime_error);
    EXPECT_THROW(list->setFilter([](char) -> bool { throw std::runtime_error("no filter"); }),
                 std::runtime_error);
    EXPECT_TRUE(announced.posts.empty());
    EXPECT_EQ(std::string(list->items().begin(), list->items().end()), "cab");
    EXPECT_FALSE(list->filter());
    list->removeAllItems(); // the failed change is over: another may follow
    EXPECT_EQ(list->count(), 0);
}

TEST(ManagedList, GivesWhatIsSelected) {
    const auto list = letters("abc");
    EXPECT_EQ(list->firstSelectedItem(), nullptr);
    EXPECT_EQ(list->lastSelectedItem(), nullptr);
    list->setSelection({0, 2});
    EXPECT_EQ(*list->firstSelectedItem(), 'a');
    EXPECT_EQ(*list->lastSelectedItem(), 'c');
    EXPECT_EQ(list->singleSelectedItem(), nullptr);
    EXPECT_EQ(list->selectedItems(), (std::vector<char>{'a', 'c'}));
    const auto flags = ManagedList<bool>::create({false, true});
    flags->selectFirst();
    EXPECT_FALSE(*flags->singleSelectedItem());
    flags->selectNext();
    EXPECT_TRUE(*flags->singleSelectedItem());
}

TEST(ManagedList, TellsItsEditionsFromThoseOfOtherItemTypes) {
    const ManagedList<int>::Edition edition(Action::select);
    const Notification note(NSNotificationName("any"), nullptr, {{{"Edition", edition}}});
    EXPECT_NE(ManagedList<int>::edition(note), nullptr);
    EXPECT_EQ(ManagedList<char>::edition(note), nullptr);
    EXPECT_EQ(ManagedList<int>::edition(Notification(NSNotificationName("any"))), nullptr);
}

TEST(ManagedList, MayBeDroppedAndAskedWhileItTellsOfAChange) {
    static_assert(!std::is_copy_constructible_v<Letters> && !std::is_copy_assignable_v<Letters>);
    auto list = letters("abcb");
    Letters* const dropped = list.get();
    list->setFilter([](char c) { return c != 'a'; });
    const auto center = NSNotificationCenter::defaultCenter();
    std::string shownThen;
    const auto will = center->addObserver(NSNotificationName(Letters::willReloadNotification), list,
                                          nullptr, [&](const Notification&) {
                                              if (!list)
                                                  return;
                                              // Calls that change nothing are let pass.
                                              list->setSelection({});
                                              list->insert({}, 0);
                                              list->remove({});
                                              list->move({}, 0);
                                              list.reset();
                                          });
    const auto did =
        center->addObserver(NSNotificationName(Letters::didReloadNotification), list, nullptr,
                            [&](const Notification&) {
                                shownThen.assign(dropped->items().begin(), dropped->items().end());
                            });
    dropped->remove({0});
    EXPECT_EQ(shownThen, "cb");
    center->removeObserver(will);
    center->removeObserver(did);
}

TEST(ManagedList, TellsWhereItemsWentOfTheChangeThatIsTold) {
    const auto list = letters("abc");
    const auto center = NSNotificationCenter::defaultCenter();
    std::vector<std::int64_t> firsts; // where the first item went, as told to the last observer
    const auto changing = center->addObserver(NSNotificationName(Letters::didReloadNotification),
                                              list, nullptr, [&](const Notification&) {
                                                  if (list->count() == 3)
                                                      list->insert({'x'}, 0);
                                              });
    // Before the insertion, for whoever was not told of the reversal yet.
    std::vector<bool> isTold;
    const auto early = center->addObserver(
        NSNotificationName(Letters::willReloadNotification), list, nullptr,
        [&](const Notification&) { isTold.push_back(list->reordering().has_value()); });
    const auto asking = center->addObserver(
        NSNotificationName(Letters::didReloadNotification), list, nullptr,
        [&](const Notification&) { firsts.push_back(list->reordering()->newPosition(0).value()); });
    list->reverseOrder();
    EXPECT_EQ(firsts, (std::vector<std::int64_t>{1, 2}));
    EXPECT_EQ(isTold, (std::vector<bool>{false, true}));
    center->removeObserver(changing);
    center->removeObserver(asking);
    center->removeObserver(early);
}

namespace {

/// Undoing, as the guide tells it.
template <class Item>
struct TakenBack {
    ManagedListEdition edition; // as told after the change
    std::vector<Item> items;    // as told before it: see itemsToKeep

    static std::vector<Item> itemsToKeep(const ManagedList<Item>& list,
                                         const ManagedListEdition& told) {
        if (told.action == Action::sort)
            return list.items();
        return at(list.items(), told.removedIndexes ? *told.removedIndexes
                                                    : told.movedFromIndexes.value_or(IndexSet()));
    }
    void apply(ManagedList<Item>& list) const {
        if (edition.insertedIndexes)
            list.remove(*edition.insertedIndexes);
        if (edition.removedIndexes)
            putBack(list, *edition.removedIndexes);
        if (edition.movedToIndexes) {
            list.remove(*edition.movedToIndexes);
            putBack(list, *edition.movedFromIndexes);
        }
        if (edition.action == Action::sort) {
            list.removeAllItems();
            list.insert(items, 0);
        }
        list.setSelection(*edition.oldSelection);
    }
    void putBack(ManagedList<Item>& list, const IndexSet& places) const {
        auto next = items.begin();
        for (const IndexSet::Range place : places.ranges()) {
            list.insert({next, next + place.count()}, place.lower);
            next += place.count();
        }
    }
};

} // namespace

TEST(ManagedList, TellsEnoughToTakeAChangeBack) {
    const std::function<void(Letters&)> changes[] = {
        [](Letters& l) { l.insert({'x', 'y'}, 2); }, [](Letters& l) { l.remove({0, 2, 3}); },
        [](Letters& l) { l.move({0, 2, 5}, 4); },    [](Letters& l) { l.sort(std::greater<>{}); },
        [](Letters& l) { l.selectAll(); },
    };
    for (const auto& change : changes) {
        const auto list = letters("cbadfe");
        list->setSelection({1, 4});
        const std::vector<char> before = list->items();
        std::vector<char> kept;
        Announcements<char> announced(list);
        const auto keeping = NSNotificationCenter::defaultCenter()->addObserver(
            NSNotificationName(Letters::willReloadNotification), list, nullptr,
            [&](const Notification& note) {
                kept = TakenBack<char>::itemsToKeep(*list, *Letters::edition(note));
            });
        change(*list);
        NSNotificationCenter::defaultCenter()->removeObserver(keeping);
        TakenBack<char>{announced.posts[1].edition, kept}.apply(*list);
        EXPECT_EQ(list->items(), before);
        EXPECT_EQ(list->selection(), IndexSet({1, 4}));
    }
}

TEST(ManagedList, TakesItsOwnItemsUnderAFilter) {
    const auto list = letters("abcdef");
    list->setFilter([](char c) { return c % 2 == 0; });
    list->insert(list->allItems(), 1);
    EXPECT_EQ(std::string(list->items().begin(), list->items().end()), "bbdfdf");
    EXPECT_EQ(std::string(list->allItems().begin(), list->allItems().end()), "abcabcdefdef");
}

TEST(ManagedListDeathTest, StopsOnBrokenContracts) {
    const auto list = letters("ab");
    EXPECT_DEATH(list->insert({'x'}, 3),
                 "^The position 3 lies outside the list, which has 2 elements.\n$");
    EXPECT_DEATH(list->remove({2}), "^The position 2 lies outside the list");
    EXPECT_DEATH(list->move({0}, 3), "^The position 3 lies outside the list");
    const auto observer = NSNotificationCenter::defaultCenter()->addObserver(
        NSNotificationName(Letters::willReloadNotification), list, nullptr,
        [&](const Notification&) { list->removeAllItems(); });
    EXPECT_DEATH(list->selectFirst(),
                 "^A managed list was changed while it announced another change.\n$");
    NSNotificationCenter::defaultCenter()->removeObserver(observer);
}

namespace {

int made = 0;

/// Items that are equal in value, and told apart by when they were made.
struct Hashed {
    int value;
    int serial = ++made;
    friend bool operator==(const Hashed& a, const Hashed& b) { return a.value == b.value; }
};
struct Ordered {
    int value;
    int serial = ++made;
    friend bool operator==(const Ordered& a, const Ordered& b) { return a.value == b.value; }
    friend auto operator<=>(const Ordered& a, const Ordered& b) { return a.value <=> b.value; }
};
struct OnlyEqual {
    int value;
    int serial = ++made;
    friend bool operator==(const OnlyEqual& a, const OnlyEqual& b) { return a.value == b.value; }
};

/// Sorted by less than what makes them equal, as records are by their titles.
struct Titled : Ordered {
    explicit Titled(int number) : Ordered{number} {}
    friend auto operator<=>(const Titled& a, const Titled& b) {
        return a.value / 4 <=> b.value / 4;
    }
    friend bool operator==(const Titled& a, const Titled& b) { return a.value == b.value; }
};

template <class Item>
std::vector<int> serials(const std::vector<Item>& items) {
    std::vector<int> result;
    for (const Item& item : items)
        result.push_back(item.serial);
    return result;
}

/// As `listmodel::expectFollowed`, but what was shown may be gone from the full list, which has
/// lost it in place of an equal item; then that one is followed.
template <class Item>
void expectFollowedByFilter(const std::vector<Item>& before, const std::vector<Item>& after,
                            const Reordering& reordering) {
    const std::vector<int> now = serials(after);
    std::set<std::int64_t> taken;
    for (std::size_t i = 0; i < before.size(); ++i) {
        const auto place = reordering.newPosition(static_cast<std::int64_t>(i));
        const auto found = std::find(now.begin(), now.end(), before[i].serial);
        if (found != now.end()) {
            ASSERT_EQ(place, found - now.begin());
        }
        if (!place)
            continue;
        ASSERT_EQ(after[static_cast<std::size_t>(*place)], before[i]);
        ASSERT_TRUE(taken.insert(*place).second);
    }
}

/// The rules of the list, said once more and as plainly as can be.
template <class Item>
struct Model {
    std::vector<Item> items, full;
    std::map<std::int64_t, std::int64_t> mapping;
    std::set<std::int64_t> selection;
    typename ManagedList<Item>::Filter filter;

    std::int64_t fullPosition(std::int64_t shown) const {
        const auto found = mapping.find(shown);
        return !filter || found == mapping.end() ? shown : found->second;
    }
    std::set<std::int64_t> fullPositions(const std::set<std::int64_t>& shown) const {
        std::set<std::int64_t> result;
        for (const auto position : shown)
            result.insert(fullPosition(position));
        return result;
    }
    void rebuild() {
        mapping.clear();
        for (std::size_t p = 0; filter && p < items.size(); ++p)
            for (std::size_t q = 0; q < full.size(); ++q)
                if (full[q] == items[p]) {
                    mapping[static_cast<std::int64_t>(p)] = static_cast<std::int64_t>(q);
                    break;
                }
    }
    static bool isLess(const Item& a, const Item& b) { return a.value < b.value; }
    void insert(const std::vector<Item>& added, std::int64_t at) {
        std::vector<Item> passing;
        for (const Item& item : added)
            if (!filter || filter(item))
                passing.push_back(item);
        if (filter)
            full.insert(full.begin() + fullPosition(at), added.begin(), added.end());
        items.insert(items.begin() + at, passing.begin(), passing.end());
        selection.clear();
        rebuild();
    }
    void remove(const std::set<std::int64_t>& at) {
        std::set<std::int64_t> kept;
        for (const auto s : selection)
            if (!at.contains(s))
                kept.insert(s - std::distance(at.begin(), at.lower_bound(s)));
        if (filter)
            listmodel::removeFrom(full, fullPositions(at));
        listmodel::removeFrom(items, at);
        selection = kept;
        rebuild();
    }
    void move(const std::set<std::int64_t>& from, std::int64_t to) {
        if (filter)
            listmodel::moveIn(full, fullPositions(from), fullPosition(to));
        const std::int64_t landing = listmodel::moveIn(items, from, to);
        selection.clear();
        for (std::size_t i = 0; i < from.size(); ++i)
            selection.insert(landing + static_cast<std::int64_t>(i));
        rebuild();
    }
    void sort() {
        std::vector<std::pair<Item, bool>> pairs;
        for (std::size_t i = 0; i < items.size(); ++i)
            pairs.emplace_back(items[i], selection.contains(static_cast<std::int64_t>(i)));
        std::stable_sort(pairs.begin(), pairs.end(),
                         [](auto& a, auto& b) { return isLess(a.first, b.first); });
        selection.clear();
        for (std::size_t i = 0; i < pairs.size(); ++i) {
            items[i] = pairs[i].first;
            if (pairs[i].second)
                selection.insert(static_cast<std::int64_t>(i));
        }
        std::stable_sort(full.begin(), full.end(), isLess);
        rebuild();
    }
    void reverse() {
        std::set<std::int64_t> mirrored;
        for (const auto s : selection)
            mirrored.insert(std::ssize(items) - 1 - s);
        selection = mirrored;
        std::reverse(items.begin(), items.end());
        std::reverse(full.begin(), full.end());
        rebuild();
    }
    void setFilter(typename ManagedList<Item>::Filter next) {
        if (filter) {
            selection = fullPositions(selection);
            items = full;
        }
        full.clear();
        mapping.clear();
        filter = next;
        if (!filter)
            return;
        full = items;
        items.clear();
        const std::set<std::int64_t> selected = std::exchange(selection, {});
        for (std::size_t q = 0; q < full.size(); ++q) {
            if (!filter(full[q]))
                continue;
            const auto k = static_cast<std::int64_t>(items.size());
            mapping[k] = static_cast<std::int64_t>(q);
            if (selected.contains(static_cast<std::int64_t>(q)))
                selection.insert(k);
            items.push_back(full[q]);
        }
    }
};

} // namespace

template <>
struct std::hash<Hashed> {
    std::size_t operator()(const Hashed& item) const { return std::hash<int>{}(item.value); }
};

template <class Item>
class ManagedListRules : public testing::Test {};
using ItemTypes = testing::Types<Hashed, Ordered, Titled, OnlyEqual>;
TYPED_TEST_SUITE(ManagedListRules, ItemTypes);

TYPED_TEST(ManagedListRules, HoldUnderRandomOperations) {
    using List = ManagedList<TypeParam>;
    std::mt19937 random(5);
    const auto draw = [&random](std::size_t below) {
        return static_cast<std::int64_t>(random() % std::max<std::size_t>(below, 1));
    };
    for (int round = 0; round < 150; ++round) {
        const std::size_t values = round % 2 ? 6 : 1000; // many duplicates, or hardly any
        const auto list = List::create();
        Announcements<TypeParam> announced(list);
        Model<TypeParam> model;
        for (int step = 0; step < 40; ++step) {
            const std::size_t count = model.items.size();
            listmodel::Positions some;
            for (std::size_t i = 0; i < count; ++i)
                if (draw(3) == 0)
                    some.insert(static_cast<std::int64_t>(i));
            const IndexSet places = listmodel::indexSet(some);
            announced.posts.clear();
            const auto before = model.selection;
            const auto shown = model.items;
            const auto at = draw(count + 1);
            std::optional<typename List::Edition> did; // as announced afterwards
            const auto happens = [&](Action action) -> auto& { return did.emplace(action); };
            switch (draw(7)) {
            case 0: {
                std::vector<TypeParam> added;
                for (auto i = draw(5); i > 0; --i)
                    added.push_back(TypeParam{static_cast<int>(draw(values))});
                list->insert(added, at);
                if (added.empty())
                    break;
                model.insert(added, at);
                happens(Action::insert).insertedIndexes =
                    IndexSet({.loc = at, .len = list->count() - std::ssize(shown)});
                break;
            }
            case 1:
                list->remove(places);
                if (some.empty())
                    break;
                model.remove(some);
                happens(Action::remove).removedIndexes = places;
                break;
            case 2:
                list->move(places, at);
                if (some.empty())
                    break;
                model.move(some, at);
                happens(Action::move).movedFromIndexes = places;
                did->movedToIndexes = listmodel::indexSet(model.selection);
                break;
            case 3:
                list->sort(Model<TypeParam>::isLess);
                if (count == 0)
                    break;
                model.sort();
                happens(Action::sort);
                break;
            case 4:
                list->reverseOrder();
                if (count == 0)
                    break;
                model.reverse();
                happens(Action::sort);
                break;
            case 5:
                list->setSelection(places);
                if (some != model.selection)
                    happens(Action::select);
                model.selection = some;
                break;
            case 6: {
                typename List::Filter filter;
                if (const auto divisor = static_cast<int>(draw(4)); divisor > 0)
                    filter = [divisor](const auto& item) { return item.value % divisor == 0; };
                if (filter || model.filter)
                    happens(Action::filter);
                list->setFilter(filter);
                model.setFilter(filter);
                break;
            }
            }
            ASSERT_EQ(list->items(), model.items);
            ASSERT_EQ(list->selection(), listmodel::indexSet(model.selection));
            ASSERT_EQ(list->allItems(), model.filter ? model.full : model.items);
            // Asking all finds all; the next change must also do without.
            for (std::int64_t p = draw(2) == 0 ? 0 : list->count(); p <= list->count(); ++p)
                ASSERT_EQ(list->fullPosition(p), model.fullPosition(p));
            ASSERT_FALSE(list->reordering());
            listmodel::expectQueries(*list, model.selection);
            ASSERT_EQ(announced.posts.size(), did ? 2u : 0u);
            if (!did)
                continue;
            did->oldSelection = listmodel::indexSet(before);
            auto will = *did;
            did->newSelection = list->selection();
            if (did->action != Action::move && did->action != Action::filter)
                will.newSelection = did->newSelection;
            will.movedToIndexes.reset();
            const auto& [told, toldAfter] = std::tie(announced.posts[0], announced.posts[1]);
            ASSERT_EQ(told.edition, will);
            ASSERT_EQ(told.items, shown);
            ASSERT_EQ(told.selection, did->oldSelection);
            ASSERT_FALSE(told.reordering);
            ASSERT_EQ(toldAfter.edition, *did);
            ASSERT_EQ(toldAfter.items, model.items);
            ASSERT_EQ(toldAfter.selection, did->newSelection);
            if (did->action == Action::filter)
                expectFollowedByFilter(shown, model.items, toldAfter.reordering.value());
            else
                listmodel::expectFollowed(serials(shown), serials(model.items),
                                          toldAfter.reordering.value());
        }
    }
}

// More items than are looked for one by one, with equal ones before and after them.
TEST(ManagedList, FindsManyItems) {
    const auto list = ManagedList<Hashed>::create();
    Model<Hashed> model;
    const auto change = [&](const auto& both) {
        both(*list);
        both(model);
    };
    std::vector<Hashed> items;
    for (int i = 0; i < 6000; ++i)
        items.push_back(Hashed{i % 5000});
    change([&](auto& each) { each.insert(items, 0); });
    change(
        [](auto& each) { each.setFilter([](const Hashed& item) { return item.value % 2 == 0; }); });
    change([added = Hashed{8}](auto& each) { each.insert({added}, 2000); }); // moves the others
    for (std::int64_t p = 0; p <= list->count(); ++p)
        ASSERT_EQ(list->fullPosition(p), model.fullPosition(p)) << p;
    listmodel::Positions some;
    for (std::int64_t p = 0; p < list->count(); p += 3)
        some.insert(p);
    list->remove(listmodel::indexSet(some));
    model.remove(some);
    EXPECT_EQ(serials(list->items()), serials(model.items));
    EXPECT_EQ(serials(list->allItems()), serials(model.full));
}

TEST(ManagedList, FollowsItemsWhoseEqualWasLost) {
    const auto list = ManagedList<Hashed>::create({Hashed{1}, Hashed{2}, Hashed{1}, Hashed{3}});
    list->setFilter([](const Hashed&) { return true; });
    list->remove({3});
    list->remove({2}); // the full list loses the first 1
    const std::vector<Hashed> shown = list->items();
    Announcements<Hashed> announced(list);
    list->setFilter({});
    const Reordering reordering = announced.posts.at(1).reordering.value();
    expectFollowedByFilter(shown, list->items(), reordering);
    EXPECT_EQ(reordering.newPosition(0), 1);
}
