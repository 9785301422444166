// The safe copy: what it copies, and what is left when it is stopped.

#include "TemporaryFolder.h"
#include "TracedProcess.h"
#include <tests/Testing.h>
#include <tests/Variable.h>

#include <zorvan/files/NSFileManager.h>
#include <zorvan/files/URL.h>
#include <zorvan/platform/foundation/internal/placeItem.h>

#include <sys/file.h>
#include <sys/resource.h>
#include <sys/xattr.h>

using testing::Pair;

namespace {

const NSFileManager& manager() { return *NSFileManager::defaultManager(); }

/// Every item below a path, by its path from there: what a file or link holds, "/" for a folder.
std::map<std::string, std::string> contents(const fs::path& path) {
    std::map<std::string, std::string> items;
    const auto add = [&](const fs::path& item) {
        const fs::file_status status = fs::symlink_status(item);
        items[item.lexically_relative(path).string()] =
            fs::is_symlink(status)     ? "-> " + fs::read_symlink(item).string()
            : fs::is_directory(status) ? "/"
                                       : text(item);
    };
    add(path);
    if (fs::is_directory(fs::symlink_status(path)))
        for (const auto& entry : fs::recursive_directory_iterator(path))
            add(entry.path());
    return items;
}

/// Something of a kind that tells its name; of no other kind, nothing.
void make(const TemporaryFolder& folder, const std::string& name, std::string_view kind) {
    if (kind == "file")
        folder.file(name, name + " text");
    else if (kind == "link")
        folder.link(name, name + " target");
    else if (kind == "folder")
        folder.file(name + "/sub/" + name, name + " inner");
}

fs::perms mode(const fs::path& path) { return fs::symlink_status(path).permissions(); }

/// An error number, or 0 when the copy succeeds.
int copyError(const URL& source, const URL& destination) {
    try {
        manager().overwritingCopy(source, destination);
        return 0;
    } catch (const fs::filesystem_error& error) {
        return error.code().value();
    }
}

} // namespace

TEST(SafeCopy, ReplacesEveryKindByEveryKind) {
    for (const std::string_view source : {"file", "link", "folder"})
        for (const std::string_view destination : {"nothing", "file", "link", "folder"}) {
            const TemporaryFolder folder(TemporaryFolder::fastParent());
            const TemporaryFolder far;
            for (const auto& temporary : {folder.path() / "tmp", far.path()}) {
                SCOPED_TRACE(testing::Message()
                             << source << " over " << destination << ", by way of " << temporary);
                folder.folder("tmp");
                const Variable place("TMPDIR", temporary.c_str());
                make(folder, "source", source);
                make(folder, "destination", destination);
                if (source != "link")
                    folder.setMode("source", 06755);
                if (destination == "file" || destination == "folder")
                    folder.setMode("destination", 0704);
                const auto wanted = contents(folder.path() / "source");
                EXPECT_EQ(copyError(folder.url("source"), folder.url("destination")), 0);
                EXPECT_EQ(contents(folder.path() / "destination"), wanted);
                EXPECT_EQ(contents(folder.path() / "source"), wanted);
                // The permissions of what is replaced stay, where it is of the same kind.
                EXPECT_EQ(mode(folder.path() / "destination"),
                          source == destination && source != "link"
                              ? fs::perms(0704)
                              : mode(folder.path() / "source"));
                fs::remove_all(folder.path() / "destination");
                fs::remove_all(folder.path() / "source");
                EXPECT_EQ(contents(folder.path()).size(), 2u) << "something is left over";
                EXPECT_TRUE(fs::is_empty(temporary));
            }
        }
}

TEST(SafeCopy, TakesModesDatesAndAttributesAlong) {
    TemporaryFolder folder;
    folder.make({"a/file", "a/closed/inner", "a/empty/", "a/link -> nowhere"});
    ASSERT_EQ(mkfifo((folder.path() / "a/pipe").c_str(), 0600), 0);
    struct {
        const char* name;
        mode_t mode;
    } const table[] = {{"a/file", 0751},   {"a/closed/inner", 0}, {"a/closed", 0555},
                       {"a/empty", 01777}, {"a/pipe", 0620},      {"a/link", 0},
                       {"a", 0710}};
    time_t date = 1'000'000'000;
    for (const auto& row : table) {
        const fs::path path = folder.path() / row.name;
        if (row.mode != 0)
            chmod(path.c_str(), row.mode);
        const timespec dates[] = {{date, 1}, {++date, 123456789}};
        ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), dates, AT_SYMLINK_NOFOLLOW), 0);
    }
    const bool hasAttributes =
        setxattr((folder.path() / "a/file").c_str(), "user.note", "n", 1, 0) == 0;

    manager().overwritingCopy(folder.url("a"), folder.url("b"));
    for (const auto& row : table) {
        const std::string copy = "b" + std::string(row.name).substr(1);
        EXPECT_EQ(mode(folder.path() / row.name), mode(folder.path() / copy)) << copy;
        EXPECT_EQ(manager().modifyDateForFile(folder.url(row.name)),
                  manager().modifyDateForFile(folder.url(copy)))
            << copy;
    }
    EXPECT_TRUE(fs::is_fifo(folder.path() / "b/pipe"));
    EXPECT_EQ(getxattr((folder.path() / "b/file").c_str(), "user.note", nullptr, 0),
              hasAttributes ? 1 : -1);
}

