#include <tests/Testing.h>

#include <zorvan/collections/SelectableArray.h>

using Edition = SelectableArrayEdition;
using List = SelectableArray<char>;

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

TEST(SelectableArray, tellsEveryChange) {
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

TEST(SelectableArray, staysQuietWhenEmpty) {
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

TEST(SelectableArrayDeathTest, refusesPositionsOutsideTheList) {
    Recorded recorded("ab");
    EXPECT_DEATH(recorded.list->insert({'x'}, 3), "outside the list");
    EXPECT_DEATH(recorded.list->replace('x', 2), "outside the list");
    EXPECT_DEATH(recorded.list->remove({2}), "outside the list");
}
