#include "ChildProcess.h"
#include "TemporaryFolder.h"
#include <tests/Testing.h>

#include <zorvan/files/FileIterator.h>

#include <ranges>

static_assert(std::ranges::input_range<FileIterator>);

namespace {

class FileIteratorTest : public testing::Test {
protected:
    std::vector<std::string> all(FileIterator& iterator) const {
        std::vector<URL> urls;
        std::ranges::copy(iterator, std::back_inserter(urls));
        return folder.relative(urls);
    }
    std::shared_ptr<FileIterator> overFolder() const {
        return FileIterator::create({folder.url()});
    }

    TemporaryFolder folder{TemporaryFolder::fastParent()};
};

} // namespace

TEST_F(FileIteratorTest, OpensWhatItsOptionsSay) {
    folder.file("a.txt");
    folder.file(".hidden");
    folder.file("sub/b.txt");
    folder.file("sub/.deep/c.txt");
    folder.file("doc.RTFD/d.txt");
    const auto iterator = overFolder();
    EXPECT_THAT(all(*iterator), ElementsAre("a.txt"));
    iterator->setSkipSubdirectoryDescendants(false);
    EXPECT_THAT(all(*iterator), UnorderedElementsAre("a.txt", "sub/b.txt"));
    iterator->setSkipPackageDescendants(false);
    EXPECT_THAT(all(*iterator), UnorderedElementsAre("a.txt", "sub/b.txt", "doc.RTFD/d.txt"));
    iterator->setSkipHiddenFiles(false);
    EXPECT_THAT(all(*iterator), UnorderedElementsAre("a.txt", ".hidden", "sub/b.txt",
                                                     "sub/.deep/c.txt", "doc.RTFD/d.txt"));
    iterator->setSkipSubdirectoryDescendants(true);
    EXPECT_THAT(all(*iterator), UnorderedElementsAre("a.txt", ".hidden"));
}

TEST_F(FileIteratorTest, VisitsRootsInOrderAndSkipsMissingOnes) {
    folder.file("z/1.txt");
    folder.file("a.txt");
    folder.file("m/2.txt");
    folder.folder("empty");
    const auto iterator =
        FileIterator::create({folder.url("z"), folder.url("missing"), folder.url("a.txt"),
                              folder.url("empty"), folder.url("m"), folder.url("a.txt")});
    EXPECT_THAT(all(*iterator), ElementsAre("z/1.txt", "a.txt", "m/2.txt", "a.txt"));
    EXPECT_THAT(all(*FileIterator::create({*URL::make({.string = "http://x/etc/passwd"})})),
                IsEmpty());
}

TEST_F(FileIteratorTest, StartsAgainAfterTheEnd) {
    folder.file("a.txt");
    folder.file("b/c.txt");
    const auto iterator = FileIterator::create({folder.url("a.txt"), folder.url("b")});
    EXPECT_EQ(iterator->index(), -1);
    EXPECT_EQ(iterator->next(), folder.url("a.txt"));
    EXPECT_EQ(iterator->index(), 0);
    EXPECT_FALSE(iterator->enumerator());
    EXPECT_EQ(iterator->next(), folder.url("b/c.txt"));
    EXPECT_EQ(iterator->index(), 1);
    EXPECT_TRUE(iterator->enumerator());
    EXPECT_FALSE(iterator->next());
    EXPECT_EQ(iterator->index(), -1);
    EXPECT_FALSE(iterator->enumerator());
    // Loops share the state of the calls.
    EXPECT_EQ(*iterator->begin(), folder.url("a.txt"));
    EXPECT_EQ(*iterator->begin(), folder.url("b/c.txt"));
    EXPECT_TRUE(iterator->begin() == iterator->end());
    EXPECT_EQ(iterator->next(), folder.url("a.txt"));
    const auto none = FileIterator::create({});
    EXPECT_FALSE(none->next());
    EXPECT_EQ(none->index(), -1);
}

TEST_F(FileIteratorTest, FiltersByExtension) {
    for (const char* name : {"a.JPG", "b.jpg", "c.jpeg", "d", ".jpg", "e.jpg.txt"})
        folder.file(name);
    const auto iterator = overFolder();
    iterator->setSkipHiddenFiles(false);
    iterator->setAllowedFiles({{"jpg"}});
    EXPECT_THAT(all(*iterator), UnorderedElementsAre("a.JPG", "b.jpg"));
    iterator->setAllowedFiles({{"JPG"}});
    EXPECT_THAT(all(*iterator), IsEmpty());
    iterator->setAllowedFiles({{""}});
    EXPECT_THAT(all(*iterator), UnorderedElementsAre("d", ".jpg"));
    folder.file("g.ÜBÉR");
    iterator->setAllowedFiles({{"übér"}});
    EXPECT_THAT(all(*iterator), ElementsAre("g.ÜBÉR"));
}