TEST(SafeCopy, ReplacesWithWhatHasTheLongestName) {
    TemporaryFolder folder;
    const std::string name = "a." + std::string(NAME_MAX - 2, 'x');
    folder.make({name + "/new", "b/old"});
    manager().overwritingCopy(folder.url(name), folder.url("b"));
    EXPECT_TRUE(fs::exists(folder.path() / "b/new"));
    EXPECT_EQ(folder.count(), 2);
}

TEST(SafeCopy, ReplacesFoldersThatMayNotBeWritten) {
    asOrdinaryUser([] {
        TemporaryFolder folder;
        folder.make({"tmp/", "a/sub/x", "b/sub/y"});
        const Variable place("TMPDIR", folder.url("tmp").path().c_str());
        for (const char* name : {"a/sub", "a", "b/sub", "b"})
            folder.setMode(name, 0500);
        manager().overwritingCopy(folder.url("a"), folder.url("b"));
        EXPECT_EQ(contents(folder.path() / "a"), contents(folder.path() / "b"));
        EXPECT_EQ(contents(folder.path()).size(), 8u) << "something is left over";
        folder.setMode("a", 0); // a copy may have what is its owner's least
        EXPECT_EQ(internal::replaceItem(folder.path() / "b", folder.path() / "a"), 0);
    });
}

#if defined(__x86_64__)
// The C library sets the mode of what it does not open, and of no link, by way of "/proc".
TEST(SafeCopy, NeedsNoProc) {
    asOrdinaryUser([] {
        TemporaryFolder folder;
        folder.make({"tmp/", "a/closed/x", "b/closed/y"});
        ASSERT_EQ(mkfifo((folder.path() / "a/pipe").c_str(), 0640), 0);
        const Variable place("TMPDIR", folder.url("tmp").path().c_str());
        for (const char* name : {"a/closed", "b/closed"})
            folder.setMode(name, 0500);
        constexpr unsigned fchmodat2 = 452;
        refuseCall(fchmodat2, ENOSYS);
        refuseCall(SYS_chmod, ENOENT);
        manager().overwritingCopy(folder.url("a"), folder.url("b"));
        EXPECT_TRUE(fs::is_fifo(folder.path() / "b/pipe"));
        EXPECT_EQ(mode(folder.path() / "b/pipe"), fs::perms(0640));
        EXPECT_EQ(folder.count(), 3) << "something is left over";
        EXPECT_TRUE(fs::is_empty(folder.path() / "tmp"));
    });
}
#endif

TEST(SafeCopy, CopiesHolesAndOddSizes) {
    TemporaryFolder folder;
    constexpr std::uintmax_t megabyte = 1 << 20;
    folder.file("sparse", "");
    fs::resize_file(folder.path() / "sparse", 96 * megabyte + 1);
    std::fstream file(folder.path() / "sparse", std::ios::in | std::ios::out);
    for (const std::uintmax_t island : {std::uintmax_t{0}, 30 * megabyte, 64 * megabyte - 1})
        file.seekp(static_cast<std::streamoff>(island)).put('!');
    file.close();
    manager().overwritingCopy(folder.url("sparse"), folder.url("copy"));
    EXPECT_TRUE(text(folder.path() / "sparse") == text(folder.path() / "copy"));
    struct stat status {};
    stat(folder.url("copy").path().c_str(), &status);
    EXPECT_LT(status.st_blocks * 512, 1 << 20) << "the holes are filled";
    // The kernel's own files say that they are empty.
    manager().overwritingCopy(URL({.fileURLWithPath = "/proc/self/status"}), folder.url("copy"));
    EXPECT_THAT(text(folder.path() / "copy"), testing::StartsWith("Name:"));
}

