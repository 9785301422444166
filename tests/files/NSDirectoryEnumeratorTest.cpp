#include "ChildProcess.h"
#include "TemporaryFolder.h"
#include <tests/Testing.h>

#include <zorvan/files/NSDirectoryEnumerator.h>

#include <sys/resource.h>

using Options = NSDirectoryEnumerationOptions;
using testing::UnorderedElementsAreArray;

namespace {

std::vector<std::string> all(
    const TemporaryFolder& folder, const std::function<void()>& atEach = [] {}) {
    std::vector<URL> urls;
    const auto enumerator = NSDirectoryEnumerator::create(folder.url(), Options::none);
    while (auto url = enumerator->nextObject()) {
        urls.push_back(*url);
        atEach();
    }
    return folder.relative(urls);
}

} // namespace

TEST(NSDirectoryEnumerator, SkipsDescendantsWhenTold) {
    TemporaryFolder folder;
    folder.make({"a/b/c", "a/b/d"});
    const auto enumerator = NSDirectoryEnumerator::create(folder.url(), Options::none);
    EXPECT_EQ(enumerator->level(), 0u);
    EXPECT_EQ(enumerator->nextObject(), folder.url("a"));
    EXPECT_EQ(enumerator->nextObject(), folder.url("a/b"));
    EXPECT_EQ(enumerator->level(), 2u);
    enumerator->skipDescendants();
    EXPECT_FALSE(enumerator->nextObject());
}

TEST(NSDirectoryEnumerator, OpensOnlyDirectories) {
    TemporaryFolder folder;
    folder.make({"file", "real/", "link -> real", "real/up -> .."});
    for (const char* name : {"file", "link", "missing"})
        EXPECT_FALSE(NSDirectoryEnumerator::create(folder.url(name), Options::none)) << name;
    EXPECT_FALSE(NSDirectoryEnumerator::create(*URL::make({.string = "x:/"}), Options::none));
    EXPECT_THAT(all(folder), UnorderedElementsAre("file", "link", "real", "real/up"));
}

TEST(NSDirectoryEnumerator, PassesOverWhatVanishesOrBecomesALink) {
    for (const bool becomesALink : {false, true}) {
        TemporaryFolder folder;
        folder.make({"top/a/b", "c"});
        const auto enumerator = NSDirectoryEnumerator::create(folder.url("top"), Options::none);
        EXPECT_EQ(enumerator->nextObject(), folder.url("top/a"));
        fs::remove_all(folder.path() / "top/a");
        if (becomesALink)
            folder.link("top/a", "..");
        EXPECT_FALSE(enumerator->nextObject()) << becomesALink;
    }
}

TEST(NSDirectoryEnumerator, FindsItsWayWithFewDescriptors) {
    // More levels than are kept open, with siblings left to visit at each.
    TemporaryFolder folder(TemporaryFolder::fastParent());
    std::string name;
    std::set<std::string> expected;
    for (int level = 0; level < 100; ++level) {
        for (const char* sibling : {"s0", "s1", "s2"}) {
            folder.folder(name + sibling + "/leaf");
            expected.insert({name + sibling, name + sibling + "/leaf"});
        }
        name += "s1/";
    }
    const std::ptrdiff_t before = openDescriptors();
    std::ptrdiff_t most = 0;
    EXPECT_THAT(all(folder, [&most] { most = std::max(most, openDescriptors()); }),
                UnorderedElementsAreArray(expected));
    EXPECT_LT(most, before + 64);
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    const rlimit tight{rlim_t(before) + 4, limit.rlim_max};
    setrlimit(RLIMIT_NOFILE, &tight);
    const auto names = all(folder);
    setrlimit(RLIMIT_NOFILE, &limit);
    EXPECT_THAT(names, UnorderedElementsAreArray(expected));
    EXPECT_EQ(openDescriptors(), before);
}

TEST(NSDirectoryEnumerator, SurvivesATreeThatMovesMeanwhile) {
    // Deep enough for the upper levels to have given up their descriptors. Some of the others come
    // after the chain, whatever the order.
    TemporaryFolder folder(TemporaryFolder::fastParent());
    std::string chain = "top";
    for (int level = 0; level < 50; ++level)
        chain += "/d";
    for (int i = 0; i < 20; ++i) {
        if (i == 10)
            folder.file(chain + "/last");
        folder.file("top/z" + std::to_string(i) + "/x");
    }
    folder.folder("elsewhere");
    const auto enumerator = NSDirectoryEnumerator::create(folder.url("top"), Options::none);
    int others = 0;
    while (const auto url = enumerator->nextObject()) {
        others += url->lastPathComponent() == "x";
        if (url->lastPathComponent() == "last")
            fs::rename(folder.path() / "top/d/d/d", folder.path() / "elsewhere/d");
    }
    EXPECT_EQ(others, 20);
    EXPECT_TRUE(fs::exists(folder.path() / "elsewhere/d"));
}
