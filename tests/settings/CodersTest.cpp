#include "Golden.h"
#include "Store.h"

#include <tests/bytesOf.h>

/// Its coding throws what this library does not.
struct Moody {
    friend bool operator==(const Moody&, const Moody&) = default;
};

template <>
struct zorvan::JSONCoding<Moody> {
    static JSON encode(const Moody&) { throw std::out_of_range("mood"); }
    static Moody decode(const JSON&) { throw std::out_of_range("mood"); }
};

namespace {

using Dictionary = PropertyList::Dictionary;
using Array = PropertyList::Array;

class Coders : public Store {
protected:
    /// What a stored object reads as. What the coders store is in the golden databases.
    template <class Coder>
    void reads(const std::optional<PropertyList>& stored,
               const std::optional<typename Coder::CodableType>& value) {
        store().setObject(stored, "k");
        EXPECT_TRUE(Coder().decode(store(), "k") == value);
        EXPECT_EQ(store().objectForKey("k"), stored); // reading changes nothing
    }
};

} // namespace

TEST_F(Coders, ReadNumbersAsTheStoreConvertsThem) {
    reads<BoolUDC>({}, {});
    reads<BoolUDC>(false, false);
    reads<BoolUDC>("yes", true);
    reads<BoolUDC>(Array(), false);
    reads<IntUDC>("42", 42);
    reads<UIntUDC>(0, 0u);
    reads<UIntUDC>(-1, {});
    reads<UIntUDC>("7", 7u);
    reads<FloatUDC>("0.1", 0.1f);
    reads<CGFloatUDC>("1.5", 1.5);
}

TEST_F(Coders, ReadGeometryThatIsWhole) {
    CGRectUDC().encode(CGRect(10, 0, -4, 5), store(), "k");
    const Dictionary standing{{"x", 10.0}, {"y", 0.0}, {"width", 4.0}, {"height", 5.0}};
    EXPECT_EQ(store().objectForKey("k"), PropertyList(standing));
    reads<CGRectUDC>(standing, CGRect(10, 0, 4, 5));
    reads<CGPointUDC>(Dictionary{{"x", 1}, {"y", true}, {"z", "more"}}, CGPoint(1, 1));
    reads<CGPointUDC>(Dictionary{{"x", 1}, {"y", "2"}}, {});
    reads<CGSizeUDC>(Dictionary{{"width", 1}}, {});
    reads<CGRectUDC>("1 2 3 4", {});
}

TEST_F(Coders, ReadObjectsOfTheirKind) {
    reads<DateUDC>(1, {});
    reads<StringUDC>(1.5, "1.5");
    reads<StringUDC>(Data(), {});
    reads<StringArrayUDC>(Array{"a", 1}, {});
    reads<NSNumberUDC>("1", {});
    reads<URLUDC>("/a b/\xFF", URL({.fileURLWithPath = "/a b/\xFF"}));
    reads<URLUDC>(1, {});
    reads<URLArrayUDC>(Array(), std::vector<URL>());
    reads<URLArrayUDC>(Array{1}, {});
    reads<URLUDC>("none", {});
    reads<URLArrayUDC>(Array{"https://example.com", "none"}, {});
}