TEST_F(FileIteratorTest, TreatsItsFiltersAsAlternatives) {
    for (const char* name : {"a.txt", "b.png", "c.pdf", "d.TIFF", "e", "f.unheard-of"})
        folder.file(name);
    const auto iterator = overFolder();
    iterator->setAllowedTypes({{UTIType::image()}});
    EXPECT_THAT(all(*iterator), UnorderedElementsAre("b.png", "d.TIFF"));
    iterator->setAllowedFiles({{"txt"}});
    EXPECT_THAT(all(*iterator), UnorderedElementsAre("a.txt", "b.png", "d.TIFF"));
    iterator->setAllowedTypes({{UTIType::pdf(), UTIType::png()}});
    EXPECT_THAT(all(*iterator), UnorderedElementsAre("a.txt", "b.png", "c.pdf"));
    iterator->setAllowedTypes(FileIterator::Types());
    EXPECT_THAT(all(*iterator), ElementsAre("a.txt"));
    iterator->setAllowedFiles(FileIterator::Extensions());
    EXPECT_EQ(all(*iterator).size(), 6u);
    // They take effect for the next file.
    const auto begun =
        FileIterator::create({folder.url("a.txt"), folder.url("e"), folder.url("b.png")});
    EXPECT_EQ(begun->next(), folder.url("a.txt"));
    begun->setAllowedTypes({{UTIType::png()}});
    EXPECT_EQ(begun->next(), folder.url("b.png"));
}

TEST_F(FileIteratorTest, FollowsLinksToFilesUnlessToldNotTo) {
    folder.file("real/a.txt");
    folder.file("real/deep/b.txt");
    folder.folder("links");
    folder.link("links/file.txt", "../real/a.txt");
    folder.link("links/folder", "../real");
    folder.link("links/broken.txt", "nowhere");
    folder.link("links/loop", "loop");
    folder.link("root", "real");
    const auto iterator = FileIterator::create({folder.url("links")});
    iterator->setSkipSubdirectoryDescendants(false);
    EXPECT_THAT(all(*iterator), ElementsAre("links/file.txt"));
    iterator->setSkipAlias(true);
    EXPECT_THAT(all(*iterator), IsEmpty());

    // A root that is a link to a folder stands for the folder; one to a file for itself.
    const auto roots = FileIterator::create(
        {folder.url("root"), folder.url("links/file.txt"), folder.url("links/broken.txt")});
    EXPECT_THAT(all(*roots), ElementsAre("real/a.txt", "links/file.txt"));
    roots->setSkipAlias(true);
    EXPECT_THAT(all(*roots), ElementsAre("real/a.txt"));
}

// The names of a folder are read many at once; what became of a file since then is seen.
TEST_F(FileIteratorTest, PassesOverWhatVanishesAfterBeingListed) {
    const auto rest = [&](auto change) {
        std::set<std::string> names{"a.txt", "b.txt", "c.txt"};
        for (const std::string& name : names)
            folder.file("in/" + name);
        folder.file("target");
        const auto iterator = FileIterator::create({folder.url("in")});
        iterator->setSkipAlias(true);
        names.erase(std::string(iterator->next()->lastPathComponent()));
        change(folder.path() / "in" / *names.begin());
        std::set<std::string> left;
        while (const auto url = iterator->next())
            left.emplace(url->lastPathComponent());
        fs::permissions(folder.path() / "in", fs::perms::owner_all);
        fs::remove_all(folder.path() / "in");
        return left.size();
    };
    EXPECT_EQ(rest([](const fs::path&) {}), 2u);
    EXPECT_EQ(rest([](const fs::path& path) { fs::remove(path); }), 1u);
    EXPECT_EQ(rest([](const fs::path& path) {
                  fs::remove(path);
                  fs::create_directory(path);
              }),
              1u);
    EXPECT_EQ(rest([](const fs::path& path) {
                  fs::remove(path);
                  fs::create_symlink("../target", path);
              }),
              1u);
    EXPECT_EQ(rest([](const fs::path& path) {
                  fs::rename(path.parent_path(), path.parent_path().string() + " moved");
                  fs::create_directory(path.parent_path());
              }),
              0u);
    fs::permissions(folder.path(), fs::perms(0777));
    asOrdinaryUser([&] {
        EXPECT_EQ(rest([](const fs::path& path) {
                      fs::permissions(path.parent_path(), fs::perms(0600));
                  }),
                  0u);
    });
}

TEST_F(FileIteratorTest, GivesPipesAndNamesOfAnyBytes) {
    const std::string name = "caf\xE9 \n\x01%41.jpg";
    ASSERT_EQ(mkfifo(folder.url(name).path().c_str(), 0600), 0);
    const auto iterator = overFolder();
    iterator->setAllowedTypes({{UTIType::jpeg()}});
    EXPECT_THAT(all(*iterator), ElementsAre(name));
    EXPECT_THAT(all(*FileIterator::create({folder.url(name)})), ElementsAre(name));
}

TEST_F(FileIteratorTest, ManyExtensionsDoNotConfuseTheTypeFilter) {
    for (int i = 0; i < 5000; ++i)
        folder.file("f.x" + std::to_string(i));
    folder.file("f.png");
    folder.file("g.PNG");
    const auto iterator = overFolder();
    iterator->setAllowedTypes({{UTIType::png()}});
    EXPECT_THAT(all(*iterator), UnorderedElementsAre("f.png", "g.PNG"));
}
