#include "Lists.h"
#include <tests/Testing.h>

#include <zorvan/platform/propertylist/NSKeyedArchiver.h>
#include <zorvan/platform/propertylist/NSKeyedUnarchiver.h>
#include <zorvan/platform/propertylist/internal/Codecs.h>

namespace {

struct Account {
    static constexpr std::string_view archivedClassName = "Account";
    std::string name;
    std::int64_t port = 0;
    std::vector<std::string> tags;
    std::optional<double> quota;
    bool odd = false;

    void encode(NSKeyedArchiver& coder) const {
        coder.encode(name, "name");
        coder.encode(port, "port");
        coder.encode(tags, "tags");
        coder.encode(quota, "none");
        coder.encode(odd, "$odd");
    }
    static Account decode(const NSKeyedUnarchiver& coder) {
        return {coder.decode<std::string>("name"), coder.decode<std::int64_t>("port"),
                coder.decode<std::vector<std::string>>("tags"),
                coder.decodeIfPresent<double>("none"), coder.decode<bool>("$odd")};
    }
    friend bool operator==(const Account&, const Account&) = default;
};

/// Of which nothing is given back.
struct Lost {
    static constexpr std::string_view archivedClassName = "Lost";
    void encode(NSKeyedArchiver&) const {}
    static std::shared_ptr<Lost> decode(const NSKeyedUnarchiver&) { return nullptr; }
};

/// Shared by reference, and able to hold others of its class.
struct Node {
    static constexpr std::string_view archivedClassName = "Node";
    std::vector<std::shared_ptr<Node>> children;

    void encode(NSKeyedArchiver& coder) const { coder.encode(children, "children"); }
    static std::shared_ptr<Node> decode(const NSKeyedUnarchiver& coder) {
        return std::make_shared<Node>(
            Node{coder.decode<std::vector<std::shared_ptr<Node>>>("children")});
    }
};

struct Flavour {
    struct RawValue {
        Required<std::string_view> rawValue;
    };
    std::string text;
    static std::optional<Flavour> make(RawValue argument) {
        if (argument.rawValue.value.empty())
            return std::nullopt;
        return Flavour{std::string(argument.rawValue.value)};
    }
    const std::string& rawValue() const { return text; }
    friend auto operator<=>(const Flavour&, const Flavour&) = default;
};

template <class T>
T back(const T& value) {
    return NSKeyedUnarchiver::unarchivedObject<T>(NSKeyedArchiver::archivedData(value));
}

template <class T>
std::string refusal(std::span<const std::byte> archive) {
    try {
        NSKeyedUnarchiver::unarchivedObject<T>(archive);
        return "read";
    } catch (const ArchiveError& error) {
        return error.what();
    }
}

PropertyList to(int object) { return PropertyList::Dictionary{{"CF$UID", object}}; }

PropertyList classNamed(const char* name) {
    return PropertyList::Dictionary{{"$classname", name}, {"$classes", PropertyList::Array{name}}};
}

/// An archive of the given objects, the first of which is the root.
Data archiveOf(PropertyList::Array objects) {
    objects.insert(objects.begin(), "$null");
    return propertylist::writeBinary(
        PropertyList::Dictionary{{"$archiver", "NSKeyedArchiver"},
                                 {"$version", 100000},
                                 {"$top", PropertyList::Dictionary{{"root", to(1)}}},
                                 {"$objects", std::move(objects)}},
        propertylist::Identifiers::admitted);
}

const std::string otherClass = "an object is of another class than asked for";

const Account account{"müller", 443, {"x", "x"}, std::nullopt, true};

} // namespace

TEST(KeyedArchive, KeepsEveryKindOfValue) {
    EXPECT_EQ(back(account), account);
    for (const std::string text : {"", "$null"})
        EXPECT_EQ(back(text), text);
    EXPECT_EQ(back(std::uint8_t{255}), 255);
    EXPECT_EQ(back(0.1f), 0.1f);
    EXPECT_EQ(back(std::optional<std::string>()), std::nullopt);
    for (const char* text : {"https://example.org/a?b#c", "file:///tmp/%FF%20x"})
        EXPECT_EQ(back(*URL::make({.string = text})), *URL::make({.string = text}));
    const std::vector<std::vector<bool>> rows{{true}, {}};
    EXPECT_EQ(back(rows), rows);
    const std::unordered_map<std::string, std::optional<double>> sizes{{"a", 1.5}, {"$b", {}}};
    EXPECT_EQ(back(sizes), sizes);
    const std::map<Flavour, Account> mixed{{{"lime"}, account}, {{"sea"}, {}}};
    EXPECT_EQ(back(mixed), mixed);
    EXPECT_EQ(back(everyKind()), everyKind());
    // A dictionary that looks like the archive's own is still the user's.
    using Dictionary = PropertyList::Dictionary;
    for (const Dictionary& sly :
         {Dictionary{{"CF$UID", 1}, {"$class", "x"}, {"NS.keys", 2}}, Dictionary{{"CF$UID", 1}}})
        EXPECT_EQ(back(sly), sly);
    // Of a number it keeps the kind, too.
    EXPECT_TRUE(back(NSNumber(true)).isBool());
    EXPECT_TRUE(back(NSNumber(1)).isInteger());
    EXPECT_TRUE(back(NSNumber(1.0)).isReal());
}

