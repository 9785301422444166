#include "Examples.h"
#include "Store.h"

#include <zorvan/settings/BundleVersionUDC.h>
#include <zorvan/settings/EnumCoders.h>
#include <zorvan/settings/GeometryCoders.h>
#include <zorvan/settings/ImageExportFormatUDC.h>
#include <zorvan/settings/JSONCodableUDC.h>
#include <zorvan/settings/MediaIdentifierCoders.h>
#include <zorvan/settings/NumberCoders.h>
#include <zorvan/settings/ObjectCoders.h>
#include <zorvan/settings/TimeCoders.h>
#include <zorvan/settings/URLCoders.h>

#include <tests/bytesOf.h>

namespace {

/// Its coding throws what this library does not.
struct Moody {
    friend bool operator==(const Moody&, const Moody&) = default;
};

} // namespace

template <>
struct zorvan::JSONCoding<Moody> {
    static JSON encode(const Moody&) { throw std::out_of_range("mood"); }
    static Moody decode(const JSON&) { throw std::out_of_range("mood"); }
};

namespace {

using Stored = std::optional<PropertyList>;
using Dictionary = PropertyList::Dictionary;
using Array = PropertyList::Array;

/// As the identifiers of media are.
struct Identifier {
    struct RawValue {
        std::string rawValue;
    };
    explicit Identifier(RawValue argument) : raw(std::move(argument.rawValue)) {}
    std::string_view rawValue() const { return raw; }
    friend bool operator==(const Identifier&, const Identifier&) = default;
    std::string raw;
};

class Coders : public Store {
protected:
    /// The exact stored form, the way back in another start, and what absence does.
    template <class Coder>
    void keeps(const typename Coder::CodableType& value, const PropertyList& form,
               bool removes = true) {
        const Coder coder;
        coder.encode(value, store(), "k");
        reopen();
        const Stored stored = store().objectForKey("k");
        ASSERT_EQ(stored, form);
        const auto* number = form.as<NSNumber>();
        if (number) {
            EXPECT_EQ(stored->as<NSNumber>()->isBool(), number->isBool());
            EXPECT_EQ(stored->as<NSNumber>()->isReal(), number->isReal());
        }
        EXPECT_TRUE(coder.decode(store(), "k") == value);
        coder.encode(std::nullopt, store(), "k");
        EXPECT_EQ(store().objectForKey("k"), removes ? Stored() : Stored(form));
        store().removeObjectForKey("k");
    }

    /// What a stored object reads as.
    template <class Coder>
    void reads(const Stored& stored, const std::optional<typename Coder::CodableType>& value) {
        store().setObject(stored, "k");
        EXPECT_TRUE(Coder().decode(store(), "k") == value);
        EXPECT_EQ(store().objectForKey("k"), stored); // reading changes nothing
    }
};

} // namespace

TEST_F(Coders, KeepNumbers) {
    keeps<BoolUDC>(false, false);
    keeps<BoolUDC>(true, true);
    for (const std::int64_t value : {std::int64_t{0}, std::numeric_limits<std::int64_t>::min(),
                                     std::numeric_limits<std::int64_t>::max()})
        keeps<IntUDC>(value, value);
    for (const std::uint64_t value : {std::uint64_t{0}, std::uint64_t{1} << 63, ~std::uint64_t{0}})
        keeps<UIntUDC>(value, value);
    keeps<FloatUDC>(0.1f, double{0.1f});
    keeps<DoubleUDC>(2.0, 2.0);
    keeps<CGFloatUDC>(-0.1, -0.1);
    reads<BoolUDC>({}, {});
    reads<BoolUDC>("yes", true);
    reads<BoolUDC>(Array(), false);
    reads<IntUDC>({}, {});
    reads<IntUDC>("42", 42);
    reads<UIntUDC>({}, {});
    reads<UIntUDC>(-1, {});
    reads<UIntUDC>("7", 7);
    reads<FloatUDC>({}, {});
    reads<DoubleUDC>({}, {});
    reads<CGFloatUDC>("1.5", 1.5);
    reads<CGFloatUDC>({}, {});
}