TEST(SafeCopy, PassesErrorsOnAndTouchesNothing) {
    TemporaryFolder folder;
    folder.make({"file", "folder/sub/x"});
    const URL web = *URL::make({.string = "http://a.org/x"});
    const auto before = contents(folder.path());
    struct {
        URL source, destination;
        int error;
    } const table[] = {
        {folder.url("missing"), folder.url("new"), ENOENT},
        {folder.url("missing"), folder.url("file"), ENOENT},
        {folder.url("file"), folder.url("missing/new"), ENOENT},
        {folder.url("file"), folder.url("file/new"), ENOTDIR},
        {folder.url("folder"), folder.url("folder/sub/new"), EINVAL},
        {folder.url("file"), folder.url(std::string(300, 'x')), ENAMETOOLONG},
        {web, folder.url("new"), EINVAL},
        {folder.url("file"), web, EINVAL},
    };
    for (const auto& row : table) {
        EXPECT_EQ(copyError(row.source, row.destination), row.error)
            << row.source.path() << " to " << row.destination.path();
        EXPECT_EQ(contents(folder.path()), before);
    }
    // In the place of a folder around it.
    manager().overwritingCopy(folder.url("folder/sub"), folder.url("folder"));
    EXPECT_THAT(contents(folder.path() / "folder"), ElementsAre(Pair(".", "/"), Pair("x", "x")));
}

namespace {

/// The cases that are stopped half-way: a source, a destination, a folder for temporary files.
struct StoppedCopy {
    const char *source, *destination;
    bool isFar;
};
constexpr StoppedCopy stoppedCopies[] = {{"file", "old file", false},
                                         {"file", "old file", true},
                                         {"folder", "old folder", false},
                                         {"folder", "old file", true},
                                         {"file", "new", false}};

/// Strikes the copy at each of its system calls in turn. Whenever it ends, the destination must be
/// what it was or what it becomes, and the latter when the copy said so; of a copy that was killed,
/// the next one leaves nothing.
void strikeEverywhere(const StoppedCopy& row, TracedProcess::Fate fate) {
    SCOPED_TRACE(std::string(row.source) + " over " + row.destination);
    const TemporaryFolder far;
    auto end = TracedProcess::End::wasStruck;
    for (std::size_t call = 0; end == TracedProcess::End::wasStruck; ++call) {
        ASSERT_LT(call, 5000u);
        TemporaryFolder folder(TemporaryFolder::fastParent());
        folder.make({"tmp/", "folder/a", "folder/sub/b", "old file", "old folder/c"});
        folder.file("file", std::string(70000, 'n'));
        const auto source = contents(folder.path() / row.source);
        const auto target = folder.path() / row.destination;
        const auto before = contents(target);
        const fs::path scratch = row.isFar ? far.path() : folder.path() / "tmp";
        const Variable place("TMPDIR", scratch.c_str());

        TracedProcess process(call, fate);
        end = process.run([&] {
            manager().overwritingCopy(folder.url(row.source), folder.url(row.destination));
        });
        ASSERT_EQ(contents(folder.path() / row.source), source) << "at call " << call;
        const auto after = contents(target);
        ASSERT_TRUE(after == source || after == before) << "at call " << call;
        ASSERT_TRUE(after == source || process.exitStatus() != 0) << "at call " << call;
        ASSERT_TRUE(end == TracedProcess::End::wasStruck || process.exitStatus() == 0);

        if (fate == TracedProcess::Fate::killed) {
            manager().overwritingCopy(folder.url(row.source), folder.url(row.destination));
            ASSERT_EQ(contents(target), source);
            ASSERT_EQ(folder.count(), row.destination == std::string("new") ? 6 : 5) << call;
            ASSERT_TRUE(fs::is_empty(scratch)) << "at call " << call;
        }
    }
}

} // namespace

TEST(SafeCopy, LeavesTheOldOrTheNewWhenKilledAtAnyStep) {
    for (const StoppedCopy& row : stoppedCopies)
        strikeEverywhere(row, TracedProcess::Fate::killed);
}

#if defined(__x86_64__)
TEST(SafeCopy, LeavesTheOldOrTheNewWhenAnyCallFails) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer's own calls would fail too";
#endif
    for (const StoppedCopy& row : stoppedCopies)
        strikeEverywhere(row, TracedProcess::Fate::fails);
}
#endif