TEST(KeyedArchive, HasTheFormThatIsWritten) {
    // Made by another writer of binary lists, with its own layout.
    const auto theirs = decoded(
        "<plist><data>"
        "YnBsaXN0MDDUAQIDBAUGJilZJGFyY2hpdmVyWCRvYmplY3RzVCR0b3BYJHZlcnNpb25fEA9OU0tleWVkQXJjaGl2"
        "ZXKnBwgVGxwiJVUkbnVsbNYJCgsMDQ4PEBESExRVJCRvZGRWJGNsYXNzVG5hbWVUbm9uZVRwb3J0VHRhZ3MJgAKA"
        "A4AAEQG7gATSFhcYGVgkY2xhc3Nlc1okY2xhc3NuYW1lohkaV0FjY291bnRYTlNPYmplY3RmAG0A/ABsAGwAZQBy"
        "0godHh9aTlMub2JqZWN0c4AFoiAhgAaABtIWFyMkoiQaV05TQXJyYXlReNEnKFRyb290gAESAAGGoAAIABEAGwAk"
        "ACkAMgBEAEwAUgBfAGUAbABxAHYAewCAAIEAgwCFAIcAigCMAJEAmgClAKgAsAC5AMYAywDWANgA2wDdAN8A5ADn"
        "AO8A8QD0APkA+wAAAAAAAAIBAAAAAAAAACoAAAAAAAAAAAAAAAAAAAEA"
        "</data></plist>");
    EXPECT_EQ(NSKeyedUnarchiver::unarchivedObject<Account>(*theirs->as<Data>()), account);
}

TEST(KeyedArchive, GivesOnlyTheClassAskedFor) {
    const Data one = NSKeyedArchiver::archivedData(account);
    const Data number = NSKeyedArchiver::archivedData(300);
    const Data none = NSKeyedArchiver::archivedData(std::optional<std::string>());
    for (const std::string& refused :
         {refusal<std::string>(one), refusal<NSNumber>(one), refusal<PropertyList>(one),
          refusal<std::vector<Account>>(one), refusal<std::shared_ptr<Node>>(one),
          refusal<bool>(number), refusal<Data>(number), refusal<std::string>(none),
          refusal<std::int64_t>(NSKeyedArchiver::archivedData(1.0)),
          refusal<double>(NSKeyedArchiver::archivedData(true))})
        EXPECT_EQ(refused, otherClass);
    for (const std::string& refused :
         {refusal<std::uint8_t>(number), refusal<std::uint64_t>(NSKeyedArchiver::archivedData(-1))})
        EXPECT_EQ(refused, "an integer does not fit its type");
    EXPECT_EQ(refusal<Flavour>(NSKeyedArchiver::archivedData("")),
              "a raw value stands for nothing");
}

TEST(KeyedArchive, HasNamesOfItsOwn) {
    NSKeyedArchiver archiver;
    archiver.encode(1, "a");
    archiver.encode(std::make_shared<Account>(account), "b");
    archiver.encode("last", "a");
    const Data bytes = archiver.encodedData();
    const NSKeyedUnarchiver archive(bytes);
    EXPECT_EQ(archive.decode<std::string>("a"), "last");
    // What failed can be tried as another class.
    for (int i = 0; i < 2; ++i)
        EXPECT_THAT([&] { archive.decode<std::shared_ptr<Node>>("b"); },
                    testing::ThrowsMessage<ArchiveError>(otherClass));
    EXPECT_EQ(*archive.decode<std::shared_ptr<Account>>("b"), account);
    EXPECT_FALSE(archive.contains("c"));
    EXPECT_EQ(archive.decodeIfPresent<int>("c"), std::nullopt);
    EXPECT_EQ(refusal<int>(bytes), "there is nothing under the name \"root\"");
}

TEST(KeyedArchive, SharedObjectsStaySharedAndCyclesAreRefused) {
    const auto leaf = std::make_shared<Node>();
    const auto root = std::make_shared<Node>(Node{{leaf, nullptr, leaf}});
    const auto read = back(root);
    ASSERT_EQ(read->children.size(), 3u);
    EXPECT_EQ(read->children[0], read->children[2]);
    EXPECT_EQ(read->children[1], nullptr);

    const std::vector texts(40, std::make_shared<std::string>(1 << 20, 'x'));
    const auto textsRead = back(texts);
    EXPECT_EQ(textsRead.front(), textsRead.back());
    EXPECT_EQ(*textsRead.back(), *texts.back());
    EXPECT_EQ(back(std::vector(2, std::make_shared<Lost>())).back(), nullptr);

    leaf->children.push_back(root);
    EXPECT_THROW(NSKeyedArchiver::archivedData(root), ArchiveError);
    leaf->children.clear();

    const Data circle = archiveOf(
        {PropertyList::Dictionary{{"$class", to(3)}, {"children", to(2)}},
         PropertyList::Dictionary{{"$class", to(4)}, {"NS.objects", PropertyList::Array{to(1)}}},
         classNamed("Node"), classNamed("NSArray")});
    EXPECT_EQ(refusal<std::shared_ptr<Node>>(circle), "an object holds itself");
}