TEST_F(Coders, KeepGeometry) {
    keeps<CGPointUDC>(CGPoint(1.5, -2), Dictionary{{"x", 1.5}, {"y", -2.0}});
    keeps<CGSizeUDC>(CGSize(3, 4), Dictionary{{"width", 3.0}, {"height", 4.0}});
    keeps<CGRectUDC>(CGRect(10, 20, 30, 40),
                     Dictionary{{"x", 10.0}, {"y", 20.0}, {"width", 30.0}, {"height", 40.0}});
    CGRectUDC().encode(CGRect(10, 0, -4, 5), store(), "k");
    EXPECT_EQ(store().objectForKey("k"),
              Stored(Dictionary{{"x", 10.0}, {"y", 0.0}, {"width", 4.0}, {"height", 5.0}}));
    EXPECT_TRUE(CGRectUDC().decode(store(), "k") == CGRect(10, 0, 4, 5));
    reads<CGPointUDC>(Dictionary{{"x", 1}, {"y", true}, {"z", "more"}}, CGPoint(1, 1));
    reads<CGPointUDC>(Dictionary{{"x", 1}, {"y", "2"}}, {});
    reads<CGSizeUDC>(Dictionary{{"width", 1}}, {});
    reads<CGRectUDC>(Dictionary{{"x", 1}, {"y", 1}, {"width", 1}}, {});
    reads<CGRectUDC>("1 2 3 4", {});
    reads<CGRectUDC>({}, {});
}

TEST_F(Coders, KeepObjects) {
    const Date date{Date::duration(1'234'567'890'123'456'789)}; // to the last digit
    const Data data{std::byte{0}, std::byte{255}};
    keeps<DateUDC>(date, date);
    keeps<DataUDC>(data, data);
    keeps<StringUDC>("", "");
    keeps<StringUDC>(std::string("a\0\xFF", 3), std::string("a\0\xFF", 3));
    keeps<StringArrayUDC>({"b", "a"}, Array{"b", "a"});
    keeps<StringArrayUDC>({}, Array());
    keeps<DictUDC>({{"k", Array{1, date}}}, Dictionary{{"k", Array{1, date}}});
    keeps<NSArrayUDC>({1, true}, Array{1, true});
    keeps<NSNumberUDC>(true, true);
    keeps<NSNumberUDC>(1, 1);
    keeps<NSNumberUDC>(1.0, 1.0);
    keeps<NSObjectUDC>(Dictionary(), Dictionary());
    reads<DateUDC>(1, {});
    reads<DataUDC>("x", {});
    reads<StringUDC>(1.5, "1.5");
    reads<StringUDC>(data, {});
    reads<StringArrayUDC>(Array{"a", 1}, {});
    reads<StringArrayUDC>("a", {});
    reads<DictUDC>(Array(), {});
    reads<NSArrayUDC>(Dictionary(), {});
    reads<NSNumberUDC>("1", {});
    reads<NSObjectUDC>({}, {});
}

TEST_F(Coders, KeepURLs) {
    const URL file({.fileURLWithPath = "/a b/\xFF"});
    const URL web = *URL::make({.string = "https://example.com/?q=1#f"});
    keeps<URLUDC>(file, "file:///a%20b/%FF");
    keeps<URLUDC>(web, "https://example.com/?q=1#f");
    keeps<URLArrayUDC>({web, file}, Array{"https://example.com/?q=1#f", "file:///a%20b/%FF"});
    keeps<URLArrayUDC>({}, Array());
    reads<URLUDC>("/a b/\xFF", file);
    for (const char* none :
         {"https://example.com/a b", "https://example.com:x/", "https://a<b/", "x:%"}) {
        reads<URLUDC>(none, {});
        reads<URLArrayUDC>(Array{"https://example.com", none}, {});
    }
    reads<URLUDC>(1, {});
    reads<URLArrayUDC>(Array{"https://example.com", "none"}, {});
    reads<URLArrayUDC>(Array{1}, {});
}

