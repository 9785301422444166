// Files that are put in place in one step, and what is left when a process is stopped half-way.

#include <tests/Testing.h>
#include <tests/files/TemporaryFolder.h>
#include <tests/files/TracedProcess.h>

#include <zorvan/platform/foundation/UUID.h>
#include <zorvan/platform/foundation/internal/NewFile.h>
#include <zorvan/platform/foundation/internal/Scratch.h>
#include <zorvan/platform/foundation/internal/placeItem.h>
#include <zorvan/platform/foundation/internal/readRegularFile.h>
#include <zorvan/platform/foundation/internal/writeFile.h>

#include <sys/fsuid.h>
#include <sys/xattr.h>

using internal::NewFile, internal::Scratch;

namespace {

/// The error number of writing a file.
int write(const fs::path& path, const std::string& text) {
    return internal::writeFile(path, std::as_bytes(std::span(text))).value();
}

} // namespace

TEST(WriteFile, WritesFilesAndRefusesTheRest) {
    TemporaryFolder folder;
    const fs::path at = folder.path();
    const mode_t mask = umask(027);
    EXPECT_EQ(write(at / "new", "new"), 0);
    EXPECT_EQ(fs::status(at / "new").permissions(), fs::perms(0640));
    umask(mask);

    folder.file("old", "a longer text than the new one");
    folder.setMode("old", 0604);
    fs::create_hard_link(at / "old", at / "other name");
    EXPECT_EQ(write(at / "old", "new"), 0);
    EXPECT_EQ(text(at / "old"), "new");
    EXPECT_EQ(fs::status(at / "old").permissions(), fs::perms(0604));
    EXPECT_EQ(text(at / "other name"), "a longer text than the new one");

    folder.make(
        {"sub/target", "sub/second -> target", "first -> sub/second", "dangling -> sub/made"});
    for (const char* link : {"first", "dangling"})
        EXPECT_EQ(write(at / link, link), 0);
    EXPECT_EQ(fs::read_symlink(at / "first"), "sub/second");
    EXPECT_EQ(text(at / "sub/target"), "first");
    EXPECT_EQ(text(at / "sub/made"), "dangling");

    const fs::path before = fs::current_path();
    fs::current_path(at);
    EXPECT_EQ(write("bare name", "one") + write("bare name", "two"), 0);
    fs::current_path(before);
    EXPECT_EQ(text(at / "bare name"), "two");

    folder.make({"folder/", "to pipe -> pipe", "circle -> circle"});
    ASSERT_EQ(mkfifo((at / "pipe").c_str(), 0600), 0);
    const std::ptrdiff_t count = folder.count();
    const std::pair<std::string, int> refused[] = {{std::string("old\0.jpg", 8), EINVAL},
                                                   {"folder", EISDIR},
                                                   {"pipe", EINVAL},
                                                   {"to pipe", EINVAL},
                                                   {"/dev/null", EINVAL},
                                                   {"circle", ELOOP},
                                                   {"missing/x", ENOENT},
                                                   {"old/x", ENOTDIR}};
    for (const auto& [name, error] : refused)
        EXPECT_EQ(write(at / name, "x"), error) << name;
    EXPECT_TRUE(fs::is_fifo(at / "pipe") && fs::is_character_file("/dev/null"));
    EXPECT_EQ(folder.count(), count);
}

TEST(Uninterrupted, IsWhatComesAfterTheSignals) {
    for (const auto& [error, wanted] : {std::pair(EINTR, 3), {EIO, -1}}) {
        int left = 2;
        errno = error;
        EXPECT_EQ(internal::uninterrupted([&] { return left-- > 0 ? -1 : 3; }), wanted);
        EXPECT_EQ(left, error == EINTR ? -1 : 1);
    }
}

TEST(ReadRegularFile, TakesNoMoreThanItMay) {
    TemporaryFolder folder;
    folder.file("five", "12345");
    ASSERT_EQ(mkfifo((folder.path() / "pipe").c_str(), 0600), 0);
    const auto error = [&](const fs::path& path, std::size_t most) {
        errno = 0;
        return internal::readRegularFile(folder.path() / path, most) ? 0 : errno;
    };
    EXPECT_EQ(internal::readRegularFile(folder.path() / "five", 5), "12345");
    const std::tuple<std::string, std::size_t, int> table[] = {
        {"five", 4, EFBIG},
        {std::string("five\0.jpg", 9), 99, EINVAL},
        {"pipe", 99, EINVAL},
        {"missing", 99, ENOENT},
        {".", 99, EINVAL},
        {"/proc/self/status", 1 << 20, 0},
        {"/proc/self/status", 99, EFBIG}, // says that it has no bytes
    };
    for (const auto& [path, most, wanted] : table)
        EXPECT_EQ(error(path, most), wanted) << path << " of " << most;
}

