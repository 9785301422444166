#include <tests/collections/ListModel.h>

#include <zorvan/collections/SelectableArray.h>

using Edition = SelectableArrayEdition;
using List = SelectableArray<char>;

// Every member compiles for elements that lists of them hold no place of, and for those that
// nothing is known of.
struct Opaque {};
template class zorvan::SelectableArray<bool>;
template class zorvan::SelectableArray<Opaque>;

namespace {

/// A list of letters that keeps the editions it hands out.
struct Recorded {
    explicit Recorded(std::string_view letters, IndexSet selection = {}) {
        std::vector<List::Entry> entries;
        for (const char letter : letters)
            entries.push_back(
                {selection.contains(static_cast<std::int64_t>(entries.size())), letter});
        list->setEntries(std::move(entries));
        list->setEditionHandler(
            [this](const List::Action& action) { editions.push_back(action()); });
    }
    std::string letters() const { return {list->elements().begin(), list->elements().end()}; }

    std::shared_ptr<List> list = List::create();
    std::vector<Edition> editions;
};

} // namespace

TEST(SelectableArray, TellsEveryChange) {
    constexpr auto far = std::numeric_limits<std::int64_t>::max();
    const std::vector<char> xy{'x', 'y'};
    const IndexSet ab{0, 1}, ac{0, 2}, beyond{1, 9}, same{2}, more{2, 9}, all{0, 1, 2, 3, 4};
    struct {
        const char* name;
        std::function<void(List&)> change;
        const char* letters;
        IndexSet selection;
        std::optional<Edition> edition;
    } table[] = {
        {"insert", [&](List& l) { l.insert(xy, 1); }, "axybcde", {4}, Edition::Insert{2, 1}},
        {"append", [&](List& l) { l.append(xy); }, "abcdexy", same, Edition::Insert{2, 5}},
        {"insert nothing", [](List& l) { l.insert({}, 1); }, "abcde", same, {}},
        {"replace", [](List& l) { l.replace('x', 2); }, "abxde", same, Edition::Replace{2}},
        {"remove", [&](List& l) { l.remove(ab); }, "cde", {0}, Edition::Remove{ab}},
        {"remove nothing", [](List& l) { l.remove({}); }, "abcde", same, {}},
        {"prepend", [&](List& l) { l.prepend(xy); }, "xyabcde", {4}, Edition::Insert{2, 0}},
        {"deselect", [](List& l) { l.deselectAll(); }, "abcde", {}, Edition::Select{{}}},
        {"move selected",
         [](List& l) { l.moveSelectedElements(0); },
         "cabde",
         {0},
         Edition::Move{same, 0}},
        {"cut", [](List& l) { l.removeSelectedElements(); }, "abde", {}, Edition::Remove{same}},
        {"move", [&](List& l) { l.move(ac, 4); }, "bdace", {3}, Edition::Move{ac, 4}},
        {"sort", [](List& l) { l.sort(std::greater<>{}); }, "edcba", same, Edition::Reload{same}},
        {"turn", [](List& l) { l.reverseElementsOrder(); }, "edcba", same, Edition::Reload{same}},
        {"select", [&](List& l) { l.select(beyond); }, "abcde", {1}, Edition::Select{{1}}},
        {"select the same", [&](List& l) { l.select(same); }, "abcde", same, {}},
        {"the same and more", [&](List& l) { l.select(more); }, "abcde", same,
         Edition::Select{same}},
        {"select all", [](List& l) { l.selectAll(); }, "abcde", all, Edition::Select{all}},
        {"next", [](List& l) { l.selectNext(10); }, "abcde", {4}, Edition::Select{{4}}},
        {"previous", [](List& l) { l.selectPrevious(); }, "abcde", {1}, Edition::Select{{1}}},
        {"far back", [](List& l) { l.selectPrevious(far); }, "abcde", {0}, Edition::Select{{0}}},
        {"back out", [](List& l) { l.selectPrevious(-3); }, "abcde", {}, Edition::Select{{}}},
        {"back far out",
         [](List& l) { l.selectPrevious(-far - 1); },
         "abcde",
         {},
         Edition::Select{{}}},
        {"out", [](List& l) { l.selectNext(-3); }, "abcde", {}, Edition::Select{{}}},
        {"far", [](List& l) { l.selectNext(far); }, "abcde", {4}, Edition::Select{{4}}},
    };
    for (const auto& row : table) {
        Recorded recorded("abcde", {2});
        row.change(*recorded.list);
        EXPECT_EQ(recorded.letters(), row.letters) << row.name;
        EXPECT_EQ(recorded.list->selection(), row.selection) << row.name;
        ASSERT_EQ(recorded.editions.size(), row.edition.has_value()) << row.name;
        if (row.edition) {
            EXPECT_EQ(recorded.editions[0], *row.edition) << row.name;
        }
    }
}