TEST_F(Coders, KeepVersionsAndTimes) {
    keeps<BundleVersionUDC>(BundleVersion(2, 1, 0), "2.1.0");
    reads<BundleVersionUDC>("2.1", BundleVersion(2, 1, 0));
    reads<BundleVersionUDC>("nonsense", BundleVersion::zero);
    reads<BundleVersionUDC>(Array(), {});
    keeps<CMTimeUDC>(CMTime({.seconds = 1.5}), 1.5, false);
    store().setObject(1.5, "k");
    EXPECT_EQ(CMTimeUDC().decode(store(), "k")->value, 1500000);
    EXPECT_EQ(CMTimeUDC().decode(store(), "k")->timescale, 1000000);
    EXPECT_TRUE(CMTimeUDC().decode(store(), "none") == kCMTimeZero);

    const CMTimeRange range(
        {.start = CMTimeMakeWithEpoch(-7, 3, 2), .duration = kCMTimePositiveInfinity});
    const Dictionary start{{"value", -7}, {"timescale", 3}, {"flags", 1}, {"epoch", 2}};
    const Dictionary duration{{"value", 0}, {"timescale", 0}, {"flags", 5}, {"epoch", 0}};
    keeps<CMTimeRangeUDC>(range, Dictionary{{"start", start}, {"duration", duration}}, false);
    for (const PropertyList& wrong :
         {PropertyList(1.5), PropertyList(Dictionary{{"start", start}}),
          PropertyList(Dictionary{{"start", start}, {"duration", Dictionary{{"value", 1}}}}),
          PropertyList(Dictionary{
              {"start", start},
              {"duration",
               Dictionary{{"value", 1}, {"timescale", 1LL << 40}, {"flags", 1}, {"epoch", 0}}}})})
        reads<CMTimeRangeUDC>(wrong, {});
}

TEST_F(Coders, KeepEnumerations) {
    keeps<EnumStringUDC<Letter>>(Letter::b, "b");
    reads<EnumStringUDC<Letter>>("c", {});
    reads<EnumStringUDC<Letter>>({}, {});
    keeps<EnumIntUDC<Level>>(Level(5), 5);
    reads<EnumIntUDC<Level>>("6", Level(6));
    reads<EnumIntUDC<Level>>({}, {}); // nothing stands for 0 here,
    struct Zero {
        struct RawValue {
            std::int64_t rawValue;
        };
        static std::optional<Zero> make(RawValue argument) {
            return argument.rawValue == 0 ? std::optional(Zero()) : std::nullopt;
        }
        std::int64_t rawValue() const { return 0; }
        bool operator==(const Zero&) const = default;
    };
    reads<EnumIntUDC<Zero>>({}, Zero()); // and here something does
    reads<EnumIntUDC<Zero>>(1, {});
    keeps<EnumStringArrayUDC<Letter>>({Letter::b, Letter::a}, Array{"b", "a"});
    reads<EnumStringArrayUDC<Letter>>(Array{"b", "x", "a"}, {{Letter::b, Letter::a}});
    reads<EnumStringArrayUDC<Letter>>(Array{"b", 1}, {});
    keeps<ImageExportFormatUDC>(ImageExportFormat::png, 1);
    keeps<ImageExportFormatUDC>(ImageExportFormat::heic, 4);
    for (const PropertyList& wrong : {PropertyList(0), PropertyList(5), PropertyList("1")})
        reads<ImageExportFormatUDC>(wrong, {});
    keeps<DateFormatterStyleUDC>(NSDateFormatterStyle::full, 4);
    reads<DateFormatterStyleUDC>(77, static_cast<NSDateFormatterStyle>(77));
    reads<DateFormatterStyleUDC>("4", {});
    keeps<StringIdentifierUDC<Identifier>>(Identifier({"public.mpeg-4"}), "public.mpeg-4");
    reads<StringIdentifierUDC<Identifier>>("anything", Identifier({"anything"}));
    reads<StringIdentifierUDC<Identifier>>(Array(), {});
}

TEST_F(Coders, KeepJSON) {
    const Window window{
        .title = "é\"", .width = 0.1, .tag = {}, .letters = {Letter::b}, .marks = {{"m", true}}};
    const std::string text = R"({"letters":["b"],"marks":{"m":true},"title":"é\"","width":0.1})";
    const auto bytes = std::as_bytes(std::span(text));
    keeps<JSONCodableUDC<Window>>(window, Data(bytes.begin(), bytes.end()));
    reads<JSONCodableUDC<Window>>(text, {}); // a text, not bytes
    reads<JSONCodableUDC<Window>>(Data{std::byte{'{'}}, {});
    Window noText, noNumber;
    noText.title = "\xFF";
    noNumber.width = std::numeric_limits<double>::infinity();
    for (const Window& wrong : {noText, noNumber}) {
        JSONCodableUDC<Window>().encode(window, store(), "k");
        JSONCodableUDC<Window>().encode(wrong, store(), "k");
        EXPECT_FALSE(store().hasObjectForKey("k"));
    }
    reads<JSONCodableUDC<Moody>>(Data{std::byte{'1'}}, {});
    JSONCodableUDC<Moody>().encode(Moody(), store(), "k");
    EXPECT_FALSE(store().hasObjectForKey("k"));
}

