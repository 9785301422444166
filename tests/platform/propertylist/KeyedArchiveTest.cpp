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

Data bytesOf(std::string_view hex) {
    Data bytes;
    for (std::size_t i = 0; i < hex.size(); i += 2)
        bytes.push_back(
            static_cast<std::byte>(std::stoi(std::string(hex.substr(i, 2)), nullptr, 16)));
    return bytes;
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

const Account account{"müller", 443, {"x", "x"}, std::nullopt, true};

} // namespace

TEST(KeyedArchive, KeepsEveryKindOfValue) {
    EXPECT_EQ(back(account), account);
    EXPECT_EQ(back(std::string()), "");
    EXPECT_EQ(back(std::string("$null")), "$null");
    EXPECT_EQ(back(Data{std::byte{7}}), Data{std::byte{7}});
    EXPECT_EQ(back(std::uint8_t{255}), 255);
    EXPECT_EQ(back(std::numeric_limits<std::int64_t>::min()),
              std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(back(0.1f), 0.1f);
    EXPECT_EQ(back(std::optional<std::string>()), std::nullopt);
    EXPECT_EQ(back(std::optional(std::string("x"))), "x");
    EXPECT_EQ(back(Flavour{"lime"}), Flavour{"lime"});
    for (const char* text : {"https://example.org/a?b#c", "file:///tmp/%FF%20x"})
        EXPECT_EQ(back(*URL::make({.string = text})), *URL::make({.string = text}));
    EXPECT_EQ(back(std::vector<std::vector<bool>>{{true}, {}}),
              (std::vector<std::vector<bool>>{{true}, {}}));
    const std::unordered_map<std::string, std::optional<double>> sizes{{"a", 1.5}, {"$b", {}}};
    EXPECT_EQ(back(sizes), sizes);
    const std::map<Flavour, Account> mixed{{{"lime"}, account}, {{"sea"}, {}}};
    EXPECT_EQ(back(mixed), mixed);
    EXPECT_EQ(back(everyKind()), everyKind());
    // A dictionary that looks like the archive's own is still the user's.
    const PropertyList::Dictionary sly{{"CF$UID", 1}, {"$class", "x"}, {"NS.keys", 2}};
    EXPECT_EQ(back(sly), sly);
    EXPECT_EQ(back(PropertyList::Dictionary{{"CF$UID", 1}}),
              (PropertyList::Dictionary{{"CF$UID", 1}}));
    // Of a number it keeps the kind, too.
    EXPECT_TRUE(back(NSNumber(true)).isBool());
    EXPECT_TRUE(back(NSNumber(1)).isInteger());
    EXPECT_TRUE(back(NSNumber(1.0)).isReal());
    EXPECT_EQ(back(NSNumber(42)).doubleValue(), 42.0);
}

TEST(KeyedArchive, HasTheFormThatIsWritten) {
    // Made by another writer of binary lists, with its own layout.
    const Data theirs =
        bytesOf("62706c6973743030d401020304050626295924617263686976657258246f626a656374735424746f70"
                "58247665727369"
                "6f6e5f100f4e534b657965644172636869766572a70708151b1c222555246e756c6cd6090a0b0c0d0e"
                "0f101112131455"
                "24246f64645624636c617373546e616d65546e6f6e6554706f72745474616773098002800380001101"
                "bb8004d2161718"
                "195824636c61737365735a24636c6173736e616d65a2191a574163636f756e74584e534f626a656374"
                "66006d00fc006c"
                "006c00650072d20a1d1e1f5a4e532e6f626a656374738005a2202180068006d216172324a2241a574e"
                "53417272617951"
                "78d1272854726f6f74800112000186a000080011001b0024002900320044004c0052005f0065006c00"
                "710076007b0080"
                "0081008300850087008a008c0091009a00a500a800b000b900c600cb00d600d800db00dd00df00e400"
                "e700ef00f100f4"
                "00f900fb0000000000000201000000000000002a00000000000000000000000000000100");
    EXPECT_EQ(NSKeyedUnarchiver::unarchivedObject<Account>(theirs), account);
    // And the same lists of objects, as far as order and numbers are free.
    const auto ours = propertylist::readBinary(NSKeyedArchiver::archivedData(account),
                                               propertylist::Identifiers::admitted);
    const auto& archive = *ours.as<PropertyList::Dictionary>();
    EXPECT_EQ(archive.at("$top"), (PropertyList::Dictionary{{"root", to(1)}}));
    const auto& objects = *archive.at("$objects").as<PropertyList::Array>();
    EXPECT_EQ(objects[0], "$null");
    const auto& root = *objects[1].as<PropertyList::Dictionary>();
    EXPECT_EQ(root.at("port"), 443);
    EXPECT_EQ(root.at("$$odd"), true);
    EXPECT_EQ(root.at("none"), to(0));
    EXPECT_EQ(root.size(), 6u);
}

TEST(KeyedArchive, GivesOnlyTheClassAskedFor) {
    const Data one = NSKeyedArchiver::archivedData(account);
    const char* const other = "an object is of another class than asked for";
    EXPECT_EQ(refusal<std::string>(one), other);
    EXPECT_EQ(refusal<NSNumber>(one), other);
    EXPECT_EQ(refusal<URL>(one), other);
    EXPECT_EQ(refusal<PropertyList>(one), other);
    EXPECT_EQ(refusal<std::vector<Account>>(one), other);
    EXPECT_EQ(refusal<std::shared_ptr<Node>>(one), other);
    EXPECT_EQ(refusal<Account>(NSKeyedArchiver::archivedData(PropertyList::Dictionary{})), other);
    const Data number = NSKeyedArchiver::archivedData(300);
    EXPECT_EQ(refusal<bool>(number), other);
    EXPECT_EQ(refusal<Data>(number), other);
    EXPECT_EQ(refusal<std::uint8_t>(number), "an integer does not fit its type");
    EXPECT_EQ(refusal<std::uint64_t>(NSKeyedArchiver::archivedData(-1)),
              "an integer does not fit its type");
    EXPECT_EQ(refusal<std::int64_t>(NSKeyedArchiver::archivedData(1.0)), other);
    EXPECT_EQ(refusal<double>(NSKeyedArchiver::archivedData(true)), other);
    EXPECT_EQ(refusal<std::string>(NSKeyedArchiver::archivedData(std::optional<std::string>())),
              other);
    EXPECT_EQ(refusal<Flavour>(NSKeyedArchiver::archivedData("")),
              "a raw value stands for nothing");
}

TEST(KeyedArchive, HasNamesOfItsOwn) {
    NSKeyedArchiver archiver;
    archiver.encode(1, "a");
    archiver.encode(account, "b");
    archiver.encode("last", "a");
    const Data bytes = archiver.encodedData();
    const NSKeyedUnarchiver archive(bytes);
    EXPECT_EQ(archive.decode<std::string>("a"), "last");
    EXPECT_EQ(archive.decode<Account>("b"), account);
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

    leaf->children.push_back(root);
    EXPECT_THROW(NSKeyedArchiver::archivedData(root), ArchiveError);
    leaf->children.clear();

    const Data circle = archiveOf(
        {PropertyList::Dictionary{{"$class", to(3)}, {"children", to(2)}},
         PropertyList::Dictionary{{"$class", to(4)}, {"NS.objects", PropertyList::Array{to(1)}}},
         classNamed("Node"), classNamed("NSArray")});
    EXPECT_EQ(refusal<std::shared_ptr<Node>>(circle), "an object holds itself");
}

TEST(KeyedArchive, AFailedReadingCanBeTriedAsAnotherClass) {
    NSKeyedArchiver archiver;
    archiver.encode(std::make_shared<Account>(account), "it");
    const Data bytes = archiver.encodedData();
    const NSKeyedUnarchiver archive(bytes);
    EXPECT_THROW(archive.decode<std::shared_ptr<Node>>("it"), ArchiveError);
    EXPECT_THROW(archive.decode<std::shared_ptr<Node>>("it"), ArchiveError);
    EXPECT_EQ(*archive.decode<std::shared_ptr<Account>>("it"), account);
}

TEST(KeyedArchive, RefusesWhatCannotBeArchived) {
    const std::pair<std::function<Data()>, const char*> table[] = {
        {[] { return NSKeyedArchiver::archivedData("\xFF"); }, "a text is not UTF-8"},
        {[] { return NSKeyedArchiver::archivedData(~std::uint64_t{0}); },
         "an integer does not fit 64 signed bits"},
        {[] { return NSKeyedArchiver::archivedData(nested(propertylist::maximumDepth + 1)); },
         "the objects are nested too deep"},
    };
    for (const auto& [make, reason] : table) {
        try {
            make();
            ADD_FAILURE() << reason;
        } catch (const ArchiveError& error) {
            EXPECT_STREQ(error.what(), reason);
        }
    }
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
        {archiveOf({to(1)}), "an object is of another class than asked for"},
        {archiveOf({array({to(1)}), classNamed("NSArray")}), "the objects are nested too deep"},
        {archiveOf({array({to(99)}), classNamed("NSArray")}), "an object is missing"},
        {archiveOf({array({"bare"}), classNamed("NSArray")}), "a field of an object is damaged"},
        {archiveOf({array({}), classNamed("Other")}),
         "an object is of another class than asked for"},
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
    EXPECT_EQ(refusal<PropertyList>(archiveOf(doubling)),
              "the archive unfolds to far more than its size");
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
    const PropertyList list = PropertyList::Array(300, std::string(100'000, 'x'));
    EXPECT_EQ(propertylist::decode(*propertylist::encode(list, propertylist::Format::binary)),
              list);
}
