#include <tests/Testing.h>
#include <tests/Variable.h>

#include <zorvan/platform/foundation/NSHomeDirectory.h>
#include <zorvan/platform/foundation/internal/desktopFolders.h>

using namespace zorvan::internal;

TEST(DesktopFolders, StandBelowTheHomeFolderUnlessTheEnvironmentNamesAbsoluteOnes) {
    const Variable home("HOME", "/home/me");
    const struct {
        const char *own, *shared;
        std::vector<fs::path> expected;
    } table[] = {
        {nullptr, nullptr, {"/home/me/.local/share", "/usr/local/share", "/usr/share"}},
        {"", "", {"/home/me/.local/share", "/usr/local/share", "/usr/share"}},
        {"/data", "/a::b:/c", {"/data", "/a", "/c"}},
        {"data", "data", {"/home/me/.local/share"}},
    };
    for (const auto& [own, shared, expected] : table) {
        const Variable ownFolder("XDG_DATA_HOME", own), sharedFolders("XDG_DATA_DIRS", shared);
        EXPECT_EQ(dataFolders(), expected);
    }
}

TEST(DesktopFolders, KnowTheHomeFolderWithoutTheEnvironment) {
    const Variable home("HOME", "relative"), own("XDG_CONFIG_HOME", nullptr),
        shared("XDG_CONFIG_DIRS", nullptr);
    ASSERT_TRUE(NSHomeDirectory().starts_with('/'));
    EXPECT_THAT(configurationFolders(), ElementsAre(NSHomeDirectory() + "/.config", "/etc/xdg"));
}
