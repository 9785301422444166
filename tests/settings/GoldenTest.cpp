// A database that was made once, and that every later version must read.

#include "Golden.h"
#include "Store.h"

using namespace zorvan;

namespace {

class GoldenDatabase : public Store {};

} // namespace

TEST_F(GoldenDatabase, isRead) {
    store_.reset();
    std::filesystem::copy_file(GOLDEN, folder_.path() / "zorvan/suite.settings",
                               std::filesystem::copy_options::overwrite_existing);
    reopen();
    const Golden golden;
    for (const auto& [name, check] : golden.checks)
        EXPECT_TRUE(check(store())) << name;
    EXPECT_EQ(store().dictionaryRepresentation().size(), golden.checks.size());
    // And it takes what is new.
    store().setInteger(5, "Int");
    reopen();
    EXPECT_EQ(store().integerForKey("Int"), 5);
}
