#include <zorvan/media/Date.h>

#include <chrono>
#include <cstdio>
#include <ctime>

namespace zorvan {

std::string UTCFormatted(Date date) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(date);
    const auto time = static_cast<std::time_t>(seconds.time_since_epoch().count());
    std::tm local{};
    localtime_r(&time, &local); // cannot fail: every date is within 300 years of 1970
    char text[80];
    const int length =
        std::snprintf(text, sizeof text, "%04d:%02d:%02d %02d:%02d:%02d", local.tm_year + 1900,
                      local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
    return std::string(text, static_cast<std::size_t>(length));
}

} // namespace zorvan
