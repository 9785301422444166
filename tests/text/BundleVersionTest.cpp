#include <tests/Testing.h>

#include <zorvan/text/BundleVersion.h>

static_assert(BundleVersion(1, 10, 0) > BundleVersion(1, 9, 9));
static_assert(BundleVersion::zero < BundleVersion(0, 0, 1));
static_assert(BundleVersion(-1, 5, 5) < BundleVersion::zero);
static_assert(BundleVersion::first == BundleVersion(1, 0, 0));

TEST(BundleVersion, ParsesAnything) {
    // Only ASCII digits count, and one sign. A line break and U+200B are no space to trim.
    const struct {
        std::string_view text;
        BundleVersion version;
    } table[] = {
        {"2.5", {2, 5, 0}},        {" 3.1.4 ", {3, 1, 4}},  {"3.1.4.9", {3, 1, 4}},
        {"1.x.2", {1, 0, 2}},      {"", {0, 0, 0}},         {"7", {7, 0, 0}},
        {"+1.-2.3", {1, -2, 3}},   {"1..3", {1, 0, 3}},     {"1.2.3\n", {1, 2, 0}},
        {"1. 2.3", {1, 0, 3}},     {"+.-.+-1", {0, 0, 0}},  {"--1.++2.3", {0, 0, 3}},
        {"1e3.1_0.7", {0, 0, 7}},  {"\u0661.2", {0, 2, 0}}, {"\u200B1.2", {0, 2, 0}},
        {"\t 4\u00A0", {4, 0, 0}},
    };
    for (const auto& [text, version] : table) {
        EXPECT_EQ(BundleVersion::make({.rawValue = text}), version) << text;
        EXPECT_EQ(BundleVersion::make(version.rawValue()), version) << text;
    }
    EXPECT_EQ(BundleVersion::make("9223372036854775807.-9223372036854775808.9223372036854775808"),
              BundleVersion(INT64_MAX, INT64_MIN, 0));
    EXPECT_EQ(BundleVersion(INT64_MIN, 1, 0).description(), "-9223372036854775808.1.0");
}

TEST(BundleVersion, IsReplacedAsAWhole) {
    BundleVersion version = BundleVersion::zero;
    EXPECT_EQ(version = BundleVersion(1, 2, 3), BundleVersion(1, 2, 3));
    const BundleVersion& itself = version;
    EXPECT_EQ(version = itself, BundleVersion(1, 2, 3));
}

TEST(BundleVersion, HashesItsPartsAndKnowsTheMainBundle) {
    std::vector<std::int64_t> fed;
    BundleVersion(4, 5, 6).hash([&](std::int64_t component) { fed.push_back(component); });
    EXPECT_EQ(fed, (std::vector<std::int64_t>{4, 5, 6}));
    const std::unordered_set<BundleVersion> set{{1, 2, 3}, {3, 2, 1}, {1, 2, 3}};
    EXPECT_EQ(set.size(), 2u);
    // What version-test.plist says.
    EXPECT_TRUE(BundleVersion(3, 1, 0).isCurrent());
    EXPECT_FALSE(BundleVersion(3, 1, 1).isCurrent());
}
