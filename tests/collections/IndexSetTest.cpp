#include <tests/Testing.h>

#include <zorvan/collections/IndexSet.h>

using Range = IndexSet::Range;

namespace {

/// What must hold of every set, whatever was done to it.
void expectSound(const IndexSet& set) {
    std::int64_t count = 0, previousUpper = -1;
    for (const Range range : set.ranges()) {
        ASSERT_LT(range.lower, range.upper);
        ASSERT_GT(range.lower, previousUpper) << "ranges touch or overlap";
        previousUpper = range.upper;
        count += range.count();
    }
    ASSERT_EQ(set.count(), count);
}

void expectSame(const IndexSet& set, const std::set<std::int64_t>& model) {
    expectSound(set);
    ASSERT_TRUE(std::equal(set.begin(), set.end(), model.begin(), model.end()));
}

} // namespace

TEST(IndexSet, IsBuiltFromItsLabels) {
    EXPECT_EQ(IndexSet({.i1 = 5, .i2 = 2}), IndexSet({2, 3, 4, 5}));
    EXPECT_EQ(IndexSet({.loc = 2, .len = 3}), IndexSet({2, 3, 4}));
    EXPECT_EQ(IndexSet({.location = 7, .length = 0}), IndexSet());
    EXPECT_EQ(IndexSet({.i1 = 0, .i2 = 1}), IndexSet({0, 1})) << "a literal 0 first";
    const IndexSet unsorted{4, 1, 4, 0}, million(Range{0, 1'000'000});
    EXPECT_EQ(unsorted.description(), "{0...1, 4}");
    EXPECT_EQ(million.ranges().size(), 1u);
}

TEST(IndexSet, HoldsTheLargestPosition) {
    const std::int64_t largest = IndexSet::maximumIndex;
    const IndexSet set{largest, 0};
    EXPECT_TRUE(set.contains(largest));
    EXPECT_FALSE(set.contains(std::numeric_limits<std::int64_t>::max()));
    EXPECT_FALSE(set.contains(std::numeric_limits<std::int64_t>::min()));
    EXPECT_EQ(set.integerGreaterThan(std::numeric_limits<std::int64_t>::max()), std::nullopt);
    EXPECT_EQ(set.integerLessThan(std::numeric_limits<std::int64_t>::min()), std::nullopt);
    EXPECT_EQ(set.integerLessThan(largest), 0);
    EXPECT_EQ(set.union_({5}), IndexSet({0, 5, largest}));
    EXPECT_EQ(set.union_({1, largest - 1}), IndexSet({0, 1, largest - 1, largest}));
    EXPECT_EQ(set.intersection({5, largest}), IndexSet{largest});
    EXPECT_EQ(IndexSet(Range{0, largest + 1}).subtracting(set), IndexSet(Range{1, largest}));
    EXPECT_TRUE(set.intersects(Range{std::numeric_limits<std::int64_t>::min(), largest}));
}

TEST(IndexSet, IsEmptyOnceMovedFrom) {
    IndexSet set{1, 2}, taken = std::move(set);
    set.insert(7);
    EXPECT_EQ(set, IndexSet{7});
    set = std::move(taken);
    expectSame(taken, {});
}

TEST(IndexSetDeathTest, RefusesWhatIsNoPosition) {
    const std::int64_t tooLarge = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(toIndexSet(7), IndexSet({7}));
    EXPECT_DEATH(IndexSet({-1}), "^An index set holds no negative positions, such as -1.\n$");
    EXPECT_DEATH(IndexSet({tooLarge}),
                 "^An index set holds no position above 9223372036854775806, such as "
                 "9223372036854775807.\n$");
    EXPECT_DEATH(
        IndexSet({.loc = 1, .len = -1}),
        "^A range of an index set has 0 to 9223372036854775806 members from 1 on, not -1.\n$");
    EXPECT_DEATH(IndexSet(Range{3, 1}),
                 "^A range of an index set ends at 1, before it begins at 3.\n$");
    EXPECT_DEATH(IndexSet({.loc = tooLarge, .len = 1}), "0 to 0 members");
    EXPECT_DEATH(IndexSet({tooLarge - 1}).shift(0, 1), "no position above 9223372036854775805");
    EXPECT_DEATH(IndexSet({1}).shift(-1, 1), "negative");
}