TEST(WriteFile, KeepsTheAccessList) {
    TemporaryFolder folder(TemporaryFolder::fastParent());
    folder.file("old", "old");
    const std::string path = (folder.path() / "old").string();
    // Version 2: the owner reads and writes, user 12345 reads, the group may nothing, as others.
    const std::uint32_t list[] = {2,          0x00060001, 0xFFFFFFFF, 0x00040002,
                                  12345,      0x00000004, 0xFFFFFFFF, 0x00040010,
                                  0xFFFFFFFF, 0x00000020, 0xFFFFFFFF};
    if (setxattr(path.c_str(), "system.posix_acl_access", list, sizeof list, 0) != 0)
        GTEST_SKIP() << "no access lists here";
    EXPECT_EQ(write(path, "new"), 0);
    std::uint32_t kept[std::size(list)] = {};
    EXPECT_EQ(getxattr(path.c_str(), "system.posix_acl_access", kept, sizeof kept),
              ssize_t{sizeof list});
    EXPECT_THAT(kept, testing::ElementsAreArray(list));
    folder.file("plain"); // and keeps having none
    EXPECT_EQ(internal::replaceItem(folder.path() / "plain", path), 0);
    EXPECT_EQ(getxattr((folder.path() / "plain").c_str(), "system.posix_acl_access", nullptr, 0),
              -1);
}

// Strikes at each system call in turn. The file has the old bytes or the new ones, and the next
// write leaves nothing but the file.
TEST(WriteFile, LeavesNothingBehindWhenKilledAtAnyStep) {
    const std::string large(70000, 'n');
    for (const bool isThere : {true, false}) {
        auto end = TracedProcess::End::wasStruck;
        for (std::size_t call = 0; end == TracedProcess::End::wasStruck; ++call) {
            ASSERT_LT(call, 500u);
            TemporaryFolder folder(TemporaryFolder::fastParent());
            const fs::path path = folder.path() / "file";
            if (isThere)
                folder.file("file", "old");
            TracedProcess process(call, TracedProcess::Fate::killed);
            end = process.run([&] { write(path, large); });
            const std::string after = text(path);
            ASSERT_TRUE(after == large || (after == (isThere ? "old" : ""))) << "at call " << call;
            ASSERT_EQ(write(folder.path() / "other", "x"), 0);
            ASSERT_EQ(folder.count(), fs::exists(path) ? 2 : 1) << "at call " << call;
        }
    }
}

// Another user of the folder puts a private file in the place of the new one.
TEST(WriteFile, GivesTheOldPermissionsToNoOtherFile) {
    auto end = TracedProcess::End::wasStruck;
    for (std::size_t call = 0; end == TracedProcess::End::wasStruck; ++call) {
        TemporaryFolder folder(TemporaryFolder::fastParent());
        folder.file("file");
        folder.file("secret", "private");
        folder.setMode("secret", 0600);
        TracedProcess process(call, [&] {
            for (const fs::path& path : fs::directory_iterator(folder.path()))
                if (path.filename().string().size() == 37) // a dot and a UUID
                    fs::rename(folder.path() / "secret", path);
        });
        end = process.run([&] { write(folder.path() / "file", "new"); });
        for (const auto& entry : fs::directory_iterator(folder.path()))
            ASSERT_TRUE(text(entry) != "private" || entry.status().permissions() == fs::perms(0600))
                << entry << " at call " << call;
    }
}

