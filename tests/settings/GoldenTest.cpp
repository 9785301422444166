// Databases that were made once: every later version must read them, and store in the same way.

#include "Golden.h"
#include "Store.h"

#include <zorvan/platform/settingsdatabase/internal/SettingsMemory.h>

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
    EXPECT_EQ(store().dictionaryRepresentation().size(), golden.checks.size());
    for (const auto& [name, check] : golden.checks) {
        SCOPED_TRACE(name);
        EXPECT_TRUE(check(store()));
        const auto form = store().sharedObjectForKey(name);
        golden.erasers.at(name)(store());
        EXPECT_EQ(store().hasObjectForKey(name), name.starts_with("CMTime")); // which leave it
        store().removeObjectForKey(name);
        golden.writers.at(name)(store());
        if (name != "PersistentURL") { // of a file that is another one here
            EXPECT_TRUE(internal::isIdentical(*store().sharedObjectForKey(name), *form));
        }
    }
    EXPECT_TRUE(store().synchronize());
}
