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
    std::vector<std::thread> threads;
    std::vector<int> wrong(4);
    for (std::size_t t = 0; t < wrong.size(); ++t)
        threads.emplace_back([t, &wrong] {
            for (int i = 0; i < 2000; ++i) {
                const auto seconds = static_cast<int>(t) * 10 + i % 10;
                const std::string expected =
                    "1970:01:01 00:00:" + std::to_string(100 + seconds).substr(1);
                wrong[t] += UTCFormatted(Date(std::chrono::seconds(seconds))) != expected;
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, std::vector<int>(4));
}

} // namespace
