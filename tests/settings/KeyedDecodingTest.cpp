#include <tests/Testing.h>

#include "Examples.h"

#include <zorvan/platform/propertylist/NSKeyedArchiver.h>
#include <zorvan/platform/propertylist/NSKeyedUnarchiver.h>
#include <zorvan/settings/KeyedDecodingContainer.h>
#include <zorvan/settings/KeyedJSONContainer.h>

#include <unordered_map>

/// Its keyed form is refused by itself, with an error that is no error of a container.
struct Picky {
    static constexpr std::string_view archivedClassName = "Picky";
    std::int64_t number = 0;
    void encode(NSKeyedArchiver& coder) const { coder.encode(number, "number"); }
    static Picky decode(const NSKeyedUnarchiver& coder) {
        const auto number = coder.decode<std::int64_t>("number");
        if (number < 0)
            throw number;
        return {number};
    }
};

namespace {

using Letters = std::unordered_map<Letter, std::int64_t>;
using Texts = std::map<std::string, std::int64_t>;

const Letters both{{Letter::a, 1}, {Letter::b, 2}};

/// The same values in JSON and in an archive.
KeyedJSONContainer json() {
    const std::string_view text =
        R"({"good": {"a": 1, "b": 2}, "bad": {"a": 1, "c": 3}, "empty": {},
        "list": ["a", 1, "b", 2], "badList": ["c", 1], "number": 7, "text": "t"})";
    return KeyedJSONContainer(std::as_bytes(std::span(text)));
}

NSKeyedUnarchiver archive() {
    NSKeyedArchiver archiver;
    archiver.encode(Texts{{"a", 1}, {"b", 2}}, "good");
    archiver.encode(Texts{{"a", 1}, {"c", 3}}, "bad");
    archiver.encode(Texts(), "empty");
    archiver.encode(both, "list");
    archiver.encode(std::vector<std::string>{"c", "1"}, "badList");
    archiver.encode(std::int64_t{7}, "number");
    archiver.encode("t", "text");
    archiver.encode(std::map<std::string, Picky>{{"a", {-1}}}, "picky");
    return NSKeyedUnarchiver(archiver.encodedData());
}

template <class Container>
void decodes(const Container& container) {
    const auto decoded = [&](std::string_view key) {
        return decodeRawKeyedDict<Letter, std::int64_t>(container, key);
    };
    EXPECT_EQ(decoded("good"), both);
    EXPECT_EQ(decoded("empty"), Letters());
    EXPECT_EQ(decoded("list"), both);
    try {
        decoded("bad");
        FAIL();
    } catch (const KeyedDecodingContainerError& error) {
        EXPECT_EQ(error, KeyedDecodingContainerError::unexpectedRawRepresentableKeyValue);
        EXPECT_STREQ(error.what(), "unexpectedRawRepresentableKeyValue");
    }
    // The container's own errors, those of the second attempt, pass through.
    for (const char* key : {"badList", "number", "not there"})
        EXPECT_THROW(decoded(key), std::runtime_error) << key;

    const std::int64_t number = implicitDecode(container, "number");
    const std::string text = implicitDecode(container, "text");
    EXPECT_EQ(number, 7);
    EXPECT_EQ(text, "t");
    EXPECT_THROW(static_cast<std::int64_t>(implicitDecode(container, "text")), std::runtime_error);
}

} // namespace

TEST(KeyedDecoding, OfJSON) { decodes(json()); }

TEST(KeyedDecoding, OfArchives) {
    decodes(archive());
    const auto pending = implicitDecode(archive(), "text");
    EXPECT_EQ(std::string(pending), "t"); // of a temporary, which it keeps
    // Whatever the first attempt throws is dropped. The second finds no list, and says so.
    EXPECT_THROW((decodeRawKeyedDict<Letter, Picky>(archive(), "picky")), ArchiveError);
}