TEST(KeyedArchive, RefusesWhatCannotBeArchived) {
    const auto reason = [](const auto& value) -> std::string {
        try {
            NSKeyedArchiver::archivedData(value);
            return "archived";
        } catch (const ArchiveError& error) {
            return error.what();
        }
    };
    EXPECT_EQ(reason("\xFF"), "a text is not UTF-8");
    EXPECT_EQ(reason(~std::uint64_t{0}), "an integer does not fit 64 signed bits");
    EXPECT_EQ(reason(nested(propertylist::maximumDepth + 1)), "the objects are nested too deep");
    EXPECT_EQ(back(nested(propertylist::maximumDepth)), nested(propertylist::maximumDepth));
}

TEST(KeyedArchive, RefusesDamage) {
    using List = PropertyList;
    const auto array = [](List::Array contents) {
        return List::Dictionary{{"$class", to(2)}, {"NS.objects", std::move(contents)}};
    };
    const std::pair<Data, const char*> table[] = {
        {{}, "the file is cut short"},
        {propertylist::writeBinary(List::Dictionary{{"$archiver", "x"}}),
         "it is a keyed archive of an unknown kind"},
        {archiveOf({}), "an object is missing"},
        {archiveOf({array({to(1)}), classNamed("NSArray")}), "the objects are nested too deep"},
        {archiveOf({array({"bare"}), classNamed("NSArray")}), "a field of an object is damaged"},
        {archiveOf({List::Dictionary{{"$class", to(7)}}}), "the class of an object is missing"},
        {archiveOf({List::Dictionary{{"$class", to(2)}}, classNamed("NSArray")}),
         "an array is damaged"},
        {archiveOf({List::Dictionary{{"$class", to(2)},
                                     {"NS.keys", List::Array{to(0)}},
                                     {"NS.objects", List::Array{}}},
                    classNamed("NSDictionary")}),
         "a dictionary is damaged"},
    };
    for (const auto& [archive, reason] : table)
        EXPECT_EQ(refusal<PropertyList>(archive), reason);

    // Each object holds the next one twice: read out in full, it would be 2^99 of them.
    List::Array doubling;
    for (int i = 1; i < 100; ++i)
        doubling.emplace_back(List::Dictionary{{"$class", to(101)},
                                               {"NS.objects", List::Array{to(i + 1), to(i + 1)}}});
    doubling.emplace_back(1);
    doubling.emplace_back(classNamed("NSArray"));
    // The same numbers many times over.
    const List::Array square = {array(List::Array(2000, to(3))), classNamed("NSArray"),
                                array(List::Array(2000, 1))};
    // The same text and data, each copied many times over.
    const List::Array copies = {array(List::Array(40, to(3))), classNamed("NSArray"),
                                std::string(1 << 20, 'x')};
    const List::Array dataCopies = {array(List::Array(40, to(3))), classNamed("NSArray"),
                                    Data(1 << 20)};
    for (const List::Array& objects : {doubling, square, copies, dataCopies})
        EXPECT_EQ(refusal<PropertyList>(archiveOf(objects)),
                  "the archive unfolds to far more than its size");
}

TEST(KeyedArchive, GivesAValueAsOftenAsItIsAskedFor) {
    const std::vector<int> list(10000, 1);
    const std::string text(1 << 20, 'x');
    const NSKeyedUnarchiver lists(NSKeyedArchiver::archivedData(list));
    const NSKeyedUnarchiver texts(NSKeyedArchiver::archivedData(text));
    const NSKeyedUnarchiver numbers(NSKeyedArchiver::archivedData(7));
    for (int i = 0; i < 200; ++i) {
        ASSERT_EQ(lists.decode<std::vector<int>>("root"), list);
        ASSERT_EQ(texts.decode<std::string>("root"), text);
    }
    for (int i = 0; i < 1'200'000; ++i)
        ASSERT_EQ(numbers.decode<int>("root"), 7);
}

TEST(KeyedArchive, FlippedBytesNeverDoHarm) {
    const Data whole =
        NSKeyedArchiver::archivedData(std::map<std::string, Account>{{"a", account}});
    std::mt19937 random(1);
    for (int i = 0; i < 5000; ++i) {
        Data damaged = whole;
        for (unsigned flips = random() % 4 + 1; flips > 0; --flips)
            damaged[random() % damaged.size()] = static_cast<std::byte>(random());
        refusal<std::map<std::string, Account>>(damaged);
        refusal<PropertyList>(damaged);
    }
}

TEST(KeyedArchive, ManyEqualTextsCanBeReadBack) {
    const std::vector<std::string> texts(300, std::string(100'000, 'x'));
    EXPECT_EQ(back(texts), texts);
    const std::vector<std::map<std::string, int>> points(100'000, {{"width", 1}, {"height", 2}});
    EXPECT_EQ(back(points), points);
}
