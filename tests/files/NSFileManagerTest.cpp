#include "ChildProcess.h"
#include "TemporaryFolder.h"
#include <tests/Testing.h>
#include <tests/Variable.h>
#include <tests/outputOf.h>

#include <zorvan/files/NSFileManager.h>
#include <zorvan/platform/foundation/NSUserName.h>

namespace {
const NSFileManager& manager() { return *NSFileManager::defaultManager(); }
std::string parent(const URL& url) { return url.deletingLastPathComponent().path(); }
} // namespace

TEST(NSFileManager, TellsWhatExists) {
    TemporaryFolder folder;
    folder.file("file");
    folder.link("to-folder", ".");
    folder.link("to-nothing", "nowhere");
    for (const auto& [name, exist, isDir] : {std::tuple("", true, true),
                                             {"file", true, false},
                                             {"to-folder", true, true},
                                             {"to-nothing", false, false},
                                             {"file/inside", false, false}}) {
        const auto found = manager().contentExists(folder.url(name));
        EXPECT_EQ(found.exist, exist) << name;
        EXPECT_EQ(found.isDir, isDir) << name;
    }
    EXPECT_FALSE(manager().contentExists(*URL::make({.string = "http://a/"})).exist);
}

TEST(NSFileManager, NamesTemporaryFiles) {
    const URL model({.fileURLWithPath = "/a.b/c.tiff"});
    EXPECT_EQ(manager().temporaryURL().path().find('.'), std::string::npos);
    EXPECT_NE(manager().temporaryURL(), manager().temporaryURL());
    EXPECT_EQ(manager().temporaryURL({.pathExt = "jpg"}).pathExtension(), "jpg");
    EXPECT_EQ(manager().temporaryURL({.for_ = model}).pathExtension(), "tiff");
    for (const auto& [value, folder] :
         {std::pair{"/var/scratch/", "/var/scratch"}, {"relative", "/tmp"}, {"", "/tmp"}}) {
        const Variable variable("TMPDIR", value);
        EXPECT_EQ(parent(manager().temporaryURL()), folder);
    }
}

TEST(NSFileManager, MakesAFolderForTheTemporaryFilesOfABundle) {
    TemporaryFolder folder;
    const Variable variable("TMPDIR", folder.url("deep/tmp").path().c_str());
    folder.file("named/Info.plist", "<plist><dict><key>CFBundleIdentifier</key>"
                                    "<string>org.example.a</string></dict></plist>");
    folder.folder("plain");
    const auto named = NSBundle::create(folder.url("named").path());
    const auto plain = NSBundle::create(folder.url("plain").path());

    const URL url = manager().temporaryURL({.pathExt = "jpg", .bundle = named});
    EXPECT_EQ(parent(url), folder.url("deep/tmp/org.example.a").path());
    EXPECT_EQ(url.pathExtension(), "jpg");
    EXPECT_EQ(manager().temporaryURL({.for_ = url, .bundle = named}).pathExtension(), "jpg");
    EXPECT_EQ(fs::status(parent(url)).permissions(), fs::perms::owner_all);
    const std::string a = parent(manager().temporaryURL({.pathExt = "", .bundle = plain}));
    EXPECT_TRUE(fs::is_directory(a));
    EXPECT_NE(a, parent(manager().temporaryURL({.pathExt = "", .bundle = plain})));
}

TEST(NSFileManager, KnowsTheFoldersOfTheProgram) {
    EXPECT_EQ(manager().noSandboxHomePath(), "/Users/" + NSUserName() + "/");
    EXPECT_EQ(manager().noSandboxHomeURL().path() + "/", manager().noSandboxHomePath());
    EXPECT_EQ(manager().noSandboxBundleSupportDirectoryURL()->path(),
              "/Users/" + NSUserName() + "/Library/Application Support/Files Test");

    TemporaryFolder folder;
    const Variable home("HOME", folder.url("home").path().c_str());
    {
        const Variable data("XDG_DATA_HOME", "relative");
        EXPECT_EQ(manager().bundleSupportDirectoryURL(),
                  folder.url("home/.local/share/Files Test"));
    }
    const Variable data("XDG_DATA_HOME", folder.url("data").path().c_str());
    EXPECT_EQ(manager().bundleSupportDirectoryURL(), folder.url("data/Files Test"));
    EXPECT_FALSE(fs::exists(folder.path() / "data"));
    EXPECT_EQ(manager().createBundleSupportDirectory(), folder.url("data/Files Test"));
    EXPECT_EQ(manager().createBundleSupportDirectoryWithComponent("a/b"),
              folder.url("data/Files Test/a/b"));
    EXPECT_TRUE(fs::is_directory(folder.path() / "data/Files Test/a/b"));
    folder.file("data/Files Test/file");
    EXPECT_FALSE(manager().createBundleSupportDirectoryWithComponent("file"));
}

