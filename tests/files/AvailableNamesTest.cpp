#include "ChildProcess.h"
#include "TemporaryFolder.h"
#include "TracedProcess.h"
#include <tests/Testing.h>

#include <zorvan/files/FileIterator.h>
#include <zorvan/files/NSFileManager.h>
#include <zorvan/files/NSFileWrapper.h>
#include <zorvan/files/URL.h>

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

    const URL kept({.fileURLWithPath = "/proc/version"}); // which nobody can remove
    try {
        manager().moveItemToAvailableURL(kept, folder.url("version"));
        ADD_FAILURE() << "not told";
    } catch (const fs::filesystem_error& error) {
        EXPECT_EQ(error.path1(), kept.path());
        EXPECT_EQ(error.path2(), folder.url("version").path());
    }
}

TEST(AvailableNames, ANumberedNameThatIsTakenFitsTheFileSystem) {
    const std::string accents = [] {
        std::string text;
        for (int i = 0; i < 125; ++i)
            text += "\u00E9";
        return text;
    }();
    const std::pair<std::string, std::string> table[] = {
        {std::string(255, 'n'), std::string(251, 'n') + " (0)"},
        {std::string(251, 'n') + ".jpg", std::string(247, 'n') + " (0).jpg"},
        {accents + ".jpg", accents.substr(0, 246) + " (0).jpg"},
        {std::string(250, '\xE9') + ".jpg", std::string(247, '\xE9') + " (0).jpg"},
    };
    for (const auto& [name, numbered] : table) {
        TemporaryFolder folder;
        folder.file(name);
        folder.file("moved");
        const URL url = folder.url(name);
        EXPECT_EQ(folder.relative(manager().createAvailableFile(url)), numbered);
        EXPECT_EQ(manager().createAvailableDirectory(url).lastPathComponent().size(),
                  numbered.size());
        EXPECT_EQ(manager().moveItemToAvailableURL(folder.url("moved"), url).pathExtension(),
                  url.pathExtension());
        EXPECT_EQ(folder.count(), 4);
    }
}

// Past the first few, the folder says which numbers are taken; the first free one is found still.
TEST(AvailableNames, AHoleAmongManyIsFilled) {
    TemporaryFolder folder;
    folder.file("a.b");
    for (int i = 0; i < 40; ++i)
        if (i != 25)
            folder.file("a (" + std::to_string(i) + ").b");
    for (const char* other : {"a (25)", "a (25).c", "b (25).b", "a (025).b"})
        folder.file(other);
    for (const char* next : {"a (25).b", "a (40).b"}) {
        EXPECT_EQ(folder.relative(manager().availableItemURL(folder.url("a.b"))), next);
        EXPECT_EQ(folder.relative(manager().createAvailableFile(folder.url("a.b"))), next);
    }
}

TEST(AvailableNames, APathWithANULIsRefusedAndNeverCut) {
    TemporaryFolder folder;
    folder.make({"report.sh", "source"});
    const URL url = folder.url(std::string("report.sh\0.jpg", 14));
    const URL source = folder.url("source");
    EXPECT_FALSE(manager().contentExists(url).exist);
    EXPECT_FALSE(manager().modifyDateForFile(url) || manager().sizeInMoOfItem(url));
    EXPECT_FALSE(isReadable(url) || isWritable(url) || isDeletable(url));
    EXPECT_FALSE(FileIterator::create({url})->next());
    EXPECT_EQ(manager().availableItemURL(url), url);
    const std::function<void()> calls[] = {
        [&] { manager().createAvailableFile(url); },
        [&] { manager().createAvailableDirectory(url); },
        [&] { manager().moveItemToAvailableURL(source, url); },
        [&] { manager().moveItemToAvailableURL(url, source); },
        [&] { manager().overwritingCopy(source, url); },
        [&] { manager().overwritingCopy(url, source); },
        [&] { manager().createDirectory(url); },
        [&] { NSFileWrapper::create({.url = url}); },
    };
    for (const auto& call : calls) {
        try {
            call();
            ADD_FAILURE() << &call - calls;
        } catch (const fs::filesystem_error& error) {
            EXPECT_EQ(error.code(), std::errc::invalid_argument) << error.what();
        }
    }
    EXPECT_EQ(folder.count(), 2);
    EXPECT_EQ(text(folder.path() / "report.sh"), "x");
}

TEST(AvailableNames, TheThousandthTakesFewCalls) {
    const TemporaryFolder folder(TemporaryFolder::fastParent());
    folder.file("a.b");
    for (int i = 0; i < 999; ++i)
        folder.file("a (" + std::to_string(i) + ").b");
    TracedProcess process(200, [] {});
    EXPECT_EQ(process.run([&] { manager().createAvailableFile(folder.url("a.b")); }),
              TracedProcess::End::hadFewerCalls);
    EXPECT_EQ(process.exitStatus(), 0);
    EXPECT_TRUE(fs::exists(folder.path() / "a (999).b"));
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