// Copying what one is reading would wait for itself; for others it waits.
TEST(SafeCopy, LetsItsOwnReaderThrough) {
    TemporaryFolder folder;
    folder.file("new", "new");
    folder.make({"old", "new folder/x", "old folder/y"});
    for (const std::string kind : {"", " folder"}) {
        const URL item = folder.url("old" + kind);
        readSecuredFileWithCoordinator(item, [&](const URL& url) {
            readSecuredFileWithCoordinator(url, [&](const URL&) { return true; });
            return readSecuredFileWithCoordinator(url, [&](const URL&) {
                manager().overwritingCopy(folder.url("new" + kind), url);
                manager().overwritingCopy(folder.url("new" + kind), url);
                return true;
            });
        });
        EXPECT_EQ(contents(item.path()), contents(folder.path() / ("new" + kind)));
    }

    std::atomic<int> step = 0;
    const auto waitFor = [&](int wanted) {
        while (step != wanted)
            std::this_thread::yield();
    };
    std::thread other([&] {
        readSecuredFileWithCoordinator(folder.url("old"), [&](const URL&) {
            step = 1;
            waitFor(2);
            std::this_thread::sleep_for(50ms);
            return step.exchange(3);
        });
    });
    waitFor(1);
    readSecuredFileWithCoordinator(folder.url("old"), [&](const URL& url) {
        step = 2;
        manager().overwritingCopy(folder.url("new"), url);
        EXPECT_EQ(step, 3) << "it did not wait for the other reader";
        const int named = open(url.path().c_str(), O_RDONLY);
        EXPECT_EQ(flock(named, LOCK_EX | LOCK_NB), 0) << "the new file is nobody's";
        return close(named);
    });
    other.join();
}

TEST(SafeCopy, TwoAtOnceLeaveOneOfTheTwo) {
    TemporaryFolder folder(TemporaryFolder::fastParent());
    const std::string a(200'000, 'a'), b(300'000, 'b');
    folder.file("a", a);
    folder.file("b", b);
    folder.file("x", a);
    for (int round = 0; round < 20; ++round) {
        const pid_t children[] = {
            startChild([&] { manager().overwritingCopy(folder.url("a"), folder.url("x")); }),
            startChild([&] { manager().overwritingCopy(folder.url("b"), folder.url("x")); })};
        for (const pid_t child : children)
            EXPECT_EQ(exitStatus(child), 0);
        EXPECT_EQ(contents(folder.path()).size(), 4u);
    }
}

// Deeper than a process may open files, and than a path may be long.
TEST(SafeCopy, CopiesDeepFolders) {
    constexpr int depth = 2500;
    TemporaryFolder folder(TemporaryFolder::fastParent());
    folder.folder("tmp");
    const Variable place("TMPDIR", folder.url("tmp").path().c_str());
    const pid_t child = startChild([&] {
        const rlimit limit{64, 64};
        setrlimit(RLIMIT_NOFILE, &limit);
        fs::create_directory(folder.path() / "deep");
        int current = open((folder.path() / "deep").c_str(), O_RDONLY | O_DIRECTORY);
        for (int i = 0; i < depth; ++i) {
            ASSERT_EQ(mkdirat(current, "d", 0700), 0);
            close(openat(current, "f", O_WRONLY | O_CREAT, 0600));
            close(std::exchange(current, openat(current, "d", O_RDONLY | O_DIRECTORY)));
        }
        close(current);
        manager().overwritingCopy(folder.url("deep"), folder.url("copy"));
        const auto walk = manager().enumerator(folder.url("copy"), {});
        std::size_t deepest = 0;
        while (walk->nextObject())
            deepest = std::max(deepest, walk->level());
        EXPECT_EQ(deepest, std::size_t{depth});
        folder.folder("empty");
        manager().overwritingCopy(folder.url("empty"), folder.url("copy"));
        EXPECT_TRUE(manager().zipItems({folder.url("deep")}));
        manager().overwritingCopy(folder.url("empty"), folder.url("deep"));
    });
    EXPECT_EQ(exitStatus(child), 0);
    EXPECT_TRUE(fs::is_empty(folder.path() / "deep") && fs::is_empty(folder.path() / "copy"));
    EXPECT_TRUE(fs::is_empty(folder.path() / "tmp"));
}

TEST(PlaceItem, NeverReplacesByNameEither) {
    TemporaryFolder folder;
    for (const char* kind : {"file", "folder", "link"}) {
        SCOPED_TRACE(kind);
        make(folder, "from", kind);
        const auto wanted = contents(folder.path() / "from");
        const auto move = [&](const char* to) {
            return internal::placeItemByName(folder.url("from").path(), folder.url(to).path());
        };
        folder.folder("taken");
        EXPECT_EQ(move("taken"), EEXIST);
        fs::remove(folder.path() / "taken");
        EXPECT_EQ(move("to"), 0);
        EXPECT_EQ(contents(folder.path() / "to"), wanted);
        EXPECT_EQ(move("again"), ENOENT);
        fs::remove_all(folder.path() / "to");
        EXPECT_TRUE(fs::is_empty(folder.path()));
    }
}
