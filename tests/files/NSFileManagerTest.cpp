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

TEST(NSFileManager, NamesTemporaryFiles) {
    const URL model = manager().temporaryURL({.pathExt = "tiff"});
    EXPECT_EQ(manager().temporaryURL().path().find('.'), std::string::npos);
    EXPECT_NE(manager().temporaryURL(), manager().temporaryURL());
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
    const auto nameFor = [&](const std::string& identifier) {
        folder.file("a/Info.plist", "<plist><dict><key>CFBundleIdentifier</key><string>" +
                                        identifier + "</string></dict></plist>");
        const auto bundle = NSBundle::create(folder.url("a").path());
        const URL first = manager().temporaryURL({.pathExt = "jpg", .bundle = bundle});
        const URL url = manager().temporaryURL({.for_ = first, .bundle = bundle});
        EXPECT_EQ(url.pathExtension(), "jpg");
        EXPECT_EQ(fs::status(parent(url)).permissions(), fs::perms::owner_all) << identifier;
        EXPECT_EQ(fs::path(parent(url)).parent_path(), folder.path() / "deep/tmp");
        return fs::path(parent(url)).filename().string();
    };
    EXPECT_EQ(nameFor("org.example.a"), "org.example.a");
    // Made by the program itself under another mask.
    folder.folder("deep/tmp/shared");
    folder.setMode("deep/tmp/shared", 0775);
    EXPECT_EQ(nameFor("shared"), "shared");
    // Names that lead elsewhere, or that something else has.
    folder.make({"deep/tmp/file", "deep/tmp/link -> org.example.a"});
    for (const char* identifier : {"", "..", "../out", "file", "link"})
        EXPECT_EQ(nameFor(identifier).size(), 36u) << identifier;
}

TEST(NSFileManager, KnowsTheFoldersOfTheProgram) {
    EXPECT_EQ(manager().noSandboxHomePath(), "/Users/" + NSUserName() + "/");
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
    for (const URL& url : {folder.url("data/Files Test/file"), *URL::make({.string = "http://a/"})})
        EXPECT_THROW(manager().createDirectory(url), fs::filesystem_error);
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

TEST(NSFileManager, ReadsAttributes) {
    TemporaryFolder folder;
    folder.file("file", "");
    for (const std::int64_t units : {std::int64_t{1}, std::int64_t{5} << 20}) {
        fs::resize_file(folder.path() / "file", static_cast<std::uintmax_t>(units * 1024 + 1023));
        EXPECT_EQ(manager().sizeInMoOfItem(folder.url("file")), units);
    }

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
    setDate(time_t{13} << 30, 0);
    EXPECT_GT(*manager().modifyDateForFile(folder.url("file")), Date(hours(24 * 365 * 290)));

    // The word of another program on the date of creation, 0 for none.
    const long long created = std::stoll(outputOf("stat -c %W " + path));
    const auto date = manager().createDateForFile(folder.url("file"));
    EXPECT_EQ(date ? floor<seconds>(date->time_since_epoch()).count() : 0, created);

    folder.link("link", "file");
    EXPECT_EQ(manager().sizeInMoOfItem(folder.url("link")), 0);
    for (const URL& url : {folder.url("missing"), *URL::make({.string = "http://a/b"})}) {
        EXPECT_FALSE(manager().sizeInMoOfItem(url));
        EXPECT_FALSE(manager().modifyDateForFile(url));
        EXPECT_FALSE(manager().createDateForFile(url));
    }
}

TEST(NSFileManager, SearchesFilesInTheOrderOfTheList) {
    TemporaryFolder folder;
    folder.make({"b.2020/sub/x", "b.2020/.hidden", "p.app/inner", "a.txt", "to-file -> a.txt",
                 "to-folder -> p.app", "broken -> nowhere"});
    EXPECT_TRUE(manager().contentExists(folder.url("to-folder")).exist);
    const std::vector<URL> roots{folder.url("to-folder"), folder.url("broken"),
                                 folder.url("to-file"), folder.url("b.2020")};
    EXPECT_THAT(folder.relative(manager().searchFiles(roots)),
                ElementsAre("p.app/inner", "a.txt", "b.2020/sub"));
    EXPECT_THAT(folder.relative(manager().searchFiles(roots, {.recursive = true})),
                ElementsAre("p.app/inner", "a.txt", "b.2020/sub", "b.2020/sub/x"));
}
