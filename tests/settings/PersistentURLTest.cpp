#include "Store.h"

#include <zorvan/platform/bookmarks/URLBookmark.h>
#include <zorvan/platform/bookmarks/internal/BookmarkRecord.h>
#include <zorvan/platform/bookmarks/internal/FileSearch.h>
#include <zorvan/settings/PersistentURLUDC.h>

namespace {

class PersistentURL : public Store {
protected:
    PersistentURL() { home_.file("a/photo.jpg", "pixels"); }

    fs::path path(const std::string& name) const { return home_.path() / name; }
    Data bookmark() const { return store_->dataForKey("Photo").value_or(Data()); }
    std::optional<std::string> read() {
        const auto url = store()[key_].value();
        return url ? std::optional(home_.relative(*url)) : std::nullopt;
    }

    TemporaryFolder home_;
    const OptionalUserDefaultsKey<PersistentURLUDC> key_{{.name = "Photo"}};
};

} // namespace

TEST_F(PersistentURL, FindsTheFileWhereItWent) {
    store()[key_] = home_.url("a/photo.jpg");
    reopen();
    told();
    Data before = bookmark();
    const auto expectAt = [&](const std::string& place, bool isFresh) {
        EXPECT_EQ(read(), place);
        EXPECT_EQ(bookmark() != before, isFresh) << "a fresh one takes the place of the stale";
        before = bookmark();
    };
    expectAt("a/photo.jpg", false);
    struct {
        std::string from, to, file;
    } moves[] = {
        {"a/photo.jpg", "b/c/d/deep.jpg", "b/c/d/deep.jpg"},
        {"b/c", "a/c2", "a/c2/d/deep.jpg"}, // the folder around it
    };
    for (const auto& move : moves) {
        fs::create_directories(path(move.to).parent_path());
        fs::rename(path(move.from), path(move.to));
        expectAt(move.file, true);
        expectAt(move.file, false);
    }
    home_.file("a/new", "edited"); // a save that replaces the file
    fs::rename(path("a/new"), path("a/c2/d/deep.jpg"));
    expectAt("a/c2/d/deep.jpg", true);
    EXPECT_EQ(told(), std::vector<std::string>()); // without a notification
}

TEST_F(PersistentURL, PrefersTheFileToItsName) {
    store()[key_] = home_.url("a/photo.jpg");
    fs::rename(path("a/photo.jpg"), path("a/old.jpg"));
    home_.file("a/photo.jpg", "another");
    EXPECT_EQ(read(), "a/old.jpg");
}

TEST_F(PersistentURL, KeepsWhatItHasAndSaysWhatItCannotFind) {
    store()[key_] = home_.url("a/photo.jpg");
    const Data before = bookmark();
    store()[key_] = home_.url("a/not there");
    store()[key_] = *URL::make({.string = "https://example.com"});
    EXPECT_EQ(told().size(), 3u);
    fs::remove(path("a/photo.jpg"));
    testing::internal::CaptureStdout();
    EXPECT_EQ(read(), std::nullopt);
    EXPECT_EQ(bookmark(), before);
    store().setObject(Data{std::byte{1}}, "Photo");
    EXPECT_EQ(read(), std::nullopt);
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "The file \"photo.jpg\" cannot be found.\nThe bookmark cannot be read.\n");
    store().setObject("no bytes", "Photo");
    EXPECT_EQ(read(), std::nullopt);
    store()[key_] = std::nullopt;
    EXPECT_FALSE(store().hasObjectForKey("Photo"));
}

TEST_F(PersistentURL, FindsFoldersAndLinksAndOddNames) {
    home_.folder("folder");
    home_.link("link", "nowhere");
    home_.file("\xFF\n", "x");
    for (const char* name : {"folder", "link", "\xFF\n"}) {
        const auto bytes = bookmarkData(home_.url(name), NSURLBookmarkCreationWithSecurityScope);
        ASSERT_TRUE(bytes);
        fs::rename(path(name), path("moved"));
        const auto resolved = resolveBookmark(*bytes, NSURLBookmarkResolutionWithSecurityScope);
        ASSERT_TRUE(resolved);
        EXPECT_EQ(home_.relative(resolved->url), "moved");
        EXPECT_TRUE(resolved->isStale);
        // Without the handle, by which only root may ask.
        const auto identity = internal::FileIdentity::at(path("moved"));
        EXPECT_EQ(internal::findMoved({*identity, {}, path(name)}), path("moved"));
        fs::remove(path("moved"));
    }
}

// A derived class keeps its own ways within a key.
TEST_F(PersistentURL, CanBeDerivedFrom) {
    struct Loud : PersistentURLUDC {
        std::optional<URL> decode(NSUserDefaults&, std::string_view) const override {
            return URL::root();
        }
    };
    const OptionalUserDefaultsKey<PersistentURLUDC> key(
        {.name = "Photo", .coder = std::make_shared<const Loud>(), .value = std::optional<URL>()});
    EXPECT_EQ(store()[key].value(), URL::root());
}

TEST(BookmarkRecord, RefusesWhatIsNone) {
    const Data whole = *bookmarkData(URL::root(), NSURLBookmarkCreationWithSecurityScope);
    auto record = internal::BookmarkRecord::decoded(whole).value();
    EXPECT_EQ(record.encoded(), whole);
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_FALSE(internal::BookmarkRecord::decoded(std::span(whole).first(size))) << size;
    for (const std::string& path :
         {std::string(), std::string("a"), std::string("/a\0b", 4), std::string(PATH_MAX, '/')}) {
        record.path = path;
        EXPECT_FALSE(internal::BookmarkRecord::decoded(record.encoded()));
    }
    Data longer = whole; // a later version's
    longer.resize(whole.size() + 9);
    EXPECT_TRUE(internal::BookmarkRecord::decoded(longer));
    EXPECT_FALSE(resolveBookmark(Data(3), 0));
}