TEST(SelectableArray, StaysQuietWhenEmpty) {
    Recorded recorded("");
    List& list = *recorded.list;
    list.sort(std::less<>{});
    list.reverseElementsOrder();
    list.removeAllElements();
    list.selectFirst();
    list.selectLast();
    list.selectNext();
    list.selectAll();
    EXPECT_TRUE(recorded.editions.empty());
    EXPECT_TRUE(list.isSelectionFull());
    EXPECT_FALSE(list.canSelectAll());
    EXPECT_FALSE(list.canSelectPrevious());
    // The change is left to the handler.
    List::Action kept;
    list.setEditionHandler([&kept](const List::Action& action) { kept = action; });
    list.append({'a'});
    EXPECT_TRUE(list.elements().empty());
    EXPECT_EQ(kept(), Edition(Edition::Insert{1, 0}));
    EXPECT_EQ(list.count(), 1);
}

TEST(SelectableArray, LetsAHandlerSetAnother) {
    static_assert(!std::is_copy_constructible_v<List> && !std::is_copy_assignable_v<List>);
    Recorded recorded("ab");
    std::string told;
    recorded.list->setEditionHandler([&, first = std::string(50, '1')](const List::Action& action) {
        recorded.list->setEditionHandler([&](const List::Action& next) {
            next();
            told += '2';
        });
        action();
        told += first.back(); // its closure is still there
    });
    recorded.list->append({'c'});
    recorded.list->append({'d'});
    EXPECT_EQ(told, "12");
    EXPECT_EQ(recorded.letters(), "abcd");
}

TEST(SelectableArray, CarriesItsEditionsInNotifications) {
    const Edition edition = Edition::Replace{3};
    const NSNotificationName name("any");
    EXPECT_EQ(*Edition::edition(Notification(name, nullptr, edition.userInfo())), edition);
    EXPECT_EQ(Edition::edition(Notification(name)), nullptr);
    EXPECT_EQ(Edition::edition(Notification(name, nullptr, {{{"Edition", 3}}})), nullptr);
}

