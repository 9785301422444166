// Databases that were made once, and that every later version must read.

#include "Golden.h"
#include "Store.h"

namespace {

class GoldenDatabase : public Store, public testing::WithParamInterface<int> {};

INSTANTIATE_TEST_SUITE_P(Each, GoldenDatabase, testing::Range(1, Golden::count + 1));

} // namespace

TEST_P(GoldenDatabase, IsRead) {
    store_.reset();
    std::filesystem::copy_file(GOLDEN "/golden-" + std::to_string(GetParam()) + ".settings",
                               folder_.path() / "zorvan/suite.settings",
                               std::filesystem::copy_options::overwrite_existing);
    reopen();
    const Golden golden(GetParam());
    for (const auto& [name, check] : golden.checks)
        EXPECT_TRUE(check(store())) << name;
    EXPECT_EQ(store().dictionaryRepresentation().size(), golden.checks.size());
    // And it takes what is new.
    const std::string name = golden.checks.begin()->first;
    store().setInteger(5, name);
    reopen();
    EXPECT_EQ(store().integerForKey(name), 5);
}
