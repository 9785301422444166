#include <zorvan/media/Location.h>

#include <zorvan/media/internal/Digits.h>

#include <algorithm>
#include <charconv>

namespace zorvan {
namespace {

double decimal(const char* begin, const char* end) {
    double value = 0;
    const auto [stop, error] = std::from_chars(begin, end, value, std::chars_format::fixed);
    // Only a fraction too small to be told from zero is out of range here.
    return error == std::errc::result_out_of_range ? 0 : value;
}

/// A sign, the digits of the degrees, perhaps of minutes and seconds, perhaps a fraction.
std::optional<double> takeCoordinate(DigitReader& reader, std::size_t degreeDigits) {
    const bool isNegative = reader.next() == '-';
    if (!reader.take("+-"))
        return std::nullopt;
    const std::string_view whole = reader.digits();
    const std::size_t below = whole.size() - degreeDigits; // of minutes and seconds
    if (whole.size() < degreeDigits || (below != 0 && below != 2 && below != 4))
        return std::nullopt;
    const char* end = whole.data() + whole.size();
    if (DigitReader ahead = reader; ahead.take("."))
        if (const std::string_view fraction = ahead.digits(); !fraction.empty()) {
            end = fraction.data() + fraction.size();
            reader = ahead;
        }

    const auto part = [&](std::size_t from, std::size_t digits) {
        const bool isLast = from + digits == whole.size();
        const char* const start = whole.data() + from;
        return decimal(start, isLast ? end : start + digits);
    };
    double degrees = part(0, degreeDigits);
    if (below >= 2)
        degrees += part(degreeDigits, 2) / 60;
    if (below == 4)
        degrees += part(degreeDigits + 2, 2) / 3600;
    return isNegative ? -degrees : degrees;
}

bool isLineBreak(char c) { return c >= '\n' && c <= '\r'; }

bool mayFollow(std::string_view tail) {
    if (tail.empty())
        return true;
    if (isDigit(tail.front()))
        return false;
    // The first character may be any, then the line goes on.
    tail.remove_prefix(1);
    while (!tail.empty() && isSpace(tail.back()))
        tail.remove_suffix(1);
    return std::none_of(tail.begin(), tail.end(), isLineBreak);
}

} // namespace

std::optional<Location> Location::make(ISO6709 text) noexcept {
    DigitReader reader(text.iso6709.value);
    reader.skipSpace();
    const auto latitude = takeCoordinate(reader, 2);
    const auto longitude = latitude ? takeCoordinate(reader, 3) : std::nullopt;
    if (!longitude || !mayFollow(reader.rest()))
        return std::nullopt;
    return Location{*latitude, *longitude};
}

} // namespace zorvan
