#include "TemporaryFolder.h"

#include <zorvan/files/NSFileManager.h>

#include <cstdlib>

using namespace zorvan;

namespace {
const NSFileManager& manager() { return *NSFileManager::defaultManager(); }
} // namespace

TEST(NSFileManager, numbersTakenNamesFromZero) {
    TemporaryFolder folder;
    struct {
        const char *wanted, *available;
    } table[] = {
        {"a.txt", "a.txt"},       {"a.txt", "a (0).txt"},
        {"a.txt", "a (1).txt"},   {"a (0).txt", "a (0) (0).txt"},
        {".git", ".git"},         {".git", ".git (0)"},
        {"b.tar.gz", "b.tar.gz"}, {"b.tar.gz", "b.tar (0).gz"},
        {"noext", "noext"},       {"noext", "noext (0)"},
    };
    for (const auto& row : table) {
        const URL url = manager().availableItemURL(row.wanted, folder.url());
        EXPECT_EQ(folder.relative(url), row.available);
        EXPECT_EQ(manager().availableItemURL(folder.url(row.wanted)), url);
        folder.file(folder.relative(url));
    }
}

TEST(NSFileManager, numbersFoldersAndDanglingLinks) {
    TemporaryFolder folder;
    folder.folder("Photos");
    folder.link("gone.txt", "nowhere");
    EXPECT_EQ(manager().availableItemURL(folder.url("Photos")), folder.url("Photos (0)"));
    EXPECT_EQ(manager().availableItemURL(folder.url("gone.txt")), folder.url("gone (0).txt"));
    EXPECT_EQ(manager().availableItemURL(URL::root()).path(), "/ (0)");
}

TEST(NSFileManager, tellsWhatExists) {
    TemporaryFolder folder;
    folder.file("file");
    folder.link("to-folder", ".");
    folder.link("to-nothing", "nowhere");
    struct {
        const char* name;
        bool exist, isDir;
    } table[] = {{"", true, true},
                 {"file", true, false},
                 {"to-folder", true, true},
                 {"to-nothing", false, false},
                 {"file/inside", false, false}};
    for (const auto& row : table) {
        const auto [exist, isDir] = manager().contentExists(folder.url(row.name));
        EXPECT_EQ(exist, row.exist) << row.name;
        EXPECT_EQ(isDir, row.isDir) << row.name;
    }
    EXPECT_FALSE(manager().contentExists(*URL::make({.string = "http://a/"})).exist);
}

TEST(NSFileManager, namesTemporaryFiles) {
    const URL plain = manager().temporaryURL();
    EXPECT_EQ(plain.path().find('.'), std::string::npos);
    EXPECT_NE(manager().temporaryURL(), plain);
    EXPECT_EQ(manager().temporaryURL({.pathExt = "jpg"}).pathExtension(), "jpg");
    EXPECT_EQ(
        manager().temporaryURL({.for_ = URL({.fileURLWithPath = "/a.b/c.tiff"})}).pathExtension(),
        "tiff");
    const char* before = std::getenv("TMPDIR");
    const std::string saved = before ? before : "";
    setenv("TMPDIR", "/var/scratch/", 1);
    EXPECT_EQ(manager().temporaryURL().deletingLastPathComponent().path(), "/var/scratch");
    setenv("TMPDIR", "relative", 1);
    EXPECT_EQ(manager().temporaryURL().deletingLastPathComponent().path(), "/tmp");
    before ? setenv("TMPDIR", saved.c_str(), 1) : unsetenv("TMPDIR");
}
