#include "TemporaryFolder.h"
#include <tests/Testing.h>

#include <zorvan/files/FileIterator.h>

#include <ranges>

using testing::UnorderedElementsAreArray;

static_assert(std::ranges::input_range<FileIterator>);

namespace {

class FileIteratorTest : public testing::Test {
protected:
    std::vector<std::string> all(FileIterator& iterator) const {
        std::vector<URL> urls;
        std::ranges::copy(iterator, std::back_inserter(urls));
        return folder.relative(urls);
    }

    TemporaryFolder folder{TemporaryFolder::fastParent()};
    const std::shared_ptr<FileIterator> overFolder = FileIterator::create({folder.url()});
};

} // namespace

TEST_F(FileIteratorTest, OpensWhatItsOptionsSay) {
    const std::vector<std::string> everything{"a", ".h/x", "s/x", "s/.h", "p.RTFD/x"};
    folder.make(everything);
    EXPECT_THAT(all(*overFolder), ElementsAre("a"));
    for (unsigned bits = 0; bits < 8; ++bits) {
        overFolder->setSkipSubdirectoryDescendants(bits & 1);
        overFolder->setSkipPackageDescendants(bits & 2);
        overFolder->setSkipHiddenFiles(bits & 4);
        auto expected = everything;
        std::erase_if(expected, [bits](const std::string& name) {
            return ((bits & 1) && name.find('/') != name.npos) ||
                   ((bits & 2) && name == "p.RTFD/x") ||
                   ((bits & 4) && name.find(".h") != name.npos);
        });
        EXPECT_THAT(all(*overFolder), UnorderedElementsAreArray(expected)) << bits;
    }
}

TEST_F(FileIteratorTest, VisitsItsRootsInOrderAndStartsAgain) {
    folder.make({"z/1.txt", "a.txt", "empty/"});
    const auto iterator = FileIterator::create(
        {folder.url("z"), folder.url("missing"), folder.url("a.txt"), folder.url("empty"),
         *URL::make({.string = "http://x/etc/passwd"}), folder.url("a.txt")});
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(iterator->index(), -1);
        EXPECT_EQ(iterator->next(), folder.url("z/1.txt"));
        EXPECT_TRUE(iterator->enumerator());
        EXPECT_EQ(*iterator->begin(), folder.url("a.txt")) << "loops share the state of the calls";
        EXPECT_EQ(iterator->index(), 2);
        EXPECT_FALSE(iterator->enumerator());
        EXPECT_EQ(iterator->next(), folder.url("a.txt"));
        EXPECT_TRUE(iterator->begin() == iterator->end());
    }
    EXPECT_FALSE(FileIterator::create({})->next());
}

TEST_F(FileIteratorTest, FiltersByExtensionOrType) {
    const std::string odd = "caf\xE9 \n\x01%41.jpg";
    const std::vector<std::string> files{"a.txt", "b.png", "c.pdf", "d.TIFF",
                                         "e",     ".pdf",  odd,     "g.ÜBÉR"};
    folder.make(files);
    overFolder->setSkipHiddenFiles(false);
    const struct {
        FileIterator::Extensions extensions;
        FileIterator::Types types;
        std::vector<std::string> names;
    } table[] = {
        {{"tiff", "PDF"}, {}, {"d.TIFF"}},
        {{""}, {}, {"e", ".pdf"}},
        {{"übér"}, {}, {"g.ÜBÉR"}},
        {{}, {UTIType::image()}, {"b.png", "d.TIFF", odd}},
        {{"txt"}, {UTIType::pdf(), UTIType::png()}, {"a.txt", "b.png", "c.pdf"}},
        {{}, {}, files},
    };
    for (const auto& [extensions, types, names] : table) {
        overFolder->setAllowedFiles(extensions);
        overFolder->setAllowedTypes(types);
        EXPECT_THAT(all(*overFolder), UnorderedElementsAreArray(names));
    }
}

TEST_F(FileIteratorTest, FollowsLinksToFilesUnlessToldNotTo) {
    folder.make({"real/a.txt", "links/", "links/file.txt -> ../real/a.txt",
                 "links/folder -> ../real", "links/broken.txt -> nowhere", "links/loop -> loop",
                 "root -> real"});
    ASSERT_EQ(mkfifo((folder.path() / "real/pipe").c_str(), 0600), 0);
    // A root that is a link to a folder stands for the folder; one to a file for itself.
    const auto iterator =
        FileIterator::create({folder.url("links"), folder.url("root"), folder.url("links/file.txt"),
                              folder.url("links/broken.txt")});
    iterator->setSkipSubdirectoryDescendants(false);
    EXPECT_THAT(all(*iterator), UnorderedElementsAre("links/file.txt", "real/a.txt", "real/pipe",
                                                     "links/file.txt"));
    iterator->setSkipAlias(true);
    EXPECT_THAT(all(*iterator), UnorderedElementsAre("real/a.txt", "real/pipe"));
}

// The names of a folder are read many at once; what became of a file since then is seen.
TEST_F(FileIteratorTest, PassesOverWhatVanishesAfterBeingListed) {
    folder.file("target");
    for (const std::string now : {"nothing", "/", " -> ../target"}) {
        folder.make({"in/a.txt", "in/b.txt", "in/c.txt"});
        std::set<std::string> names{"in/a.txt", "in/b.txt", "in/c.txt"};
        const auto iterator = FileIterator::create({folder.url("in")});
        iterator->setSkipAlias(true);
        names.erase(folder.relative(*iterator->next()));
        const std::string changed = names.extract(names.begin()).value();
        fs::remove(folder.path() / changed);
        if (now != "nothing")
            folder.make({changed + now});
        EXPECT_THAT(all(*iterator), UnorderedElementsAreArray(names)) << now;
        fs::remove_all(folder.path() / "in");
    }
}
