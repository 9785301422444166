#include "ChildProcess.h"
#include "TemporaryFolder.h"
#include <tests/Testing.h>

#include <zorvan/files/NSFileManager.h>

namespace {
const NSFileManager& manager() { return *NSFileManager::defaultManager(); }
} // namespace

TEST(AvailableNames, NumbersTakenNamesFromZero) {
    TemporaryFolder folder;
    folder.make({"Photos/", "gone.txt -> nowhere"});
    const std::pair<const char*, const char*> table[] = {
        {"a.txt", "a.txt"},       {"a.txt", "a (0).txt"},       {"a.txt", "a (1).txt"},
        {".git", ".git"},         {".git", ".git (0)"},         {"Photos", "Photos (0)"},
        {"b.tar.gz", "b.tar.gz"}, {"b.tar.gz", "b.tar (0).gz"}, {"gone.txt", "gone (0).txt"},
    };
    for (const auto& [wanted, available] : table) {
        const URL url = manager().availableItemURL(wanted, folder.url());
        EXPECT_EQ(folder.relative(url), available);
        EXPECT_EQ(manager().availableItemURL(folder.url(wanted)), url);
        folder.file(folder.relative(url));
    }
    EXPECT_EQ(manager().availableItemURL(URL::root()).path(), "/ (0)");
}

TEST(AvailableNames, AreTakenInTheSameStep) {
    TemporaryFolder folder;
    const TemporaryFolder far(TemporaryFolder::fastParent());
    folder.make({"a.txt", "a (0).txt -> nowhere"});
    far.file("item/inner", "moved");
    const Data contents(3, std::byte{'c'});
    EXPECT_EQ(manager().createAvailableFile(folder.url("a.txt"), contents),
              folder.url("a (1).txt"));
    EXPECT_EQ(manager().createAvailableDirectory(folder.url("a.txt")), folder.url("a (2).txt"));
    EXPECT_EQ(manager().moveItemToAvailableURL(far.url("item"), folder.url("a.txt")),
              folder.url("a (3).txt"));
    EXPECT_TRUE(fs::is_empty(far.path()));
    EXPECT_EQ(text(folder.path() / "a (1).txt"), "ccc");
    EXPECT_TRUE(fs::is_directory(folder.path() / "a (2).txt"));
    EXPECT_EQ(text(folder.path() / "a (3).txt/inner"), "moved");
    EXPECT_EQ(folder.count(), 5);

    const URL taken = folder.url("a.txt");
    for (const URL& url : {folder.url("missing/x"), *URL::make({.string = "http://a.org/x"})}) {
        EXPECT_THROW(manager().createAvailableFile(url), fs::filesystem_error);
        EXPECT_THROW(manager().createAvailableDirectory(url), fs::filesystem_error);
        EXPECT_THROW(manager().moveItemToAvailableURL(taken, url), fs::filesystem_error);
        EXPECT_THROW(manager().moveItemToAvailableURL(url, taken), fs::filesystem_error);
    }
    EXPECT_EQ(text(folder.path() / "a.txt"), "x");
}

// Each process puts its mark in what it created; a mark that is missing was overwritten.
TEST(AvailableNames, AreNeverTakenTwiceByTwoProcesses) {
    constexpr int rounds = 150;
    TemporaryFolder folder;
    folder.folder("out");
    const auto work = [&](const std::string& who) {
        for (int i = 0; i < rounds; ++i) {
            const std::string mark = who + std::to_string(i);
            const URL file = manager().createAvailableFile(folder.url("out/x.txt"));
            std::ofstream(file.path(), std::ios::app) << mark << " file\n";
            const URL directory = manager().createAvailableDirectory(folder.url("out/x.txt"));
            std::ofstream(directory.path() + "/mark", std::ios::app) << mark << " folder\n";
            folder.file(mark, mark + " moved\n");
            manager().moveItemToAvailableURL(folder.url(mark), folder.url("out/x.txt"));
        }
    };
    const pid_t children[] = {startChild([&] { work("a"); }), startChild([&] { work("b"); })};
    for (const pid_t child : children)
        EXPECT_EQ(exitStatus(child), 0);

    std::set<std::string> marks;
    for (const auto& entry : fs::recursive_directory_iterator(folder.path() / "out"))
        if (entry.is_regular_file()) {
            EXPECT_TRUE(marks.insert(text(entry.path())).second);
        }
    EXPECT_EQ(marks.size(), std::size_t{2 * 3 * rounds});
    for (const std::string& mark : marks)
        EXPECT_EQ(std::count(mark.begin(), mark.end(), '\n'), 1) << mark;
}