TEST(SelectableArray, AgreesWithPlainEntriesUnderRandomOperations) {
    using Numbers = SelectableArray<int>;
    std::mt19937 random(11);
    const auto draw = [&random](std::size_t below) {
        return static_cast<std::int64_t>(random() % std::max<std::size_t>(below, 1));
    };
    int made = 0;
    for (int round = 0; round < 200; ++round) {
        const auto list = Numbers::create(), other = Numbers::create();
        std::vector<Numbers::Entry> model;
        std::optional<Edition> edition;
        std::optional<Reordering> reordering;
        list->setEditionHandler([&](const Numbers::Action& action) {
            edition = action();
            reordering = list->reordering();
        });
        const auto serials = [&model] {
            std::vector<int> result;
            for (const auto& entry : model)
                result.push_back(entry.element);
            return result;
        };
        const auto selected = [&model] {
            listmodel::Positions positions;
            for (std::size_t i = 0; i < model.size(); ++i)
                if (model[i].isSelected)
                    positions.insert(static_cast<std::int64_t>(i));
            return positions;
        };
        for (int step = 0; step < 30; ++step) {
            listmodel::Positions some;
            for (std::size_t i = 0; i < model.size(); ++i)
                if (draw(3) == 0)
                    some.insert(static_cast<std::int64_t>(i));
            const IndexSet places = listmodel::indexSet(some);
            const std::int64_t at = draw(model.size() + 1);
            std::vector<int> before = serials();
            std::optional<Edition> expected;
            edition.reset();
            reordering.reset();
            const auto reload = [&] { return Edition::Reload{listmodel::indexSet(selected())}; };
            switch (draw(8)) {
            case 0: {
                std::vector<int> added;
                for (auto i = draw(3); i > 0; --i)
                    added.push_back(++made);
                list->insert(added, at);
                for (std::size_t i = 0; i < added.size(); ++i)
                    model.insert(model.begin() + at + static_cast<std::ptrdiff_t>(i),
                                 {false, added[i]});
                if (!added.empty())
                    expected = Edition::Insert{std::ssize(added), at};
                break;
            }
            case 1:
                if (at < std::ssize(model)) {
                    list->replace(++made, at);
                    model[static_cast<std::size_t>(at)].element = made;
                    before[static_cast<std::size_t>(at)] = made;
                    expected = Edition::Replace{at};
                }
                break;
            case 2:
                list->remove(places);
                listmodel::removeFrom(model, some);
                if (!some.empty())
                    expected = Edition::Remove{places};
                break;
            case 3:
                list->move(places, at);
                listmodel::moveIn(model, some, at);
                if (!some.empty())
                    expected = Edition::Move{places, at};
                break;
            case 4: {
                const auto isLess = [](int a, int b) { return a % 7 < b % 7; };
                list->sort(isLess);
                std::stable_sort(model.begin(), model.end(), [&](const auto& a, const auto& b) {
                    return isLess(a.element, b.element);
                });
                if (!model.empty())
                    expected = reload();
                break;
            }
            case 5:
                list->reverseElementsOrder();
                std::reverse(model.begin(), model.end());
                if (!model.empty())
                    expected = reload();
                break;
            case 6: {
                const bool isNew = some != selected();
                list->select(places);
                for (std::size_t i = 0; i < model.size(); ++i)
                    model[i].isSelected = some.contains(static_cast<std::int64_t>(i));
                if (isNew)
                    expected = Edition::Select{places};
                break;
            }
            case 7:
                model = {{draw(2) == 0, made + 1}, {true, made + 2}};
                made += 2;
                list->setEntries(model);
                expected = reload();
                break;
            }
            ASSERT_EQ(edition, expected);
            ASSERT_EQ(list->elements(), serials());
            ASSERT_EQ(list->selection(), listmodel::indexSet(selected()));
            ASSERT_FALSE(list->reordering());
            if (expected)
                listmodel::expectFollowed(before, serials(), reordering.value());
            listmodel::expectQueries(*list, selected());
            std::vector<int> chosen;
            for (const auto position : selected())
                chosen.push_back(model[static_cast<std::size_t>(position)].element);
            const auto value = [](const int* element) { return element ? *element : 0; };
            ASSERT_EQ(list->selectedElements(), chosen);
            ASSERT_EQ(value(list->firstSelectedElement()), chosen.empty() ? 0 : chosen.front());
            ASSERT_EQ(value(list->lastSelectedElement()), chosen.empty() ? 0 : chosen.back());
            ASSERT_EQ(value(list->singleSelectedElement()), chosen.size() == 1 ? chosen[0] : 0);
            ASSERT_EQ(list->canRemoveAllElements(), !model.empty());
            ASSERT_EQ(list->canRemoveSelectedElements(), !chosen.empty());
            ASSERT_EQ(list->canMoveSelectedElements(), !chosen.empty());
            other->setEntries(list->entries());
            ASSERT_EQ(*other, *list);
            if (!model.empty()) {
                other->select(other->selection().toggling(0));
                ASSERT_FALSE(*other == *list);
            }
        }
    }
}

TEST(SelectableArrayDeathTest, RefusesPositionsOutsideTheList) {
    Recorded recorded("ab");
    EXPECT_DEATH(recorded.list->insert({'x'}, 3), "^The position 3 lies outside the list");
    EXPECT_DEATH(recorded.list->replace('x', 2), "^The position 2 lies outside the list");
    EXPECT_DEATH(recorded.list->remove({2}), "^The position 2 lies outside the list");
}
