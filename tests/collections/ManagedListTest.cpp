#include <tests/Testing.h>

#include <zorvan/collections/ManagedList.h>

using Letters = ManagedList<char>;
using Action = ManagedListEdition::Action;

namespace {

/// Keeps what a list announces: "will" or "did", and the edition.
template <class Item>
class Announcements {
public:
    struct Post {
        bool isDid;
        typename ManagedList<Item>::Edition edition;
        std::optional<Reordering> reordering;
    };

    explicit Announcements(const std::shared_ptr<ManagedList<Item>>& list) {
        for (const bool isDid : {false, true})
            observers_.push_back(center_->addObserver(
                NSNotificationName(isDid ? ManagedList<Item>::didReloadNotification
                                         : ManagedList<Item>::willReloadNotification),
                list, nullptr, [this, isDid, told = list.get()](const Notification& note) {
                    posts.push_back({isDid, *ManagedList<Item>::edition(note), told->reordering()});
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

TEST(ManagedList, announcesEveryChangeTwice) {
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
        EXPECT_EQ(edition.oldSelection, kept) << row.name;
        EXPECT_EQ(edition.newSelection, row.selection) << row.name;
        const auto& places = edition.action == Action::insert   ? edition.insertedIndexes
                             : edition.action == Action::remove ? edition.removedIndexes
                                                                : edition.movedToIndexes;
        EXPECT_EQ(places, row.places) << row.name;
    }
}

TEST(ManagedList, keepsEverythingWhenASortOrAFilterFails) {
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
    EXPECT_TRUE(announced.posts.empty());
    EXPECT_THROW(list->setFilter([](char) -> bool { throw std::runtime_error("no filter"); }),
                 std::runtime_error);
    EXPECT_EQ(std::string(list->items().begin(), list->items().end()), "cab");
    EXPECT_FALSE(list->filter());
    list->removeAllItems(); // the failed change is over: another may follow
    EXPECT_EQ(list->count(), 0);
}

TEST(ManagedList, tellsItsEditionsFromThoseOfOtherItemTypes) {
    const ManagedList<int>::Edition edition(Action::select);
    const Notification note(NSNotificationName("any"), nullptr, {{{"Edition", edition}}});
    EXPECT_NE(ManagedList<int>::edition(note), nullptr);
    EXPECT_EQ(ManagedList<char>::edition(note), nullptr);
    EXPECT_EQ(ManagedList<int>::edition(Notification(NSNotificationName("any"))), nullptr);
}

TEST(ManagedListDeathTest, stopsOnBrokenContracts) {
    const auto list = letters("ab");
    EXPECT_DEATH(list->insert({'x'}, 3), "^A position lies outside the list.\n$");
    EXPECT_DEATH(list->remove({2}), "outside the list");
    EXPECT_DEATH(list->move({0}, 3), "outside the list");
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

/// What was shown before must be where the list says that it went.
template <class Item>
void expectFollowed(const std::vector<Item>& before, const std::vector<Item>& after,
                    const Reordering& reordering, bool isFilter) {
    const auto serials = [](const std::vector<Item>& items) {
        std::vector<int> result;
        for (const Item& item : items)
            result.push_back(item.serial);
        return result;
    };
    const std::vector<int> old = serials(before), now = serials(after);
    std::set<std::int64_t> taken;
    for (std::size_t i = 0; i < old.size(); ++i) {
        const auto place = reordering.newPosition(static_cast<std::int64_t>(i));
        const auto found = std::find(now.begin(), now.end(), old[i]);
        if (found != now.end() || !isFilter) {
            ASSERT_EQ(place.value_or(-1), found == now.end() ? -1 : found - now.begin());
        } else if (place) { // an equal one that the full list kept in its stead
            ASSERT_EQ(after[static_cast<std::size_t>(*place)], before[i]);
        }
        ASSERT_TRUE(!place || taken.insert(*place).second);
    }
    ASSERT_EQ(reordering.newPosition(-1), std::nullopt);
    ASSERT_EQ(reordering.newPosition(detail::countOf(before)), std::nullopt);
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
    static void removeFrom(std::vector<Item>& list, const std::set<std::int64_t>& positions) {
        for (auto p = positions.rbegin(); p != positions.rend(); ++p)
            list.erase(list.begin() + *p);
    }
    static std::int64_t moveIn(std::vector<Item>& list, const std::set<std::int64_t>& from,
                               std::int64_t to) {
        std::vector<Item> moved;
        std::int64_t rank = 0, below = 0;
        for (const auto p : from) {
            below += p < to;
            moved.push_back(list[static_cast<std::size_t>(p - rank)]);
            list.erase(list.begin() + (p - rank++));
        }
        list.insert(list.begin() + (to - below), moved.begin(), moved.end());
        return to - below;
    }

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
            removeFrom(full, fullPositions(at));
        removeFrom(items, at);
        selection = kept;
        rebuild();
    }
    void move(const std::set<std::int64_t>& from, std::int64_t to) {
        if (filter)
            moveIn(full, fullPositions(from), fullPosition(to));
        const std::int64_t landing = moveIn(items, from, to);
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

IndexSet indexSet(const std::set<std::int64_t>& members) {
    const std::vector<std::int64_t> list(members.begin(), members.end());
    return IndexSet::of(list);
}

} // namespace

template <>
struct std::hash<Hashed> {
    std::size_t operator()(const Hashed& item) const { return std::hash<int>{}(item.value); }
};

template <class Item>
class ManagedListRules : public testing::Test {};
using ItemTypes = testing::Types<Hashed, Ordered, OnlyEqual>;
TYPED_TEST_SUITE(ManagedListRules, ItemTypes);

TYPED_TEST(ManagedListRules, holdUnderRandomOperations) {
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
            std::set<std::int64_t> some;
            for (std::size_t i = 0; i < count; ++i)
                if (draw(3) == 0)
                    some.insert(static_cast<std::int64_t>(i));
            announced.posts.clear();
            const auto before = model.selection;
            const auto shown = model.items;
            const auto at = draw(count + 1);
            bool isQuiet = some.empty();
            switch (draw(6)) {
            case 0: {
                std::vector<TypeParam> added;
                for (auto i = draw(5); i > 0; --i)
                    added.push_back(TypeParam{static_cast<int>(draw(values))});
                isQuiet = added.empty();
                list->insert(added, at);
                if (!isQuiet)
                    model.insert(added, at);
                break;
            }
            case 1:
                list->remove(indexSet(some));
                if (!isQuiet)
                    model.remove(some);
                break;
            case 2:
                list->move(indexSet(some), at);
                if (!isQuiet)
                    model.move(some, at);
                break;
            case 3:
                isQuiet = count == 0;
                list->sort(Model<TypeParam>::isLess);
                if (!isQuiet)
                    model.sort();
                break;
            case 4:
                isQuiet = some == model.selection;
                list->setSelection(indexSet(some));
                model.selection = some;
                break;
            case 5: {
                typename List::Filter filter;
                if (const auto divisor = static_cast<int>(draw(4)); divisor > 0)
                    filter = [divisor](const auto& item) { return item.value % divisor == 0; };
                isQuiet = !filter && !model.filter;
                list->setFilter(filter);
                model.setFilter(filter);
                break;
            }
            }
            ASSERT_EQ(list->items(), model.items);
            ASSERT_EQ(list->selection(), indexSet(model.selection));
            ASSERT_EQ(list->allItems(), model.filter ? model.full : model.items);
            for (std::int64_t p = 0; p <= list->count(); ++p)
                ASSERT_EQ(list->fullPosition(p), model.fullPosition(p));
            ASSERT_EQ(announced.posts.size(), isQuiet ? 0u : 2u);
            if (!isQuiet) {
                ASSERT_EQ(announced.posts[1].edition.oldSelection, indexSet(before));
                ASSERT_EQ(announced.posts[1].edition.newSelection, list->selection());
                ASSERT_FALSE(announced.posts[0].reordering);
                expectFollowed(shown, list->items(), announced.posts[1].reordering.value(),
                               announced.posts[1].edition.action == Action::filter);
            }
            ASSERT_FALSE(list->reordering());
        }
    }
}
