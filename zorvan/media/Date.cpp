#include <zorvan/media/Date.h>

#include <chrono>
#include <ctime>

namespace zorvan {

std::string UTCFormatted(Date date) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(date);
    const auto time = static_cast<std::time_t>(seconds.time_since_epoch().count());
    std::tm local{};
    localtime_r(&time, &local); // cannot fail: every date is within 300 years of 1970
    char text[20];
    return std::string(text, std::strftime(text, sizeof text, "%Y:%m:%d %H:%M:%S", &local));
}

} // namespace zorvan
