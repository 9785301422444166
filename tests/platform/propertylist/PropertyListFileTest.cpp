#include "Lists.h"
#include <tests/Testing.h>
#include <tests/files/TemporaryFolder.h>

using propertylist::Format;

namespace {

class PropertyListFile : public testing::TestWithParam<Format> {
protected:
    std::string path(const std::string& name) const { return folder.path() / name; }

    const TemporaryFolder folder;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Forms, PropertyListFile, testing::Values(Format::xml, Format::binary));

TEST_P(PropertyListFile, KeepsEverything) {
    const PropertyList list = everyKind();
    std::string reason;
    ASSERT_TRUE(propertylist::writeFile(list, GetParam(), path("a.plist"), &reason)) << reason;
    const auto back = propertylist::readFile(path("a.plist"), &reason);
    ASSERT_TRUE(back) << reason;
    EXPECT_EQ(*back, list);
    // Equality is by value; the kind of a number has to come back too.
    const auto& numbers =
        *back->as<PropertyList::Dictionary>()->at("numbers").as<PropertyList::Array>();
    EXPECT_TRUE(numbers.front().as<NSNumber>()->isInteger());
    EXPECT_TRUE(numbers.back().as<NSNumber>()->isBool());
    EXPECT_TRUE(numbers[8].as<NSNumber>()->isReal());
    EXPECT_EQ(folder.count(), 1);
}

TEST_P(PropertyListFile, BoundsTheDepth) {
    std::string reason;
    const auto deepest = propertylist::encode(nested(propertylist::maximumDepth), GetParam());
    ASSERT_TRUE(deepest);
    EXPECT_TRUE(propertylist::decode(*deepest));
    EXPECT_FALSE(propertylist::encode(nested(propertylist::maximumDepth + 1), GetParam(), &reason));
    EXPECT_EQ(reason, "the list is too deep");

    for (const std::size_t depth : {propertylist::maximumDepth + 1, std::size_t{1'000'000}}) {
        std::string document = "<plist>";
        for (std::size_t i = 0; i < depth; ++i)
            document += "<array>";
        EXPECT_FALSE(decoded(document, &reason));
        EXPECT_EQ(reason, "the list is too deep");
    }
}

TEST_P(PropertyListFile, LeavesTheOldFileAfterAFailure) {
    ASSERT_TRUE(propertylist::writeFile(1, GetParam(), path("a.plist")));
    std::string reason;
    EXPECT_FALSE(propertylist::writeFile("\xFF", GetParam(), path("a.plist"), &reason));
    EXPECT_EQ(reason, "a text is not UTF-8");
    EXPECT_EQ(propertylist::readFile(path("a.plist")), PropertyList(1));
    EXPECT_FALSE(propertylist::writeFile(1, GetParam(), path("missing/a.plist"), &reason));
    EXPECT_EQ(reason, "No such file or directory");
    EXPECT_EQ(folder.count(), 1);
}

TEST_P(PropertyListFile, RefusesWhatIsNoFile) {
    std::string reason;
    EXPECT_FALSE(propertylist::readFile(path("missing"), &reason));
    EXPECT_EQ(reason, "No such file or directory");
    ::mkfifo(path("pipe").c_str(), 0600);
    EXPECT_FALSE(propertylist::readFile(path("pipe"), &reason));
    EXPECT_EQ(reason, "it is no regular file");
    std::ofstream(path("huge")).put(' ');
    fs::resize_file(path("huge"), propertylist::maximumFileSize + 1);
    EXPECT_FALSE(propertylist::readFile(path("huge"), &reason));
    EXPECT_EQ(reason, "the file is too large");
}
