#include <tests/collections/ListModel.h>

#include <zorvan/collections/Array.h>

TEST(Array, MovesAndRemovesAsOneElementAtATimeWould) {
    listmodel::Lot draw{std::mt19937(11)};
    for (int round = 0; round < 2000; ++round) {
        std::vector<std::unique_ptr<int>> list;
        std::vector<int> plain;
        for (auto i = draw(12); i > 0; --i) {
            plain.push_back(static_cast<int>(plain.size()));
            list.push_back(std::make_unique<int>(plain.back()));
        }
        const listmodel::Positions some = draw.positions(std::ssize(list));
        const IndexSet from = listmodel::indexSet(some);
        std::vector<int> left = plain, rest = plain;
        listmodel::removeFrom(rest, some);
        const std::int64_t to = draw(list.size() + 1);
        ASSERT_EQ(zorvan::move(list, from, to), listmodel::moveIn(plain, some, to));
        const IndexSet selection = from.union_({0, 5});
        const IndexSet after = selection.afterMoving(from, to);
        for (std::size_t i = 0; i < list.size(); ++i) {
            ASSERT_TRUE(list[i]);
            ASSERT_EQ(*list[i], plain[i]);
            ASSERT_EQ(after.contains(static_cast<std::int64_t>(i)), selection.contains(plain[i]));
        }
        zorvan::remove(left, from);
        ASSERT_EQ(left, rest);
    }
}

TEST(ArrayDeathTest, RefusesPositionsOutsideTheList) {
    std::vector<char> list{'a', 'b'};
    EXPECT_DEATH(zorvan::move(list, {0}, 3),
                 "^The position 3 lies outside the list, which has 2 elements.\n$");
    EXPECT_DEATH(zorvan::move(list, {2}, 0), "outside the list");
    EXPECT_DEATH(zorvan::remove(list, {0, 2}), "outside the list");
    EXPECT_DEATH(at(list, {2}), "outside the list");
    EXPECT_DEATH(chunked(list, 0),
                 "^A list is cut into pieces of at least 1 element, not of 0.\n$");
}

TEST(Array, CutsAndKeepsEnds) {
    std::vector<int> list{1, 2, 3, 2};
    EXPECT_EQ(removeFirst(list, [](int i) { return i == 2; }), 2);
    EXPECT_EQ(list, (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(removeFirst(list, [](int i) { return i == 9; }), std::nullopt);
    EXPECT_EQ(keepingLast(std::vector{1, 2, 3, 4}, 2), (std::vector<int>{3, 4}));
    EXPECT_EQ(keepingLast(std::vector{1}, 2), (std::vector<int>{1}));
    EXPECT_EQ(keepingLast(std::vector{1}, -1), std::vector<int>{});
    EXPECT_EQ(removingFirst(std::vector{1, 2}, 5), std::vector<int>{});
    EXPECT_EQ(removingFirst(std::vector{1, 2}, -5), (std::vector<int>{1, 2}));
    EXPECT_EQ(chunked(std::vector{1, 2, 3, 4, 5}, 2),
              (std::vector<std::vector<int>>{{1, 2}, {3, 4}, {5}}));
    const auto [first, second] = split(std::vector{1, 2, 3});
    EXPECT_EQ(first, std::vector<int>{1});
    EXPECT_EQ(second, (std::vector<int>{2, 3}));
    EXPECT_EQ(safe(list, 0), 1);
    EXPECT_EQ(safe(list, -1), std::nullopt);
    EXPECT_EQ(safe(list, 3), std::nullopt);
    EXPECT_EQ(popFirst(list), 1);
    EXPECT_FALSE(moveUp(list, 0));
    EXPECT_FALSE(moveDown(list, 1));
    EXPECT_TRUE(moveDown(list, 0));
    EXPECT_EQ(list, (std::vector<int>{3, 2}));
    EXPECT_EQ(flat(std::vector<std::vector<int>>{{1}, {}, {2, 3}}), (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(compacted<int>(1, std::nullopt, std::optional(3)), (std::vector<int>{1, 3}));
    EXPECT_TRUE(compacted<int>().empty());
}

TEST(Array, HoldsTruthValues) {
    std::vector<bool> list{true, false};
    EXPECT_TRUE(moveDown(list, 0));
    EXPECT_TRUE(!*detail::addressAt(list, 0) && *detail::addressAt(list, 1));
    EXPECT_EQ(chunked(list, 2), std::vector<std::vector<bool>>{list});
    EXPECT_EQ(popFirst(list), false);
}

TEST(Array, DrawsDistinctSamples) {
    EXPECT_TRUE(distinctSamples(std::vector{1, 2, 3}, 0).empty());
    EXPECT_TRUE(distinctSamples(std::vector<int>(), 5).empty());
    // However many are asked for, it ends once all hundred have been drawn.
    EXPECT_EQ(distinctSamples(std::vector{7}, std::numeric_limits<std::int64_t>::max()),
              std::vector{7});
    std::vector<int> list(250);
    std::iota(list.begin(), list.end(), 0);
    for (int round = 0; round < 50; ++round) {
        const std::vector<int> drawn = distinctSamples(list, 1000);
        EXPECT_LE(drawn.size(), 100u);
        EXPECT_GT(drawn.size(), 50u);
        EXPECT_EQ(std::set<int>(drawn.begin(), drawn.end()).size(), drawn.size());
    }
}
