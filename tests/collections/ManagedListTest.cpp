#include <tests/Listener.h>
#include <tests/collections/ListModel.h>

#include <zorvan/collections/ManagedList.h>

using Letters = ManagedList<char>;
using Action = ManagedListEdition::Action;

template class zorvan::ManagedList<bool>; // every member compiles

namespace {

/// Keeps what a list announces.
template <class Item>
struct Announcements {
    using List = ManagedList<Item>;
    struct Post {
        bool isDid;
        typename List::Edition edition;
        std::optional<Reordering> reordering;
        std::vector<Item> items; // of the list, when it was told
        IndexSet selection;
    };

    explicit Announcements(const std::shared_ptr<List>& told)
        : list(*told),
          will(List::willReloadNotification, told, [this](const auto& note) { add(false, note); }),
          did(List::didReloadNotification, told, [this](const auto& note) { add(true, note); }) {}
    void add(bool isDid, const Notification& note) {
        posts.push_back(
            {isDid, *List::edition(note), list.reordering(), list.items(), list.selection()});
    }

    const List& list;
    std::vector<Post> posts;
    Listener will, did;
};

/// An item that throws when it is copied `left` times more, and is never moved.
struct Fragile {
    Fragile(int number_) : number(number_) {}
    Fragile(const Fragile& other) : number(other.number) {
        if (left >= 0 && left-- == 0)
            throw std::runtime_error("no copy");
    }
    Fragile& operator=(const Fragile&) = default;
    bool operator==(const Fragile&) const = default;
    int number;
    static inline int left = -1;
};

std::shared_ptr<Letters> letters(std::string_view text) {
    return Letters::create({text.begin(), text.end()});
}

} // namespace

TEST(ManagedList, KeepsEverythingWhenASortOrAFilterFails) {
    const auto list = letters("cab");
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
    EXPECT_THAT(list->items(), ElementsAre('c', 'a', 'b'));
    EXPECT_FALSE(list->filter());
    list->removeAllItems(); // the failed change is over: another may follow
    EXPECT_EQ(list->count(), 0);
}

TEST(ManagedList, RemovesWhatIsShownAlsoAfterAnItemHasThrown) {
    for (int copies = 0; copies < 40; ++copies) {
        const auto list = ManagedList<Fragile>::create({0, 1, 2, 3, 4, 5, 6});
        list->setFilter([](const Fragile& item) { return item.number % 2 == 0; });
        Fragile::left = copies;
        try {
            list->insert({10, 11, 12}, 1);
        } catch (const std::runtime_error&) {
        }
        Fragile::left = -1;
        const Fragile gone = list->items()[3];
        list->remove({3});
        EXPECT_EQ(std::ranges::count(list->allItems(), gone), 0) << copies;
    }
}

TEST(ManagedList, TellsItsEditionsFromThoseOfOtherItemTypes) {
    EXPECT_EQ(Letters::willReloadNotification, "ManagedListWillReloadNotification");
    EXPECT_EQ(Letters::didReloadNotification, "ManagedListDidReloadNotification");
    const ManagedList<int>::Edition edition(Action::select);
    const Notification note(NSNotificationName("any"), nullptr, {{{"Edition", edition}}});
    EXPECT_NE(ManagedList<int>::edition(note), nullptr);
    EXPECT_EQ(ManagedList<char>::edition(note), nullptr);
    EXPECT_EQ(ManagedList<int>::edition(Notification(NSNotificationName("any"))), nullptr);
    std::string mayChangeCount;
    for (int action = 0; action < 6; ++action)
        mayChangeCount +=
            ManagedListEdition(static_cast<Action>(action)).mayChangeCount() ? 'y' : 'n';
    EXPECT_EQ(mayChangeCount, "yynnny");
}

