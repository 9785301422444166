#include <zorvan/media/internal/parseDate.h>

#include <zorvan/media/internal/Digits.h>

#include <chrono>

namespace zorvan {
namespace {

using namespace std::chrono;

/// The years that fit whole into nanoseconds from 1970 on.
constexpr int firstYear = 1678, lastYear = 2261;

std::optional<sys_days> takeDay(DigitReader& reader) {
    const auto yearNumber = reader.number(4);
    const bool punctuated = reader.take("-:");
    const auto monthNumber = reader.number(2);
    if (punctuated && !reader.take("-:"))
        return std::nullopt;
    const auto dayNumber = reader.number(2);
    if (!yearNumber || !monthNumber || !dayNumber)
        return std::nullopt;
    const year_month_day date{year(*yearNumber), month(static_cast<unsigned>(*monthNumber)),
                              day(static_cast<unsigned>(*dayNumber))};
    if (!date.ok() || *yearNumber < firstYear || *yearNumber > lastYear)
        return std::nullopt;
    return sys_days(date);
}

/// What follows a decimal point; digits below a nanosecond are dropped.
nanoseconds fraction(std::string_view digits) {
    std::int64_t value = 0;
    for (std::size_t i = 0; i < 9; ++i)
        value = value * 10 + (i < digits.size() ? digits[i] - '0' : 0);
    return nanoseconds(value);
}

std::optional<nanoseconds> takeTimeOfDay(DigitReader& reader) {
    const auto hour = reader.number(2);
    const bool punctuated = reader.take(":");
    const auto minute = reader.number(2);
    if (!hour || !minute || *hour > 23 || *minute > 59)
        return std::nullopt;
    const nanoseconds time = hours(*hour) + minutes(*minute);
    if (punctuated ? !reader.take(":") : !isDigit(reader.next()))
        return time;
    const auto second = reader.number(2);
    if (!second || *second > 60) // 60 is a leap second
        return std::nullopt;
    nanoseconds below(0);
    if (reader.take(".,")) {
        const std::string_view digits = reader.digits();
        if (digits.empty())
            return std::nullopt;
        below = fraction(digits);
    }
    return time + seconds(*second) + below;
}

std::optional<minutes> takeZone(DigitReader& reader) {
    reader.skipSpace();
    if (reader.atEnd() || reader.take("Zz"))
        return minutes(0);
    const bool isWest = reader.next() == '-';
    if (!reader.take("+-"))
        return std::nullopt;
    const auto hour = reader.number(2);
    const bool punctuated = reader.take(":");
    const auto minute = reader.number(2);
    if (!hour || *hour > 23 || (punctuated && !minute) || minute.value_or(0) > 59)
        return std::nullopt;
    const minutes offset = hours(*hour) + minutes(minute.value_or(0));
    return isWest ? -offset : offset;
}

} // namespace

std::optional<Date> parseDate(std::string_view text) noexcept {
    DigitReader reader(text);
    reader.skipSpace();
    const auto day = takeDay(reader);
    if (!day)
        return std::nullopt;
    nanoseconds time(0);
    minutes zone(0);
    const bool isSpaced = isSpace(reader.next());
    reader.skipSpace();
    if (reader.take("Tt") || (isSpaced && !reader.atEnd())) {
        const auto timeOfDay = takeTimeOfDay(reader);
        const auto offset = timeOfDay ? takeZone(reader) : std::nullopt;
        if (!offset)
            return std::nullopt;
        time = *timeOfDay;
        zone = *offset;
    }
    reader.skipSpace();
    if (!reader.atEnd())
        return std::nullopt;
    return Date(*day) + time - zone;
}

} // namespace zorvan
