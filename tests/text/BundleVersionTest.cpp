#include <zorvan/text/BundleVersion.h>

#include <gtest/gtest.h>

#include <limits>
#include <unordered_set>
#include <vector>

using namespace zorvan;

namespace {

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();

BundleVersion parsed(std::string_view text) { return BundleVersion::make(text).value(); }

} // namespace

static_assert(BundleVersion(1, 10, 0) > BundleVersion(1, 9, 9));
static_assert(BundleVersion::first > BundleVersion::zero);

TEST(BundleVersion, parsesAnything) {
    struct {
        const char* text;
        BundleVersion version;
    } table[] = {
        {"2.5", {2, 5, 0}},
        {" 3.1.4 ", {3, 1, 4}},
        {"\t 3.1.4\u3000\u00A0", {3, 1, 4}},
        {"3.1.4.9", {3, 1, 4}},
        {"1.x.2", {1, 0, 2}},
        {"", {0, 0, 0}},
        {"   ", {0, 0, 0}},
        {"0", {0, 0, 0}},
        {"7", {7, 0, 0}},
        {"v1.2.3", {0, 2, 3}},
        {"+1.-2.3", {1, -2, 3}},
        {"1..3", {1, 0, 3}},
        {"...", {0, 0, 0}},
        {"1.2.3\n", {1, 2, 0}}, // a line break is not trimmed
        {"1.2.\v3", {1, 2, 0}},
        {"1. 2.3", {1, 0, 3}},
        {"+.-.+-1", {0, 0, 0}},
        {"--1.++2.0x3", {0, 0, 0}},
        {"1e3.1_0.007", {0, 0, 7}},
        {"\u0661.2", {0, 2, 0}}, // only ASCII digits count
        {"9223372036854775807.-9223372036854775808.9223372036854775808", {largest, smallest, 0}},
        {"-9223372036854775809.99999999999999999999999.1", {0, 0, 1}},
        {"\xFF.2", {0, 2, 0}},
        {"\u200B1.2", {0, 2, 0}}, // not a space separator
    };
    for (const auto& row : table) {
        EXPECT_EQ(parsed(row.text), row.version) << row.text;
        EXPECT_EQ(BundleVersion::make({.rawValue = row.text}), row.version) << row.text;
        EXPECT_EQ(parsed(row.version.rawValue()), row.version) << row.text;
    }
    EXPECT_EQ(parsed(std::string_view("1.2\0.3", 6)), BundleVersion(1, 0, 3));
}

TEST(BundleVersion, printsThreeComponents) {
    EXPECT_EQ(parsed("1").rawValue(), "1.0.0");
    EXPECT_EQ(parsed("+1.-2.3").rawValue(), "1.-2.3");
    EXPECT_EQ(BundleVersion(1, 0, 0).description(), "1.0.0");
    EXPECT_EQ(BundleVersion(smallest, largest, 0).rawValue(),
              "-9223372036854775808.9223372036854775807.0");
}

TEST(BundleVersion, ordersByTheLeftmostDifference) {
    const std::vector<BundleVersion> ladder = {
        {-1, 5, 5}, {0, -1, 0},  {0, 0, -1}, BundleVersion::zero, BundleVersion::first, {1, 9, 9},
        {1, 10, 0}, {1, 99, 99}, {2, 0, 0}};
    for (std::size_t i = 0; i < ladder.size(); ++i)
        for (std::size_t k = 0; k < ladder.size(); ++k) {
            EXPECT_EQ(ladder[i] < ladder[k], i < k);
            EXPECT_EQ(ladder[i] == ladder[k], i == k);
        }
    EXPECT_EQ(parsed("1.2.3.7"), parsed("1.2.3"));
}

TEST(BundleVersion, isAValue) {
    BundleVersion version = BundleVersion::zero;
    version = BundleVersion(4, 5, 6);
    EXPECT_EQ(version, BundleVersion(4, 5, 6));
    std::vector<std::int64_t> fed;
    version.hash([&](std::int64_t component) { fed.push_back(component); });
    EXPECT_EQ(fed, (std::vector<std::int64_t>{4, 5, 6}));
    std::unordered_set<BundleVersion> set{{1, 2, 3}, {3, 2, 1}, {1, 2, 3}};
    EXPECT_EQ(set.size(), 2u);
    EXPECT_TRUE(set.contains({3, 2, 1}));
}

TEST(BundleVersion, knowsTheVersionOfTheProgram) {
    // What version-test.plist says.
    EXPECT_TRUE(BundleVersion(3, 1, 0).isCurrent());
    EXPECT_FALSE(BundleVersion(3, 1, 1).isCurrent());
}
