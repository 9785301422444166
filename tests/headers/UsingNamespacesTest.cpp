#include <zorvan/zorvan.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

// Two ways of using names that applications have: ours alone, and ours beside the standard ones.

namespace ours {

using namespace zorvan;

TEST(UsingNamespaces, LeavesPlainCallsToTheCLibrary) {
    const std::int64_t two = 2;
    EXPECT_EQ(pow(two, -1), 0.5);
    EXPECT_EQ(zorvan::pow(2, -1), 0);
    EXPECT_EQ(abs(-2.5) + round(2.45, 1), 5);
    EXPECT_EQ(&max(two, two), &two); // a reference, as from the standard one
    set(NSColor::red);               // on no context
}

} // namespace ours

namespace both {

using namespace std;
using namespace zorvan;

TEST(UsingNamespaces, LeavesTheStandardNamesUsable) {
    string text = "b";
    const string moved = move(text);
    vector<int> numbers{3, 1, 2};
    const int64_t one = 1, two = 2;
    EXPECT_EQ(max(one, two) + min(one, two), 3);
    EXPECT_EQ(max<int64_t>(one, 5) + min({4, 2, 3}), 7);
    EXPECT_EQ(clamp(two, one, one) + clamp<int64_t>(7, 1, 3), 4);
    EXPECT_EQ(clamp(2.5, 0.0, 1.0) + pow(2, -1) + pow(one, two), 2.5);
    EXPECT_EQ(abs(-3) + abs(-one), 4);
    EXPECT_EQ(floor(1.5) + ceil(0.5f) + round(1.5) + sqrt(4.0), 6);
    EXPECT_EQ(count(numbers.begin(), numbers.end(), 1), 1);
    EXPECT_EQ(size(numbers) + moved.size(), 4U);
    fill(numbers.begin(), remove(numbers.begin(), numbers.end(), 1), 5);
    EXPECT_EQ(numbers.front(), 5);
    const set<int> ordered{2, 1, 2};
    EXPECT_EQ(ordered.size(), 2U);
}

} // namespace both
