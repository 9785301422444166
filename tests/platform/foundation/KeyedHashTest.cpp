#include <tests/Testing.h>

#include <zorvan/platform/foundation/internal/KeyedHash.h>

TEST(KeyedHash, IsAnotherInEachProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto hash = [] { return std::to_string(internal::KeyedHash()("a key of settings")); };
    EXPECT_EQ(hash(), hash());
    EXPECT_EXIT(
        (std::fputs(hash().c_str(), stderr), std::_Exit(0)), testing::ExitedWithCode(0),
        testing::AllOf(testing::ContainsRegex("[0-9]+"), testing::Not(testing::HasSubstr(hash()))));
}