TEST(ManagedList, MayBeDroppedAndAskedWhileItTellsOfAChange) {
    static_assert(!std::is_copy_constructible_v<Letters> && !std::is_copy_assignable_v<Letters>);
    auto list = letters("abcb");
    Letters* const dropped = list.get();
    list->setFilter([](char c) { return c != 'a'; });
    const Listener will(Letters::willReloadNotification, list, [&](const Notification&) {
        // Calls that change nothing are let pass.
        list->setSelection({});
        list->insert({}, 0);
        list->remove({});
        list->move({}, 0);
        list.reset();
    });
    std::vector<char> shownThen;
    const Listener did(Letters::didReloadNotification, list,
                       [&](const Notification&) { shownThen = dropped->items(); });
    dropped->remove({0});
    EXPECT_THAT(shownThen, ElementsAre('c', 'b'));
}

TEST(ManagedList, TellsWhereItemsWentOfTheChangeThatIsTold) {
    const auto list = letters("abc");
    std::vector<std::int64_t> firsts; // where the first item went, as told to the last observer
    const Listener changing(Letters::didReloadNotification, list, [&](const Notification&) {
        if (list->count() == 3)
            list->insert({'x'}, 0);
    });
    // Before the insertion, for whoever was not told of the reversal yet.
    std::vector<bool> isTold;
    const Listener early(Letters::willReloadNotification, list, [&](const Notification&) {
        isTold.push_back(list->reordering().has_value());
    });
    const Listener asking(Letters::didReloadNotification, list, [&](const Notification&) {
        firsts.push_back(list->reordering()->newPosition(0).value());
    });
    list->reverseOrder();
    EXPECT_THAT(firsts, ElementsAre(1, 2));
    EXPECT_THAT(isTold, ElementsAre(false, true));
}

TEST(ManagedListDeathTest, StopsOnBrokenContracts) {
    const auto list = letters("ab");
    EXPECT_DEATH(list->insert({'x'}, 3),
                 "^The position 3 lies outside the list, which has 2 elements.\n$");
    EXPECT_DEATH(list->remove({2}), "^The position 2 lies outside the list");
    EXPECT_DEATH(list->move({0}, 3), "^The position 3 lies outside the list");
    const Listener changing(Letters::willReloadNotification, list,
                            [&](const Notification&) { list->removeAllItems(); });
    EXPECT_DEATH(list->selectFirst(),
                 "^A managed list was changed while it announced another change.\n$");
}

namespace {

int made = 0;

/// Items that are equal in value, and told apart by when they were made.
struct OnlyEqual {
    explicit OnlyEqual(int number) : value(number) {}
    friend bool operator==(const OnlyEqual& a, const OnlyEqual& b) { return a.value == b.value; }
    int value;
    int serial = ++made;
};
struct Hashed : OnlyEqual {
    using OnlyEqual::OnlyEqual;
};
/// Sorted by less than what makes them equal, as records are by their titles.
struct Titled : OnlyEqual {
    using OnlyEqual::OnlyEqual;
    friend auto operator<=>(const Titled& a, const Titled& b) {
        return a.value / 4 <=> b.value / 4;
    }
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
        ASSERT_TRUE(found == now.end() || place == found - now.begin());
        if (!place)
            continue;
        ASSERT_EQ(after[static_cast<std::size_t>(*place)], before[i]);
        ASSERT_TRUE(taken.insert(*place).second);
    }
}

/// The rules of the list, said once more and as plainly as can be.
template <class Item>
struct Model {
    using Positions = listmodel::Positions;

    std::vector<Item> items, full;
    std::map<std::int64_t, std::int64_t> mapping;
    Positions selection;
    typename ManagedList<Item>::Filter filter;

