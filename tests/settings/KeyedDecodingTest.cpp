#include <tests/Testing.h>

#include "Examples.h"

#include <zorvan/platform/propertylist/NSKeyedArchiver.h>
#include <zorvan/platform/propertylist/NSKeyedUnarchiver.h>
#include <zorvan/settings/KeyedDecodingContainer.h>
#include <zorvan/settings/KeyedJSONContainer.h>

#include <unordered_map>

namespace {

/// With the raw values "a" and "b".
class Side {
public:
    struct RawValue {
        std::string_view rawValue;
    };
    static std::optional<Side> make(RawValue argument) {
        if (argument.rawValue != "a" && argument.rawValue != "b")
            return std::nullopt;
        return Side(argument.rawValue == "b");
    }
    explicit Side(bool isB) : isB_(isB) {}
    std::string_view rawValue() const { return isB_ ? "b" : "a"; }
    friend bool operator==(const Side&, const Side&) = default;

private:
    bool isB_;
};

} // namespace

template <>
struct std::hash<Side> {
    std::size_t operator()(const Side& side) const noexcept { return side == Side(true); }
};

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

using Sides = std::unordered_map<Side, std::int64_t>;
using Texts = std::map<std::string, std::int64_t>;

/// The same values in an archive and in JSON.
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
    archiver.encode(Sides{{Side(false), 1}, {Side(true), 2}}, "list");
    archiver.encode(std::vector<std::string>{"c", "1"}, "badList");
    archiver.encode(std::int64_t{7}, "number");
    archiver.encode("t", "text");
    return NSKeyedUnarchiver(archiver.encodedData());
}

template <class Container>
void decodesDictionaries(const Container& container) {
    const Sides both{{Side(false), 1}, {Side(true), 2}};
    EXPECT_EQ((decodeRawKeyedDict<Side, std::int64_t>(container, "good")), both);
    EXPECT_EQ((decodeRawKeyedDict<Side, std::int64_t>(container, "empty")), Sides());
    EXPECT_EQ((decodeRawKeyedDict<Side, std::int64_t>(container, "list")), both);
    try {
        decodeRawKeyedDict<Side, std::int64_t>(container, "bad");
        FAIL();
    } catch (const KeyedDecodingContainerError& error) {
        EXPECT_EQ(error, KeyedDecodingContainerError::unexpectedRawRepresentableKeyValue);
        EXPECT_STREQ(error.what(), "unexpectedRawRepresentableKeyValue");
    }
    // The container's own errors, those of the second attempt, pass through.
    EXPECT_THROW((decodeRawKeyedDict<Side, std::int64_t>(container, "badList")),
                 std::runtime_error);
    EXPECT_THROW((decodeRawKeyedDict<Side, std::int64_t>(container, "number")), std::runtime_error);
    EXPECT_THROW((decodeRawKeyedDict<Side, std::int64_t>(container, "not there")),
                 std::runtime_error);
}

template <class Container>
void decodesImplicitly(const Container& container) {
    const std::int64_t number = implicitDecode(container, "number");
    const std::string text = implicitDecode(container, "text");
    EXPECT_EQ(number, 7);
    EXPECT_EQ(text, "t");
    EXPECT_THROW(
        [&] {
            const std::int64_t wrong = implicitDecode(container, "text");
            (void)wrong;
        }(),
        std::runtime_error);
}

} // namespace

TEST(KeyedDecoding, OfJSON) {
    decodesDictionaries(json());
    decodesImplicitly(json());
}

TEST(KeyedDecoding, OfArchives) {
    decodesDictionaries(archive());
    decodesImplicitly(archive());
    const std::int64_t number = implicitDecode(archive(), "number"); // of a temporary
    EXPECT_EQ(number, 7);
    const auto pending = implicitDecode(archive(), "text");
    EXPECT_EQ(std::string(pending), "t"); // which it keeps
}

TEST(KeyedDecoding, OfKeysThatAreAnEnumClass) {
    using Letters = std::unordered_map<Letter, std::int64_t>;
    const Letters expected{{Letter::a, 1}, {Letter::b, 2}};
    NSKeyedArchiver archiver;
    archiver.encode(expected, "letters");
    archiver.encode(std::map<std::string, Letter>{{"a", Letter::b}}, "values");
    const NSKeyedUnarchiver letters(archiver.encodedData());
    EXPECT_EQ((decodeRawKeyedDict<Letter, std::int64_t>(letters, "letters")), expected);
    EXPECT_EQ((decodeRawKeyedDict<Letter, std::int64_t>(archive(), "good")), expected);
    EXPECT_EQ((decodeRawKeyedDict<Letter, std::int64_t>(json(), "list")), expected);
    EXPECT_EQ((decodeRawKeyedDict<Letter, Letter>(letters, "values")).at(Letter::a), Letter::b);
}

TEST(KeyedDecoding, DropsWhateverTheFirstAttemptThrows) {
    NSKeyedArchiver archiver;
    archiver.encode(std::map<std::string, Picky>{{"a", {-1}}}, "texts");
    const NSKeyedUnarchiver picky(archiver.encodedData());
    // The second attempt finds no list, and says so.
    EXPECT_THROW((decodeRawKeyedDict<Letter, Picky>(picky, "texts")), ArchiveError);
}
