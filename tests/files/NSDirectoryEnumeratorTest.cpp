#include "ChildProcess.h"
#include "TemporaryFolder.h"
#include <tests/Testing.h>

#include <zorvan/files/NSDirectoryEnumerator.h>
#include <zorvan/platform/foundation/internal/removeItem.h>

#include <dirent.h>
#include <sys/resource.h>

using Options = NSDirectoryEnumerationOptions;
using testing::UnorderedElementsAreArray;

namespace {

std::vector<std::string> all(const TemporaryFolder& folder, Options options = Options::none) {
    std::vector<URL> urls;
    const auto enumerator = NSDirectoryEnumerator::create(folder.url(), options);
    while (auto url = enumerator->nextObject())
        urls.push_back(*url);
    return folder.relative(urls);
}

std::size_t openDescriptors() {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator("/proc/self/fd"), {}));
}

/// A chain of directories "d/d/d…", deeper than any path may be long, with an empty "e" beside
/// each.
void makeChain(const std::string& top, int depth) {
    int current = open(top.c_str(), O_RDONLY | O_DIRECTORY);
    for (int i = 0; i < depth; ++i) {
        ASSERT_EQ(mkdirat(current, "d", 0700), 0);
        ASSERT_EQ(mkdirat(current, "e", 0700), 0);
        const int next = openat(current, "d", O_RDONLY | O_DIRECTORY);
        close(current);
        current = next;
    }
    close(current);
}

} // namespace

TEST(NSDirectoryEnumerator, ObeysEachSumOfOptions) {
    TemporaryFolder folder;
    folder.file(".h/x");
    folder.file("p.app/x");
    folder.file("s/x");
    const std::set<std::string> everything{".h", ".h/x", "p.app", "p.app/x", "s", "s/x"};
    for (unsigned bits = 0; bits < 8; ++bits) {
        std::set<std::string> expected = everything;
        if (bits & 1)
            std::erase_if(expected, [](const auto& name) { return name.find('/') != name.npos; });
        if (bits & 2)
            expected.erase("p.app/x");
        if (bits & 4)
            std::erase_if(expected, [](const auto& name) { return name[0] == '.'; });
        const auto names = all(folder, static_cast<Options>(bits));
        EXPECT_THAT(names, UnorderedElementsAreArray(expected)) << bits;
    }
}

TEST(NSDirectoryEnumerator, SkipsDescendantsWhenTold) {
    TemporaryFolder folder;
    folder.file("a/b/c");
    folder.file("a/b/d");
    const auto enumerator = NSDirectoryEnumerator::create(folder.url(), Options::none);
    EXPECT_EQ(enumerator->level(), 0u);
    EXPECT_EQ(enumerator->nextObject(), folder.url("a"));
    EXPECT_EQ(enumerator->level(), 1u);
    EXPECT_EQ(enumerator->nextObject(), folder.url("a/b"));
    EXPECT_EQ(enumerator->level(), 2u);
    enumerator->skipDescendants();
    EXPECT_FALSE(enumerator->nextObject());
    EXPECT_FALSE(enumerator->nextObject());
}

TEST(NSDirectoryEnumerator, OpensOnlyDirectories) {
    TemporaryFolder folder;
    folder.file("file");
    folder.folder("real");
    folder.link("link", "real");
    for (const char* name : {"file", "link", "missing"})
        EXPECT_FALSE(NSDirectoryEnumerator::create(folder.url(name), Options::none)) << name;
    EXPECT_FALSE(NSDirectoryEnumerator::create(*URL::make({.string = "x:/"}), Options::none));
    folder.link("real/up", "..");
    EXPECT_THAT(all(folder), UnorderedElementsAre("file", "link", "real", "real/up"));
}

TEST(NSDirectoryEnumerator, PassesOverWhatItMayNotRead) {
    asOrdinaryUser([] {
        TemporaryFolder folder;
        folder.file("closed/x");
        folder.file("open/x");
        folder.setMode("closed", 0);
        EXPECT_THAT(all(folder), UnorderedElementsAre("closed", "open", "open/x"));
    });
}

