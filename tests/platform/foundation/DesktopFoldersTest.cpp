#include <zorvan/platform/foundation/internal/desktopFolders.h>

#include <tests/Variable.h>
#include <zorvan/platform/foundation/NSHomeDirectory.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zorvan::internal {
namespace {

using testing::ElementsAre;

TEST(DesktopFolders, StandBelowTheHomeFolderUnlessTheEnvironmentNamesAbsoluteOnes) {
    const Variable home("HOME", "/home/me");
    struct Case {
        const char* own;
        const char* shared;
        std::vector<std::filesystem::path> expected;
    };
    for (const Case& c : {
             Case{nullptr, nullptr, {"/home/me/.local/share", "/usr/local/share", "/usr/share"}},
             Case{"", "", {"/home/me/.local/share", "/usr/local/share", "/usr/share"}},
             Case{"/data", "/a::b:/c", {"/data", "/a", "/c"}},
             Case{"data", "data", {"/home/me/.local/share"}},
         }) {
        const Variable own("XDG_DATA_HOME", c.own);
        const Variable shared("XDG_DATA_DIRS", c.shared);
        EXPECT_EQ(dataFolders(), c.expected) << (c.own ? c.own : "not set");
        EXPECT_EQ(dataFolder(), c.expected.front().string());
    }
}

TEST(DesktopFolders, KnowTheHomeFolderWithoutTheEnvironment) {
    const Variable home("HOME", "relative");
    const Variable own("XDG_CONFIG_HOME", nullptr);
    const Variable shared("XDG_CONFIG_DIRS", nullptr);
    ASSERT_TRUE(NSHomeDirectory().starts_with('/'));
    EXPECT_EQ(configurationFolder(), NSHomeDirectory() + "/.config");
    EXPECT_THAT(configurationFolders(), ElementsAre(NSHomeDirectory() + "/.config", "/etc/xdg"));
}

} // namespace
} // namespace zorvan::internal
