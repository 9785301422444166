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

TEST(SelectableArray, StepsItsSelection) {
    constexpr auto far = std::numeric_limits<std::int64_t>::max();
    const IndexSet all{0, 1, 2, 3, 4};
    struct {
        std::function<void(List&)> step;
        IndexSet selection;
    } table[] = {
        {[](List& l) { l.selectFirst(); }, {0}},
        {[](List& l) { l.selectLast(); }, {4}},
        {[](List& l) { l.selectAll(); }, all},
        {[](List& l) { l.deselectAll(); }, {}},
        {[](List& l) { l.selectNext(10); }, {4}},
        {[](List& l) { l.selectNext(far); }, {4}},
        {[](List& l) { l.selectNext(-3); }, {}},
        {[](List& l) { l.selectPrevious(); }, {1}},
        {[](List& l) { l.selectPrevious(far); }, {0}},
        {[](List& l) { l.selectPrevious(-3); }, {}},
        {[](List& l) { l.selectPrevious(-far - 1); }, {}},
    };
    for (const auto& row : table) {
        Recorded empty(""), recorded("abcde", {2});
        row.step(*empty.list);
        EXPECT_THAT(empty.editions, IsEmpty());
        row.step(*recorded.list);
        EXPECT_THAT(recorded.editions, ElementsAre(Edition::Select{row.selection}));
        EXPECT_EQ(recorded.list->selection(), row.selection);
    }
}

TEST(SelectableArray, LeavesTheChangeToItsHandlerWhichMaySetAnother) {
    static_assert(!std::is_copy_constructible_v<List> && !std::is_copy_assignable_v<List>);
    Recorded recorded("ab");
    std::string told;
    List::Action kept;
    recorded.list->setEditionHandler([&, first = std::string(50, '1')](const List::Action& action) {
        recorded.list->setEditionHandler([&](const List::Action& next) { kept = next; });
        action();
        told += first.back(); // its closure is still there
    });
    recorded.list->append({'c'});
    EXPECT_EQ(told, "1");
    recorded.list->append({'d'});
    EXPECT_EQ(recorded.letters(), "abc");
    EXPECT_EQ(kept(), Edition(Edition::Insert{1, 3}));
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
    listmodel::Lot draw{std::mt19937(11)};
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
            const bool isOfSelection = draw(4) == 0;
            const auto some = isOfSelection ? selected() : draw.positions(list->count());
            const IndexSet places = listmodel::indexSet(some);
            const std::int64_t at = draw(model.size() + 1);
            std::vector<int> before = serials();
            std::optional<Edition> expected;
            edition.reset();
            reordering.reset();
            bool isReload = false;
            switch (draw(8)) {
            case 0: {
                std::vector<int> added;
                for (auto i = draw(3); i > 0; --i)
                    added.push_back(++made);
                if (at == std::ssize(model))
                    list->append(added);
                else
                    at == 0 ? list->prepend(added) : list->insert(added, at);
                for (auto i = added.rbegin(); i != added.rend(); ++i)
                    model.insert(model.begin() + at, {false, *i});
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
                if (some.size() == model.size())
                    list->removeAllElements();
                else
                    isOfSelection ? list->removeSelectedElements() : list->remove(places);
                listmodel::removeFrom(model, some);
                if (!some.empty())
                    expected = Edition::Remove{places};
                break;
            case 3:
                isOfSelection ? list->moveSelectedElements(at) : list->move(places, at);
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
                isReload = !model.empty();
                break;
            }
            case 5:
                list->reverseElementsOrder();
                std::reverse(model.begin(), model.end());
                isReload = !model.empty();
                break;
            case 6: {
                const bool isBeyond = draw(2) == 0; // which is passed over, and told of
                const bool isNew = isBeyond || some != selected();
                list->select(isBeyond ? places.inserting(list->count() + draw(3)) : places);
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
                isReload = true;
                break;
            }
            if (isReload)
                expected = Edition::Reload{listmodel::indexSet(selected())};
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
            ASSERT_EQ(list->selectedElements(), chosen);
            listmodel::expectSelected(list->elements(), list->selection(),
                                      {list->firstSelectedElement(), list->lastSelectedElement(),
                                       list->singleSelectedElement()});
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