TEST(Scratch, IsClearedOnceItsProcessHasEnded) {
    TemporaryFolder folder;
    const Signal ready, stop;
    const auto start = [&] {
        return startChild([&] {
            const Scratch scratch = Scratch::beside(folder.url("x").path());
            fs::create_directories(scratch.path() + "/closed/inner");
            fs::permissions(scratch.path() + "/closed", fs::perms(0500));
            EXPECT_TRUE(ready.give() && stop.await());
        });
    };
    const pid_t first = start(), second = start();
    ASSERT_TRUE(ready.await() && ready.await());
    kill(first, SIGKILL);
    EXPECT_EQ(exitStatus(first), -1);
    internal::removeUnfinished(folder.path());
    EXPECT_EQ(folder.count(), 3) << "somebody is still at work there";
    EXPECT_TRUE(stop.give());
    EXPECT_EQ(exitStatus(second), 0);
    EXPECT_EQ(folder.count(), 0) << "the last one to leave clears";

    const pid_t third = start();
    ASSERT_TRUE(ready.await());
    kill(third, SIGKILL);
    EXPECT_EQ(exitStatus(third), -1);
    EXPECT_EQ(folder.count(), 2);
    NewFile file(Scratch::pathBeside(folder.url("x").path()), 0600);
    EXPECT_EQ(folder.count(), 0) << "the next one to come clears";
}

TEST(Scratch, LeavesNoListWhereItIsNotBelieved) {
    for (const bool isForeign : {false, true}) {
        TemporaryFolder folder;
        folder.setMode(".", 0777);
        if (isForeign && geteuid() != 0)
            break; // only the superuser makes what is not his
        const pid_t child = startChild([&] {
            if (isForeign)
                setfsuid(65534);
            else
                refuseCall(SYS_flock, ENOLCK);
            const Scratch scratch = Scratch::beside(folder.url("x").path());
            EXPECT_EQ(folder.count(), 0);
        });
        EXPECT_EQ(exitStatus(child), 0) << isForeign;
        EXPECT_EQ(folder.count(), 0) << isForeign;
    }
}

TEST(Scratch, BelievesNoListThatAnotherCouldHaveWritten) {
    const std::string scratch = makeUUIDString();
    const std::string names[] = {
        "document", "../" + scratch, scratch + "x", "." + scratch, scratch + ".jpg", scratch + "/x",
        ""};
    for (const bool isOpenToOthers : {false, true}) {
        TemporaryFolder folder;
        folder.file(scratch);
        folder.make(
            {"in/document", "in/." + scratch, "in/" + scratch + ".jpg", "in/" + scratch + "x"});
        std::string list;
        for (const std::string& name : names)
            list += name + '\0';
        const std::string listName = "in/.zorvan-unfinished-" + std::to_string(geteuid());
        folder.file(listName, list + scratch); // the last one was not written to its end
        folder.setMode(listName, isOpenToOthers ? 0622 : 0600);
        internal::removeUnfinished(folder.path() / "in");
        const auto isThere = [&](const std::string& name) {
            return fs::exists(folder.path() / name);
        };
        EXPECT_TRUE(isThere("in/document") && isThere(scratch) && isThere("in/" + scratch + "x"));
        EXPECT_EQ(isThere("in/." + scratch), isOpenToOthers);
        EXPECT_EQ(isThere("in/" + scratch + ".jpg"), isOpenToOthers);
        // Nor does it wait for a lock that another could hold.
        folder.file(listName);
        folder.setMode(listName, isOpenToOthers ? 0622 : 0644);
        const internal::FileDescriptor held(open((folder.path() / listName).c_str(), O_RDONLY));
        EXPECT_TRUE(internal::lockDescriptor(held.get(), LOCK_EX));
        EXPECT_EQ(write(folder.path() / "in/document", "new"), 0);
    }
}

TEST(ReplaceItem, TakesTwoStepsWhereItMust) {
    TemporaryFolder folder;
    const fs::path at = folder.path();
    const auto replace = [&](const char* original, const char* replacement) {
        return internal::replaceItemInTwoSteps(at / original, at / replacement);
    };
    folder.file("old/x", "old");
    folder.file("new/y", "new");
    EXPECT_EQ(replace("old", "new"), 0);
    EXPECT_EQ(text(at / "old/y"), "new");
    EXPECT_EQ(text(at / "new/x"), "old");
    EXPECT_EQ(replace("missing", "new"), ENOENT);
    EXPECT_EQ(replace("old", "missing"), ENOENT);
    EXPECT_EQ(text(at / "old/y"), "new") << "the old one is back";
    EXPECT_EQ(folder.count(), 2);
}
