#include "ChildProcess.h"
#include "TemporaryFolder.h"
#include <tests/Testing.h>

#include <zorvan/files/URL.h>

#include <sys/file.h>

namespace {
URL file(std::string path) { return URL({.fileURLWithPath = std::move(path)}); }
const URL web = *URL::make({.string = "http://a.org/x.jpg"});

/// What may be done: "r" for reading, "w" for writing, "d" for deleting.
std::string rights(const URL& url) {
    return std::string(isReadable(url) ? "r" : "") + (isWritable(url) ? "w" : "") +
           (isDeletable(url) ? "d" : "");
}
} // namespace

TEST(FileURL, TakesPathsApart) {
    EXPECT_EQ(URL::root().path(), "/");
    EXPECT_EQ(lastPathTitle(file("/a/b.tar.gz")), "b.tar");
    EXPECT_EQ(replacingPathExtension(file("/a/b.txt"), "md"), file("/a/b.md"));
    EXPECT_EQ(replacingPathExtension(file("/a/b.txt"), ""), file("/a/b"));
    for (const char* bare : {"http://example.com", "http://example.com/", "file:///"})
        EXPECT_EQ(replacingPathExtension(*URL::make({.string = bare}), "txt"),
                  *URL::make({.string = bare}));
    EXPECT_EQ(parentOrSelf(file("/a/b.txt")), file("/a"));
    EXPECT_EQ(parentOrSelf(file("/a/b")), file("/a/b"));
}

TEST(FileURL, KnowsParents) {
    for (const auto& [url, other, isAbove, isFileAbove] : {std::tuple("/a/b", "/a/b/c", true, true),
                                                           {"/a/b", "/a/b", true, true},
                                                           {"/a/b", "/a/bc", false, true},
                                                           {"/a/b", "/a", false, false},
                                                           {"/", "/a", true, true},
                                                           {"/a/b", "/a/c/b", false, false}}) {
        EXPECT_EQ(isParent(file(url), file(other)), isAbove) << url << other;
        EXPECT_EQ(isFileParent(file(url), file(other)), isFileAbove) << url << other;
    }
}

TEST(FileURL, KnowsTypes) {
    EXPECT_EQ(utiType(file("/a/b.JPG")), UTIType::jpeg());
    EXPECT_TRUE(conforms(file("/a/b.jpg"), UTIType::image()));
    EXPECT_FALSE(conforms(file("/a/b"), UTIType::item()));
    EXPECT_TRUE(conforms(web, {.toOneOf = {UTIType::text(), UTIType::jpeg()}}));
    EXPECT_FALSE(conforms(web, {.toOneOf = {UTIType::text()}}));
}

TEST(FileURL, TellsLinksAndTheMainDisk) {
    TemporaryFolder folder;
    folder.make({"file", "broken -> nowhere"});
    using Answer = std::optional<bool>;
    for (const auto& [url, answer] : {std::pair(folder.url("file"), Answer(false)),
                                      {folder.url("broken"), true},
                                      {folder.url("missing"), {}},
                                      {web, {}}})
        EXPECT_EQ(checkIsAlias(url), answer) << url.path();
    for (const auto& [url, answer] : {std::pair(URL::root(), Answer(true)),
                                      {file("/proc/self"), false},
                                      {file("/no/such/file"), {}},
                                      {web, {}}})
        EXPECT_EQ(checkIsOnMainDisk(url), answer) << url.path();
}

TEST(FileURL, KnowsWhatMayBeDone) {
    TemporaryFolder folder;
    folder.make({"file", "broken -> nowhere"});
    for (const URL& url : {folder.url("file"), folder.url(), web})
        EXPECT_EQ(rights(url), "rwd") << url.path();
    for (const char* name : {"missing", "missing/x", "file/x"})
        EXPECT_EQ(rights(folder.url(name)), "") << name;
    EXPECT_FALSE(isReadable(folder.url("broken")));
    EXPECT_TRUE(isDeletable(folder.url("broken")));
    EXPECT_FALSE(isDeletable(URL::root()));
    asOrdinaryUser([] {
        TemporaryFolder own;
        own.file("kept/file");
        own.setMode("kept/file", 0);
        own.setMode("kept", 0500);
        EXPECT_EQ(rights(own.url("kept/file")), "");
        own.setMode("kept", 0700);
        EXPECT_EQ(rights(own.url("kept/file")), "d");
    });
}