TEST(IndexSet, ShiftsAsAListDoes) {
    constexpr auto farBack = std::numeric_limits<std::int64_t>::min();
    struct {
        IndexSet before;
        std::int64_t index, delta;
        IndexSet after;
    } table[] = {
        {{0, 1, 2, 5}, 1, 2, {0, 3, 4, 7}},
        {{0, 1, 2, 5}, 2, -1, {0, 1, 4}},
        {{3, 4, 6}, 0, -4, {0, 2}},
        {{3, 4}, 2, farBack, {}},
        {{3, 4}, 9, 5, {3, 4}},
        {{3, 4}, 5, IndexSet::maximumIndex, {3, 4}}, // nothing is pushed too far
        {{3, 4, 8}, 9, -2, {3, 4}},                  // nothing follows
        {{0, 1, 5}, 0, 0, {0, 1, 5}},
    };
    for (auto& row : table) {
        IndexSet shifted = row.before;
        shifted.shift(row.index, row.delta);
        EXPECT_EQ(shifted, row.after) << row.index << " by " << row.delta;
        expectSound(shifted);
    }
}

TEST(IndexSet, AgreesWithAPlainSetUnderRandomOperations) {
    std::mt19937 random(7);
    const auto draw = [&random](std::int64_t below) {
        return std::uniform_int_distribution<std::int64_t>(0, below - 1)(random);
    };
    for (int round = 0; round < 300; ++round) {
        IndexSet set, other;
        std::set<std::int64_t> model, otherModel;
        const std::int64_t width = 1 + draw(60);
        for (int step = 0; step < 40; ++step) {
            const std::int64_t lower = draw(width);
            const Range range{lower, lower + draw(6)};
            const bool adds = draw(3) > 0, toOther = draw(2) == 0;
            IndexSet& target = toOther ? other : set;
            std::set<std::int64_t>& targetModel = toOther ? otherModel : model;
            adds ? target.insert(range) : target.remove(range);
            for (std::int64_t i = range.lower; i < range.upper; ++i)
                adds ? void(targetModel.insert(i)) : void(targetModel.erase(i));
            expectSame(target, targetModel);
        }

        std::set<std::int64_t> both, only, either, one;
        for (std::int64_t i = 0; i < width + 6; ++i) {
            const bool a = model.contains(i), b = otherModel.contains(i);
            for (const auto& [holds, members] :
                 {std::pair(a && b, &both), {a && !b, &only}, {a || b, &either}, {a != b, &one}})
                if (holds)
                    members->insert(i);
            ASSERT_EQ(set.contains(i), a);
            const auto above = model.upper_bound(i), notBelow = model.lower_bound(i);
            ASSERT_EQ(set.integerGreaterThan(i).value_or(-1), above == model.end() ? -1 : *above);
            ASSERT_EQ(set.integerLessThan(i).value_or(-1),
                      notBelow == model.begin() ? -1 : *std::prev(notBelow));
            ASSERT_EQ(set.integerGreaterThanOrEqualTo(i).value_or(-1),
                      notBelow == model.end() ? -1 : *notBelow);
            ASSERT_EQ(set.integerLessThanOrEqualTo(i).value_or(-1),
                      above == model.begin() ? -1 : *std::prev(above));
            const std::int64_t upper = i + draw(8);
            ASSERT_EQ(set.count(Range{i, upper}),
                      std::distance(notBelow, model.lower_bound(upper)));
            ASSERT_EQ(set.intersects(Range{i, upper}), set.count(Range{i, upper}) > 0);
            ASSERT_EQ(set.contains(Range{i, upper}), set.count(Range{i, upper}) == upper - i);
        }
        using Forming = void (IndexSet::*)(const IndexSet&);
        for (const auto& [form, members] :
             std::initializer_list<std::pair<Forming, const std::set<std::int64_t>*>>{
                 {&IndexSet::formIntersection, &both},
                 {&IndexSet::subtract, &only},
                 {&IndexSet::formUnion, &either},
                 {&IndexSet::formSymmetricDifference, &one}}) {
            IndexSet formed = set;
            (formed.*form)(other);
            expectSame(formed, *members);
        }
        // The members make room, so that what came can go again.
        ASSERT_FALSE(set.afterInserting(other).intersects(other));
        ASSERT_EQ(set.afterInserting(other).afterRemoving(other), set);
        ASSERT_EQ(set.intersects(other), !both.empty());
        ASSERT_EQ(set.contains(other), both.size() == otherModel.size());
    }
}

TEST(IndexSet, TogglesAndMapsToPaths) {
    IndexSet set{1, 2};
    set.toggle(2);
    set.toggle(7);
    EXPECT_EQ(set, IndexSet({1, 7}));
    EXPECT_EQ(set.toggling(1).singleIndex(), 7);
    EXPECT_EQ(set.inserting(1).removing(7), IndexSet{1});
    EXPECT_FALSE(set.isSingle());
    EXPECT_EQ(set.mapToIndexPaths(),
              (std::set<IndexPath>{{.item = 1, .section = 0}, {.item = 7, .section = 0}}));
    const std::unordered_set<IndexSet> sets{set, set.toggling(1).toggling(1), {}};
    EXPECT_EQ(sets.size(), 2u);
}
