#include <tests/Testing.h>

#include <zorvan/media/AVMetadataItem.h>

namespace {

using namespace std::chrono;

std::optional<Date> read(const std::string& text) {
    return AVMetadataItem{"udta/%A9day", text}.dateValue();
}

TEST(MetadataDate, ReadsTheFormsThatCamerasWrite) {
    const sys_seconds day = sys_days(2024y / 5 / 31);
    const Date moment = day + 12h + 34min + 56s;
    for (const char* text :
         {"2024-05-31T12:34:56Z", "2024-05-31T12:34:56.000000Z", "2024-05-31T12:34:56",
          "2024-05-31 12:34:56", "2024:05:31 12:34:56", "2024-05-31T14:34:56+0200",
          "2024-05-31T14:34:56+02:00", "2024-05-31T14:34:56 +02", "2024-05-31T04:04:56-0830",
          "2024-06-01T02:34:56+1400", "20240531T123456Z", " 2024-05-31T12:34:56z "})
        EXPECT_EQ(read(text), moment) << text;
    EXPECT_EQ(read("2024-05-31"), Date(day));
    EXPECT_EQ(read("2024-05-31T12:34Z"), Date(day + 12h + 34min));
    EXPECT_EQ(read("2024-05-31T12:34:56.25Z"), moment + 250ms);
    EXPECT_EQ(read("2024-05-31T12:34:56,1234567899Z"), moment + 123456789ns);
    EXPECT_EQ(read("2016-12-31T23:59:60Z"), Date(sys_days(2017y / 1 / 1)));
    EXPECT_EQ(read("1904-01-01T00:00:00Z"), Date(sys_days(1904y / 1 / 1)));
    EXPECT_EQ(read("2261-12-31T23:59:59-2359"), Date(sys_days(2262y / 1 / 1) + 23h + 58min + 59s));
}

TEST(MetadataDate, IsAbsentForAnythingElse) {
    for (const char* malformed : {"", " ", "2024", "2024-05", "2024-05-31T", "2024-05-31T12:34:56+",
                                  "2024-05-31T12:34:56+2", "2024-05-31T12:34:56.Z",
                                  "2024-05-31T12:34:56Zx", "2024-05-3112:34:56", "2024-5-31",
                                  "31-05-2024", "2024-05-31T12:34:56+02:", "+2024-05-31"})
        EXPECT_FALSE(read(malformed)) << malformed;
    for (const char* text :
         {"2024-13-01", "2024-02-30", "2023-02-29", "2024-05-31T24:00:00Z", "2024-05-31T12:60:00Z",
          "2024-05-31T12:34:61Z", "2024-05-31T12:34:56+24:00", "1677-12-31", "2262-01-01",
          "0000-00-00", "9999-99-99T99:99:99Z"})
        EXPECT_FALSE(read(text)) << text;
}

TEST(MetadataDate, OtherValues) {
    const Date date = sys_days(2024y / 5 / 31);
    EXPECT_EQ((AVMetadataItem{"x", date}).dateValue(), date);
    const AVMetadataItem bytes{"x", Data{std::byte{0xFF}}};
    EXPECT_EQ(bytes.dataValue(), Data{std::byte{0xFF}});
    EXPECT_EQ(bytes.stringValue(), std::nullopt);
    EXPECT_EQ((AVMetadataItem{"x", "text"}).stringValue(), "text");
}

} // namespace