TEST_F(Coders, ReadVersionsAndTimes) {
    reads<BundleVersionUDC>("2.1", BundleVersion(2, 1, 0));
    reads<BundleVersionUDC>("nonsense", BundleVersion::zero);
    reads<BundleVersionUDC>(Array(), {});
    reads<CMTimeUDC>({}, kCMTimeZero);
    store().setObject(1.5, "k");
    EXPECT_EQ(CMTimeUDC().decode(store(), "k")->value, 1500000);
    EXPECT_EQ(CMTimeUDC().decode(store(), "k")->timescale, 1000000);
    const Dictionary start{{"value", -7}, {"timescale", 3}, {"flags", 1}, {"epoch", 2}};
    const auto range = [&](const Dictionary& duration) {
        return Dictionary{{"start", start}, {"duration", duration}};
    };
    const Dictionary infinite{{"value", 0}, {"timescale", 0}, {"flags", 5}, {"epoch", 0}};
    reads<CMTimeRangeUDC>(range(infinite), CMTimeRange({.start = CMTimeMakeWithEpoch(-7, 3, 2),
                                                        .duration = kCMTimePositiveInfinity}));
    Dictionary large = infinite;
    large.insert_or_assign("timescale", std::int64_t{1} << 40);
    for (const PropertyList& wrong :
         {PropertyList(1.5), PropertyList(Dictionary{{"start", start}}),
          PropertyList(range(Dictionary{{"value", 1}})), PropertyList(range(large))})
        reads<CMTimeRangeUDC>(wrong, {});
}

TEST_F(Coders, ReadRawValues) {
    reads<EnumStringUDC<Letter>>("c", {});
    reads<EnumStringUDC<Letter>>({}, {});
    reads<EnumIntUDC<Level>>("6", Level{6});
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
    reads<EnumStringArrayUDC<Letter>>(Array{"b", "x", "a"}, {{Letter::b, Letter::a}});
    reads<EnumStringArrayUDC<Letter>>(Array{"b", 1}, {});
    reads<ImageExportFormatUDC>(1, ImageExportFormat::png);
    for (const PropertyList& wrong : {PropertyList(0), PropertyList(5), PropertyList("1")})
        reads<ImageExportFormatUDC>(wrong, {});
    reads<DateFormatterStyleUDC>(77, static_cast<NSDateFormatterStyle>(77));
    reads<DateFormatterStyleUDC>("4", {});
    reads<AVFileTypeUDC>(Array(), {});
}

TEST_F(Coders, RemoveWhatHasNoJSON) {
    reads<JSONCodableUDC<Window>>("{}", {}); // a text, not bytes
    reads<JSONCodableUDC<Window>>(bytesOf("{"), {});
    reads<JSONCodableUDC<Moody>>(bytesOf("1"), {});
    const auto removes = [&](const auto& value) {
        store().setInteger(1, "k");
        JSONCodableUDC<std::remove_cvref_t<decltype(value)>>().encode(value, store(), "k");
        EXPECT_FALSE(store().hasObjectForKey("k"));
    };
    removes(std::string("\xFF"));
    removes(std::numeric_limits<double>::infinity());
    removes(Moody());
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
static_assert(!JSONCodable<std::vector<std::optional<std::map<int, Uncoded>>>>);

TEST_F(Coders, CountUpAndDown) {
    constexpr std::int64_t top = std::numeric_limits<std::int64_t>::max();
    const IntUDC coder;
    coder.increment(2, store(), "k");
    EXPECT_FALSE(store().hasObjectForKey("k"));
    store().setInteger(3, "k");
    coder.increment(2, store(), "k");
    EXPECT_EQ(store().integerForKey("k"), 5);
    coder.decrement(7, store(), "k");
    EXPECT_EQ(store().integerForKey("k"), -2);
    for (int i = 0; i < 2; ++i) {
        coder.increment(top, store(), "k");
        coder.decrement(-1, store(), "k");
        EXPECT_EQ(store().integerForKey("k"), i == 0 ? top - 1 : top);
    }
    store().setInteger(1, "k");
    UIntUDC().decrement(2, store(), "k");
    EXPECT_EQ(store().integerForKey("k"), 0);
    store().setDouble(0.5, "k");
    DoubleUDC().increment(0.25, store(), "k");
    EXPECT_EQ(store().doubleForKey("k"), 0.75);
    store().setObject(bytesOf("40"), "k");
    JSONCodableUDC<int>().decrement(-2, store(), "k");
    EXPECT_EQ(store().dataForKey("k"), bytesOf("42"));
    EXPECT_EQ(told(), std::vector<std::string>());
}