TEST(FileURL, ReadsPermissionBitsOfTheUsersClass) {
    asOrdinaryUser([] {
        TemporaryFolder folder;
        folder.make({"own", "link -> own", "broken -> nowhere"});
        for (mode_t mode = 0; mode <= 0777; ++mode) {
            folder.setMode("own", mode);
            const bool isBoth = (mode & 0400) && (mode & 0200);
            EXPECT_EQ(checkIsReadAndWrite(folder.url("own")), isBoth) << std::oct << mode;
            EXPECT_EQ(checkIsReadAndWrite(folder.url("link")), isBoth) << std::oct << mode;
        }
        EXPECT_EQ(checkIsReadAndWrite(folder.url("broken")), std::nullopt);
        EXPECT_EQ(checkIsReadAndWrite(web), std::nullopt);
        // Of the superuser and of another group: what others may do counts.
        EXPECT_EQ(checkIsReadAndWrite(file("/etc/passwd")), false);
        EXPECT_EQ(checkIsReadAndWrite(file("/dev/null")), true);
    });
}

TEST(FileURL, ListsSubFilesOrItself) {
    TemporaryFolder folder;
    folder.make({"f/sub/b.txt", "f/doc.rtfd/c.txt", "photos.2020/", "link -> f", "plain"});
    EXPECT_THAT(folder.relative(listSubFilesOrSelf(folder.url("f"))),
                UnorderedElementsAre("f/sub", "f/doc.rtfd"));
    EXPECT_THAT(folder.relative(listSubFilesOrSelf(folder.url("link"), {.recursively = true})),
                UnorderedElementsAre("f/sub", "f/sub/b.txt", "f/doc.rtfd"));
    EXPECT_THAT(listSubFilesOrSelf(folder.url("photos.2020")),
                ElementsAre(folder.url("photos.2020")));
    EXPECT_THAT(listSubFilesOrSelf(web), ElementsAre(web));
    for (const char* name : {"plain", "missing"})
        EXPECT_THAT(listSubFilesOrSelf(folder.url(name)), IsEmpty()) << name;
}

TEST(FileURL, ReadsUnderASharedLock) {
    TemporaryFolder folder;
    folder.file("file");
    const int writer = open(folder.url("file").path().c_str(), O_RDWR);
    const auto result = readSecuredFileWithCoordinator(folder.url("file"), [&](const URL& url) {
        EXPECT_NE(flock(writer, LOCK_EX | LOCK_NB), 0);
        EXPECT_EQ(flock(writer, LOCK_SH | LOCK_NB), 0);
        flock(writer, LOCK_UN);
        return url.path().size();
    });
    EXPECT_THAT(result, Optional(folder.url("file").path().size()));
    EXPECT_EQ(flock(writer, LOCK_EX | LOCK_NB), 0);
    close(writer);

    // A writer that has its lock may replace the file before it lets readers in.
    const int replacing = open(folder.url("file").path().c_str(), O_RDWR);
    ASSERT_EQ(flock(replacing, LOCK_EX), 0);
    std::thread reader([&] {
        readSecuredFileWithCoordinator(folder.url("file"), [&](const URL& url) {
            const int named = open(url.path().c_str(), O_RDWR);
            EXPECT_NE(flock(named, LOCK_EX | LOCK_NB), 0) << "the lock is that of the old file";
            return close(named);
        });
    });
    usleep(50'000);
    folder.file("new");
    std::filesystem::rename(folder.path() / "new", folder.path() / "file");
    close(replacing);
    reader.join();

    bool isCalled = false;
    EXPECT_FALSE(readSecuredFileWithCoordinator(folder.url("missing"),
                                                [&](const URL&) { return isCalled = true; }));
    EXPECT_FALSE(isCalled);
}
