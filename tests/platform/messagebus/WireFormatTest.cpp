#include <tests/Testing.h>

#include <zorvan/platform/messagebus/internal/WireFormat.h>

using namespace zorvan::internal;

namespace {

WireNotification sample() {
    return {"Name", "Sender",
            PropertyList::Dictionary{
                {"array", PropertyList::Array{1, "two", 3.5, PropertyList::Array{}}},
                {"data", Data{std::byte{0}, std::byte{255}}},
                {"date", Date(std::chrono::nanoseconds(-1'234'567'890'123'456'789))},
                {"dictionary", PropertyList::Dictionary{{"", true}, {"é", false}}},
                {"least", std::numeric_limits<std::int64_t>::min()},
                {"text", "\xF0\x9F\x98\x80"}}};
}

WireNotification nested(std::size_t depth) {
    PropertyList value = 1;
    for (std::size_t i = 1; i < depth; ++i)
        value = PropertyList(PropertyList::Array{value});
    return {"Deep", std::nullopt, PropertyList::Dictionary{{"a", value}}};
}

TEST(WireFormat, ComesBackAsItWent) {
    for (const WireNotification& each :
         {sample(), WireNotification{"N", std::nullopt, std::nullopt},
          WireNotification{"N", "", PropertyList::Dictionary{}}, nested(maxWireDepth)})
        EXPECT_EQ(decodeNotification(encode(each)), each);
}

TEST(WireFormat, RefusesWhatItCouldNotSend) {
    EXPECT_THROW(encode({"", {}, {}}), std::invalid_argument);
    EXPECT_THROW(encode({std::string("a\0b", 3), {}, {}}), std::invalid_argument);
    EXPECT_THROW(encode({"\xFF", {}, {}}), std::invalid_argument);
    EXPECT_THROW(encode({"N", "\xC0\x80", {}}), std::invalid_argument);
    EXPECT_THROW(encode({"N", {}, PropertyList::Dictionary{{"k", "\xED\xA0\x80"}}}),
                 std::invalid_argument);
    EXPECT_THROW(encode(nested(maxWireDepth + 1)), std::length_error);
    EXPECT_THROW(encode({"N", {}, PropertyList::Dictionary{{"k", Data(maxWireSize)}}}),
                 std::length_error);
    const PropertyList::Array many(maxWireValues, 1);
    EXPECT_THROW(encode({"N", {}, PropertyList::Dictionary{{"k", many}}}), std::length_error);
}

// Whole or cut short, drawn out, of another version: there is one form of each notification.
TEST(WireFormat, WhateverItAcceptsItWouldSendAlike) {
    const Data good = encode(sample());
    std::mt19937 random(4);
    int accepted = 0;
    for (int i = 0; i < 20'000; ++i) {
        Data bytes = good;
        for (unsigned change = random() % 4; change > 0; --change)
            bytes[random() % bytes.size()] = static_cast<std::byte>(random());
        if (random() % 4 == 0)
            bytes.resize(random() % (bytes.size() + 2));
        if (const auto read = decodeNotification(bytes)) {
            ++accepted;
            ASSERT_EQ(encode(*read), bytes);
        }
    }
    EXPECT_GT(accepted, 100) << "some changes do no harm";
}

} // namespace