TEST(NSDirectoryEnumerator, PassesOverWhatVanishesOrBecomesALink) {
    for (const bool becomesALink : {false, true}) {
        TemporaryFolder folder;
        folder.file("top/a/b");
        folder.file("c");
        const auto enumerator = NSDirectoryEnumerator::create(folder.url("top"), Options::none);
        EXPECT_EQ(enumerator->nextObject(), folder.url("top/a"));
        fs::remove_all(folder.path() / "top/a");
        if (becomesALink)
            folder.link("top/a", "..");
        EXPECT_FALSE(enumerator->nextObject()) << becomesALink;
    }
}

TEST(NSDirectoryEnumerator, VisitsTenThousandLevels) {
    constexpr int depth = 10000;
    TemporaryFolder folder(TemporaryFolder::fastParent());
    makeChain(folder.path(), depth);
    const std::size_t before = openDescriptors();
    std::size_t most = 0;
    std::size_t count = 0;
    {
        const auto enumerator = NSDirectoryEnumerator::create(folder.url(), Options::none);
        while (const auto url = enumerator->nextObject()) {
            if (++count % 1000 == 0)
                most = std::max(most, openDescriptors());
            ASSERT_EQ(url->path().size(), folder.path().string().size() + 2 * enumerator->level());
        }
    }
    EXPECT_EQ(count, 2u * depth);
    EXPECT_LT(most, before + 64);
    EXPECT_EQ(openDescriptors(), before);
    internal::removeItem(folder.path() / "d"); // which the standard library cannot
}

TEST(NSDirectoryEnumerator, FindsItsWayWithFewDescriptors) {
    // More levels than are kept open, with siblings left to visit at each.
    TemporaryFolder folder;
    std::string name;
    std::set<std::string> expected;
    for (int level = 0; level < 60; ++level) {
        for (int sibling = 0; sibling < 3; ++sibling) {
            const std::string inner = name + "s" + std::to_string(sibling);
            folder.folder(inner + "/leaf");
            expected.insert({inner, inner + "/leaf"});
        }
        name += "s1/";
    }
    const std::size_t before = openDescriptors();
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    for (const std::size_t spare : {std::size_t{4}, std::size_t{200}}) {
        rlimit tight = limit;
        tight.rlim_cur = before + spare;
        setrlimit(RLIMIT_NOFILE, &tight);
        const auto names = all(folder);
        setrlimit(RLIMIT_NOFILE, &limit);
        EXPECT_THAT(names, UnorderedElementsAreArray(expected)) << spare;
    }
}

TEST(NSDirectoryEnumerator, SurvivesATreeThatMovesMeanwhile) {
    // Deep enough for the upper levels to have given up their descriptors.
    TemporaryFolder folder;
    std::string chain = "top";
    for (int level = 0; level < 50; ++level)
        chain += "/d";
    folder.file(chain + "/last");
    folder.file("top/z1/x");
    folder.file("top/z2/x");
    folder.folder("elsewhere");
    const auto enumerator = NSDirectoryEnumerator::create(folder.url("top"), Options::none);
    std::set<std::string> names;
    while (const auto url = enumerator->nextObject()) {
        names.insert(folder.relative(*url));
        if (url->lastPathComponent() == "last")
            fs::rename(folder.path() / "top/d/d/d", folder.path() / "elsewhere/d");
    }
    for (const std::string& expected :
         {std::string("top/z1/x"), std::string("top/z2/x"), chain + "/last"})
        EXPECT_TRUE(names.contains(expected)) << expected;
}

TEST(NSDirectoryEnumerator, AgreesWithTheStandardWalkOnRandomTrees) {
    std::mt19937 random(11);
    for (int round = 0; round < 10; ++round) {
        TemporaryFolder folder(TemporaryFolder::fastParent());
        std::vector<std::string> folders{""};
        for (int i = 0; i < 300; ++i) {
            const std::string parent = folders[random() % folders.size()];
            const std::string name = parent + "n" + std::to_string(i);
            if (random() % 2) {
                folder.file(name);
            } else {
                folder.folder(name);
                folders.push_back(name + "/");
            }
        }
        std::set<std::string> expected;
        for (const auto& entry : fs::recursive_directory_iterator(folder.path()))
            expected.insert(fs::relative(entry.path(), folder.path()));
        EXPECT_THAT(all(folder), UnorderedElementsAreArray(expected));
    }
}