    std::int64_t fullPosition(std::int64_t shown) const {
        const auto found = mapping.find(shown);
        return !filter || found == mapping.end() ? shown : found->second;
    }
    Positions fullPositions(const Positions& shown) const {
        Positions result;
        for (const auto position : shown)
            result.insert(fullPosition(position));
        return result;
    }
    void rebuild() {
        mapping.clear();
        for (std::size_t p = 0; filter && p < items.size(); ++p) {
            const auto first = std::find(full.begin(), full.end(), items[p]);
            if (first != full.end())
                mapping[static_cast<std::int64_t>(p)] = first - full.begin();
        }
    }
    static bool isLess(const Item& a, const Item& b) { return a.value < b.value; }
    void insert(std::vector<Item> added, std::int64_t at) {
        if (filter) {
            full.insert(full.begin() + fullPosition(at), added.begin(), added.end());
            std::erase_if(added, std::not_fn(filter));
        }
        items.insert(items.begin() + at, added.begin(), added.end());
        selection.clear();
        rebuild();
    }
    void remove(const Positions& at) {
        for (const auto s : std::exchange(selection, {}))
            if (!at.contains(s))
                selection.insert(s - std::distance(at.begin(), at.lower_bound(s)));
        if (filter)
            listmodel::removeFrom(full, fullPositions(at));
        listmodel::removeFrom(items, at);
        rebuild();
    }
    void move(const Positions& from, std::int64_t to) {
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
        for (const Item& item : items)
            pairs.emplace_back(item, selection.contains(std::ssize(pairs)));
        std::stable_sort(pairs.begin(), pairs.end(),
                         [](auto& a, auto& b) { return isLess(a.first, b.first); });
        items.clear();
        selection.clear();
        for (const auto& [item, isSelected] : pairs) {
            if (isSelected)
                selection.insert(std::ssize(items));
            items.push_back(item);
        }
        std::stable_sort(full.begin(), full.end(), isLess);
        rebuild();
    }
    void reverse() {
        for (const auto s : std::exchange(selection, {}))
            selection.insert(std::ssize(items) - 1 - s);
        std::reverse(items.begin(), items.end());
        std::reverse(full.begin(), full.end());
        rebuild();
    }
    void setFilter(typename ManagedList<Item>::Filter next) {
        if (filter) {
            selection = fullPositions(selection);
            items = std::exchange(full, {});
        }
        mapping.clear();
        filter = next;
        if (!filter)
            return;
        full.swap(items);
        const Positions selected = std::exchange(selection, {});
        for (std::int64_t q = 0; const Item& item : full) {
            if (filter(item)) {
                if (selected.contains(q))
                    selection.insert(std::ssize(items));
                mapping[std::ssize(items)] = q;
                items.push_back(item);
            }
            ++q;
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
using ItemTypes = testing::Types<Hashed, Titled, OnlyEqual>;
TYPED_TEST_SUITE(ManagedListRules, ItemTypes);

TYPED_TEST(ManagedListRules, HoldUnderRandomOperations) {
    using List = ManagedList<TypeParam>;
    listmodel::Lot draw{std::mt19937(5)};
    for (int round = 0; round < 150; ++round) {
        const std::size_t values = round % 2 ? 6 : 1000; // many duplicates, or hardly any
        const auto list = List::create();
        Announcements<TypeParam> announced(list);
        Model<TypeParam> model;
        for (int step = 0; step < 40; ++step) {
            const std::size_t count = model.items.size();
            const bool isOfSelection = draw(4) == 0;
            const auto some = isOfSelection ? model.selection : draw.positions(list->count());
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
                at == std::ssize(shown) ? list->append(added) : list->insert(added, at);
                if (added.empty())
                    break;
                model.insert(added, at);
                happens(Action::insert).insertedIndexes =
                    IndexSet({.loc = at, .len = list->count() - std::ssize(shown)});
                break;
            }
            case 1:
                isOfSelection ? list->removeSelectedItems() : list->remove(places);
                if (some.empty())
                    break;
                model.remove(some);
                happens(Action::remove).removedIndexes = places;
                break;
            case 2:
                isOfSelection ? list->moveSelectedItems(at) : list->move(places, at);
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
                list->setSelection(places.inserting(list->count() + draw(3))); // passed over
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
            listmodel::expectSelected(
                list->items(), list->selection(),
                {list->firstSelectedItem(), list->lastSelectedItem(), list->singleSelectedItem()});
            ASSERT_EQ(list->selectedItems(), zorvan::at(list->items(), list->selection()));
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
    listmodel::Positions some;
    for (std::int64_t p = 0; p < list->count(); ++p) {
        ASSERT_EQ(list->fullPosition(p), model.fullPosition(p)) << p;
        if (p % 3 == 0)
            some.insert(p);
    }
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
