#include <tests/Testing.h>

#include <zorvan/collections/Dictionary.h>
#include <zorvan/collections/FinderOrder.h>
#include <zorvan/collections/Parallel.h>
#include <zorvan/collections/Sequence.h>

#include <list>

using Words = std::map<std::string, int>;

namespace {
std::optional<int> evenOnly(int i) { return i % 2 ? std::nullopt : std::optional(i); }
} // namespace

TEST(Sequence, MapsAndDropsWhatIsAbsent) {
    const std::list<int> list{1, 2, 2, 4};
    EXPECT_EQ(mapToSet(list, [](int i) { return i * 2; }), (std::unordered_set<int>{2, 4, 8}));
    EXPECT_EQ(compactMapToSet(list, evenOnly), (std::unordered_set<int>{2, 4}));
    EXPECT_EQ(mapIndexSet(list, [](int i) { return 5 - i; }), IndexSet({1, 3, 4}));
    EXPECT_EQ(compactMapIndexSet(list, evenOnly), IndexSet({2, 4}));
    EXPECT_EQ(indexes(list, [](int i) { return i == 2; }), IndexSet({1, 2}));
    EXPECT_EQ(mapEntries(list, [](int i) { return std::pair(i % 2, i); }),
              (std::unordered_map<int, int>{{1, 1}, {0, 4}})); // the later pair stays
    using Pairs = std::unordered_map<int, int>;
    const auto evenPair = [](int i) -> std::optional<std::pair<int, int>> {
        return i % 2 ? std::nullopt : std::optional(std::pair(0, i));
    };
    EXPECT_EQ(compactMapEntries(list, evenPair), (Pairs{{0, 4}}));
    EXPECT_EQ(nonEmptyOrNil(std::string()), std::nullopt);
    EXPECT_EQ(nonEmptyOrNil(std::string("a")), "a");
    // It stops at the first that is present.
    int calls = 0;
    const auto result = compactFirst(std::vector{1, 4, 6}, [&calls](int i) {
        ++calls;
        return evenOnly(i);
    });
    EXPECT_EQ(result, 4);
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(compactFirst(std::vector{1, 3}, evenOnly), std::nullopt);
}

TEST(Dictionary, ResolvesCollisionsByTheLaterEntry) {
    const Words words{{"a", 1}, {"b", 2}, {"c", 1}};
    EXPECT_EQ(inversed(words), (std::unordered_map<int, std::string>{{1, "c"}, {2, "b"}}));
    EXPECT_EQ(mapKeys(words, [](const std::string&) { return 0; }),
              (std::unordered_map<int, int>{{0, 1}}));
    EXPECT_EQ(compactMapKeys(words,
                             [](const std::string& key) -> std::optional<char> {
                                 return key == "b" ? std::nullopt : std::optional(key[0]);
                             }),
              (std::unordered_map<char, int>{{'a', 1}, {'c', 1}}));
    EXPECT_EQ(combinedWith(Words{{"a", 1}, {"b", 2}}, Words{{"b", 3}}),
              (Words{{"a", 1}, {"b", 3}}));
    EXPECT_EQ(pop(words, "a"), (Words{{"b", 2}, {"c", 1}}));
    EXPECT_EQ(mapKeysToSet(words, [](const std::string& key) { return key.size(); }),
              std::unordered_set<std::size_t>{1});
    EXPECT_EQ(mapValuesToSet(words, [](int i) { return i; }), (std::unordered_set<int>{1, 2}));
}

TEST(Dictionary, KeepsNoEmptySets) {
    std::map<int, std::unordered_set<std::string>> sets;
    insertValue(sets, "x", 7);
    removeValue(sets, "y", 7);
    EXPECT_EQ(sets[7].size(), 1u);
    removeValue(sets, "x", 7);
    removeValue(sets, "x", 7);
    EXPECT_TRUE(sets.empty()); // asking made no key
}

TEST(Parallel, KeepsOrderAndCallsEachOnce) {
    std::vector<int> list(10'000);
    std::iota(list.begin(), list.end(), 0);
    std::atomic<int> calls = 0;
    const auto squares = parallelMap(list, [&calls](int i) {
        ++calls;
        return static_cast<std::int64_t>(i) * i;
    });
    EXPECT_EQ(calls, 10'000);
    for (std::size_t i = 0; i < squares.size(); ++i)
        ASSERT_EQ(squares[i], static_cast<std::int64_t>(i * i));
    const auto even = parallelCompactMap(list, evenOnly);
    ASSERT_EQ(even.size(), 5'000u);
    EXPECT_EQ(even[2'500], 5'000);
    EXPECT_EQ(parallelMapToSet(list, [](int i) { return i % 7; }).size(), 7u);
    EXPECT_EQ(parallelMap(std::vector{1, 2, 3}, [](int i) { return i > 1; }),
              (std::vector<bool>{false, true, true}));
    EXPECT_TRUE(parallelMap(std::vector<int>(), [](int i) { return i; }).empty());
    struct Fixed {
        const int value = 0;
    };
    EXPECT_EQ(parallelMap(std::vector{4, 5}, [](int i) { return Fixed{i}; })[1].value, 5);

    EXPECT_THROW(
        parallelMap(list, [](int) -> std::string { throw std::runtime_error("no value"); }),
        std::runtime_error);
    EXPECT_THROW(parallelEach(list, [](int) { throw std::logic_error("no"); }), std::logic_error);
}

TEST(FinderOrder, SortsAsPeopleRead) {
    std::vector<std::string> names{"file10", "\u00C9tude", "file2", "File1", "etude"};
    finderSort(names);
    EXPECT_EQ(names, (std::vector<std::string>{"\u00C9tude", "etude", "File1", "file2", "file10"}));
    const std::vector<int> numbers{10, 9, 100};
    // A range may end with another type than it begins with.
    struct FirstTwo {
        std::counted_iterator<std::vector<std::string>::const_iterator> begin() const {
            return {list.begin(), 2};
        }
        std::default_sentinel_t end() const { return {}; }
        std::vector<std::string> list;
    };
    EXPECT_EQ(finderSorted(FirstTwo{{"b", "a", "0"}}), (std::vector<std::string>{"a", "b"}));
    const auto name = [](int i) { return "file" + std::to_string(i); };
    EXPECT_EQ(finderSorted(numbers, name), (std::vector<int>{9, 10, 100}));
    EXPECT_EQ(finderSorted(std::map<int, int>{{1, 10}, {2, 9}}, name), (std::vector<int>{9, 10}));
}