// The test without its bundle, as a program of another name.
TEST(NSFileManager, HasNoFoldersForAProgramWithoutABundleName) {
    if (std::getenv("ZORVAN_TEST_WITHOUT_BUNDLE")) {
        EXPECT_FALSE(manager().noSandboxBundleSupportDirectoryURL());
        EXPECT_FALSE(manager().bundleSupportDirectoryURL());
        EXPECT_FALSE(manager().createBundleSupportDirectory());
        return;
    }
    TemporaryFolder folder;
    fs::copy_file("/proc/self/exe", folder.path() / "other");
    const pid_t child = startChild([&] {
        setenv("ZORVAN_TEST_WITHOUT_BUNDLE", "1", 1);
        execl(folder.url("other").path().c_str(), "other",
              "--gtest_filter=NSFileManager.HasNoFoldersForAProgramWithoutABundleName", nullptr);
        FAIL() << "the copy does not start";
    });
    EXPECT_EQ(exitStatus(child), 0);
}

TEST(NSFileManager, CreatesDirectories) {
    TemporaryFolder folder;
    folder.file("file");
    EXPECT_EQ(manager().createDirectory(folder.url("a/b")), folder.url("a/b"));
    EXPECT_EQ(manager().createDirectory(folder.url("a/b")), folder.url("a/b"));
    EXPECT_EQ(manager().createDirectory(folder.url("a"), "c/d"), folder.url("a/c/d"));
    EXPECT_EQ(manager().createDirectory(folder.url("e"), ""), folder.url("e"));
    for (const char* name : {"a/b", "a/c/d", "e"})
        EXPECT_TRUE(fs::is_directory(folder.path() / name)) << name;
    for (const URL& url :
         {folder.url("file"), folder.url("file/x"), *URL::make({.string = "http://a/b"})})
        EXPECT_THROW(manager().createDirectory(url), fs::filesystem_error);
}

TEST(NSFileManager, ReadsAttributes) {
    TemporaryFolder folder;
    for (const auto& [size, units] :
         {std::pair{0, 0}, {1023, 0}, {1024, 1}, {2048, 2}, {3071, 2}}) {
        folder.file("file", std::string(static_cast<std::size_t>(size), 'x'));
        EXPECT_EQ(manager().sizeInMoOfItem(folder.url("file")), units) << size;
    }
    fs::resize_file(folder.path() / "file", std::uintmax_t{5} << 30);
    EXPECT_EQ(manager().sizeInMoOfItem(folder.url("file")), 5 << 20);

    const std::string path = folder.url("file").path();
    const auto setDate = [&](time_t seconds, long nanoseconds) {
        const timespec dates[] = {{0, 0}, {seconds, nanoseconds}};
        ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), dates, 0), 0);
    };
    using namespace std::chrono;
    setDate(1'000'000'000, 987654321);
    EXPECT_EQ(manager().modifyDateForFile(folder.url("file")),
              Date(seconds(1'000'000'000) + nanoseconds(987654321)));
    setDate(-5, 250'000'000);
    EXPECT_EQ(manager().modifyDateForFile(folder.url("file")), Date(milliseconds(-4750)));
    // Later than a moment can be: the last one, not one long past.
    setDate(time_t{1} << 33, 0);
    setDate(time_t{13} << 30, 0);
    EXPECT_GT(*manager().modifyDateForFile(folder.url("file")), Date(hours(24 * 365 * 290)));

    // The word of another program on the date of creation, 0 for none.
    const long long created = std::stoll(outputOf("stat -c %W " + path));
    const auto date = manager().createDateForFile(folder.url("file"));
    EXPECT_EQ(date ? floor<seconds>(date->time_since_epoch()).count() : 0, created);

    folder.link("link", "file");
    folder.link("broken", "nowhere");
    EXPECT_EQ(manager().sizeInMoOfItem(folder.url("link")), 0);
    EXPECT_TRUE(manager().modifyDateForFile(folder.url("broken")));
    for (const URL& url : {folder.url("missing"), *URL::make({.string = "http://a/b"})}) {
        EXPECT_FALSE(manager().sizeInMoOfItem(url));
        EXPECT_FALSE(manager().modifyDateForFile(url));
        EXPECT_FALSE(manager().createDateForFile(url));
    }
}

TEST(NSFileManager, SearchesFilesInTheOrderOfTheList) {
    TemporaryFolder folder;
    folder.file("b.2020/sub/x");
    folder.file("b.2020/.hidden");
    folder.file("p.app/inner");
    folder.file("a.txt");
    folder.link("to-file", "a.txt");
    folder.link("to-folder", "p.app");
    folder.link("broken", "nowhere");
    const std::vector<URL> roots{folder.url("to-folder"), folder.url("broken"),
                                 folder.url("to-file"), folder.url("b.2020")};
    EXPECT_THAT(folder.relative(manager().searchFiles(roots)),
                ElementsAre("p.app/inner", "a.txt", "b.2020/sub"));
    EXPECT_THAT(folder.relative(manager().searchFiles(roots, {.recursive = true})),
                ElementsAre("p.app/inner", "a.txt", "b.2020/sub", "b.2020/sub/x"));
    constexpr auto everything = NSDirectoryEnumerationOptions::none;
    const auto hidden = manager().enumerator(folder.url("b.2020"), everything);
    std::size_t count = 0;
    while (hidden->nextObject())
        ++count;
    EXPECT_EQ(count, 3u);
    EXPECT_FALSE(manager().enumerator(folder.url("a.txt"), everything));
}
