#include "TemporaryFolder.h"

#include <zorvan/files/FileIterator.h>

#include <gmock/gmock.h>

#include <ranges>
#include <sys/stat.h>
#include <unistd.h>

using namespace zorvan;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

static_assert(std::ranges::input_range<FileIterator>);

namespace {

class FileIteratorTest : public testing::Test {
protected:
    std::vector<std::string> all(FileIterator& iterator) const {
        std::vector<std::string> names;
        for (const URL& url : iterator)
            names.push_back(folder.relative(url));
        return names;
    }
    std::shared_ptr<FileIterator> overFolder() const {
        return FileIterator::create({folder.url()});
    }

    TemporaryFolder folder;
};

} // namespace

TEST_F(FileIteratorTest, visitsNothingWithoutRoots) {
    const auto iterator = FileIterator::create({});
    EXPECT_FALSE(iterator->next());
    EXPECT_FALSE(iterator->next());
    EXPECT_EQ(iterator->index(), -1);
}

TEST_F(FileIteratorTest, opensWhatItsOptionsSay) {
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

TEST_F(FileIteratorTest, visitsRootsInOrderAndSkipsMissingOnes) {
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

TEST_F(FileIteratorTest, startsAgainAfterTheEnd) {
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
    EXPECT_EQ(iterator->next(), folder.url("a.txt"));
}

TEST_F(FileIteratorTest, sharesItsStateBetweenLoops) {
    for (const char* name : {"a", "b", "c"})
        folder.file(name);
    const auto iterator = FileIterator::create({folder.url("a"), folder.url("b"), folder.url("c")});
    EXPECT_EQ(*iterator->begin(), folder.url("a"));
    EXPECT_EQ(*iterator->begin(), folder.url("b"));
    EXPECT_EQ(iterator->next(), folder.url("c"));
    EXPECT_TRUE(iterator->begin() == iterator->end());
}

TEST_F(FileIteratorTest, filtersByExtension) {
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
}

TEST_F(FileIteratorTest, treatsItsFiltersAsAlternatives) {
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
}

TEST_F(FileIteratorTest, filtersTakeEffectForTheNextFile) {
    folder.file("1.txt");
    folder.file("2.txt");
    folder.file("3.png");
    const auto iterator =
        FileIterator::create({folder.url("1.txt"), folder.url("2.txt"), folder.url("3.png")});
    EXPECT_EQ(iterator->next(), folder.url("1.txt"));
    iterator->setAllowedTypes({{UTIType::png()}});
    EXPECT_EQ(iterator->next(), folder.url("3.png"));
}

TEST_F(FileIteratorTest, followsLinksToFilesUnlessToldNotTo) {
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

TEST_F(FileIteratorTest, givesWhatIsNoRegularFileEither) {
    ASSERT_EQ(mkfifo(folder.url("pipe.txt").path().c_str(), 0600), 0);
    EXPECT_THAT(all(*overFolder()), ElementsAre("pipe.txt"));
    EXPECT_THAT(all(*FileIterator::create({folder.url("pipe.txt")})), ElementsAre("pipe.txt"));
}

TEST_F(FileIteratorTest, keepsNamesAsBytes) {
    const std::string name = "caf\xE9 \n\x01%41.jpg";
    folder.file(name);
    const auto iterator = overFolder();
    iterator->setAllowedTypes({{UTIType::jpeg()}});
    EXPECT_THAT(all(*iterator), ElementsAre(name));
}

TEST(FileIterator, manyExtensionsDoNotConfuseTheTypeFilter) {
    TemporaryFolder folder(TemporaryFolder::fastParent());
    for (int i = 0; i < 5000; ++i)
        folder.file("f.x" + std::to_string(i));
    folder.file("f.png");
    folder.file("g.PNG");
    const auto iterator = FileIterator::create({folder.url()});
    iterator->setAllowedTypes({{UTIType::png()}});
    std::vector<std::string> names;
    for (const URL& url : *iterator)
        names.push_back(folder.relative(url));
    EXPECT_THAT(names, UnorderedElementsAre("f.png", "g.PNG"));
}