namespace {

/// As a later version of the application has it.
struct Room {
    std::string name;
    int seats = 4;
    std::string owner = "nobody";
    bool operator==(const Room&) const = default;
    static constexpr auto jsonFields = std::tuple(
        JSONField("name", &Room::name), JSONField("seats", &Room::seats).orAsInitialized(),
        JSONField("owner", &Room::owner).orAsInitialized());
};

} // namespace

TEST_F(Coders, ReadRecordsOfVersionsBeforeTheirFields) {
    using Rooms = std::vector<Room>;
    reads<JSONCodableUDC<Rooms>>(bytesOf(R"([{"name":"a"},{"name":"b","seats":2}])"),
                                 Rooms{{"a"}, {"b", 2}});
    for (const char* text :
         {R"([{"seats":2}])", R"([{"name":"a","seats":null}])", R"([{"name":"a","seats":"2"}])"})
        reads<JSONCodableUDC<Rooms>>(bytesOf(text), {});
}

TEST_F(Coders, SetAsideWhatTheyCannotReadBeforeTheyWrite) {
    const EvaluedUserDefaultsKey<JSONCodableUDC<Room>> key({.name = "k", .value = Room()});
    EXPECT_FALSE(store().hasUnreadableValue(key));
    const PropertyList first = bytesOf("[1]"), second = "a text";
    for (const PropertyList& unreadable : {first, second, first}) {
        store().setObject(unreadable, "k");
        EXPECT_TRUE(store().hasUnreadableValue(key));
        EXPECT_EQ(store().value(key), Room());
        store()[key] = Room{"new"};
        EXPECT_FALSE(store().hasUnreadableValue(key));
        EXPECT_EQ(store().value(key), Room{"new"});
    }
    EXPECT_EQ(store().objectForKey("k.unreadable"), first);
    EXPECT_EQ(store().objectForKey("k.unreadable-2"), second);
    EXPECT_FALSE(store().hasObjectForKey("k.unreadable-3"));
    told();
}

struct Uncoded {};
static_assert(JSONCodable<std::vector<std::optional<std::map<int, Room>>>>);
static_assert(!JSONCodable<std::vector<Uncoded>>);
static_assert(!JSONCodable<std::optional<Uncoded>>);
static_assert(!JSONCodable<std::map<std::string, Uncoded>>);

TEST_F(Coders, CountUpAndDown) {
    const JSONCodableUDC<int> json;
    json.increment(2, store(), "json");
    EXPECT_FALSE(store().hasObjectForKey("json"));
    json.encode(40, store(), "json");
    json.increment(5, store(), "json");
    json.decrement(3, store(), "json");
    EXPECT_EQ(json.decode(store(), "json"), 42);

    const IntUDC coder;
    coder.increment(2, store(), "k");
    EXPECT_FALSE(store().hasObjectForKey("k"));
    store().setInteger(3, "k");
    coder.increment(2, store(), "k");
    EXPECT_EQ(store().integerForKey("k"), 5);
    coder.decrement(7, store(), "k");
    EXPECT_EQ(store().integerForKey("k"), -2);
    EXPECT_EQ(told(), std::vector<std::string>());
    constexpr std::int64_t top = std::numeric_limits<std::int64_t>::max();
    coder.increment(top, store(), "k");
    coder.increment(top, store(), "k");
    EXPECT_EQ(store().integerForKey("k"), top);
    coder.decrement(-1, store(), "k");
    EXPECT_EQ(store().integerForKey("k"), top);
    store().setInteger(1, "k");
    UIntUDC().decrement(2, store(), "k");
    EXPECT_EQ(store().integerForKey("k"), 0);
    store().setDouble(0.5, "k");
    DoubleUDC().increment(0.25, store(), "k");
    EXPECT_EQ(store().doubleForKey("k"), 0.75);
}
