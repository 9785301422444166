#include <tests/Testing.h>
#include <tests/Variable.h>

#include <zorvan/media/Date.h>

#include <ctime>

namespace {

using namespace std::chrono;

/// The process in another time zone.
struct TimeZone : Variable {
    explicit TimeZone(const char* name) : Variable("TZ", name) { tzset(); }
};

TEST(Date, IsWrittenAsExifWritesIt) {
    const Date date = sys_days(2024y / February / 29) + 23h + 5min + 9s + 999ms;
    {
        const TimeZone utc("UTC0");
        EXPECT_EQ(UTCFormatted(date), "2024:02:29 23:05:09");
        EXPECT_EQ(UTCFormatted(Date() - 1ms), "1969:12:31 23:59:59");
        EXPECT_EQ(UTCFormatted(Date::max()), "2262:04:11 23:47:16");
        EXPECT_EQ(UTCFormatted(Date::min()), "1677:09:21 00:12:43");
    }
    const TimeZone east("XXX-05:30");
    EXPECT_EQ(UTCFormatted(date), "2024:03:01 04:35:09");
}

TEST(Date, MayBeWrittenFromManyThreads) {
    const TimeZone utc("UTC0");
    std::vector<std::jthread> threads;
    for (int t = 10; t < 50; t += 10)
        threads.emplace_back([t] {
            for (int i = 0; i < 2000; ++i)
                ASSERT_EQ(UTCFormatted(Date(std::chrono::seconds(t + i % 10))),
                          "1970:01:01 00:00:" + std::to_string(t + i % 10));
        });
}

} // namespace
