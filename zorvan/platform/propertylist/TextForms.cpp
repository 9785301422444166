#include <zorvan/platform/propertylist/internal/TextForms.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <system_error>

namespace zorvan::propertylist {

namespace {

using std::chrono::sys_days;
using std::chrono::year_month_day;
using Seconds = std::chrono::sys_seconds;

constexpr Seconds reference = sys_days(std::chrono::year(2001) / 1 / 1);

Date clamped(Seconds seconds) {
    if (seconds >= std::chrono::floor<std::chrono::seconds>(Date::max()))
        return Date::max();
    if (seconds <= std::chrono::ceil<std::chrono::seconds>(Date::min()))
        return Date::min();
    return seconds;
}

/// A date as whole seconds, rounded down, and what is left.
struct SplitDate {
    Seconds whole;
    Date::duration rest;
};

SplitDate split(Date date) {
    // By hand, because `floor` overflows at the start of the range of dates.
    constexpr Date::duration second = std::chrono::seconds(1);
    const Date::duration time = date.time_since_epoch();
    const Date::duration rest = (time % second + second) % second;
    const std::chrono::seconds toward = std::chrono::duration_cast<std::chrono::seconds>(time);
    return {Seconds(toward - std::chrono::seconds(time % second < Date::duration::zero() ? 1 : 0)),
            rest};
}

void appendNumber(std::string& text, std::int64_t number, std::size_t width) {
    const std::string digits = std::to_string(number);
    text.append(width - std::min(width, digits.size()), '0');
    text += digits;
}

template <class Number, class... Format>
std::optional<Number> parsedWhole(std::string_view text, Format... format) {
    Number number{};
    const char* const end = text.data() + text.size();
    const std::from_chars_result read = std::from_chars(text.data(), end, number, format...);
    if (read.ec != std::errc() || read.ptr != end)
        return std::nullopt;
    return number;
}

} // namespace

std::optional<char32_t> UTF8Reader::next() {
    const auto byteAt = [&](std::size_t at) -> char32_t {
        return static_cast<unsigned char>(text_[position_ + at]);
    };
    char32_t scalar = byteAt(0);
    if (scalar < 0x80) {
        ++position_;
        return scalar;
    }
    const std::size_t length = internal::utf8SequenceLength(text_.substr(position_));
    if (length == 0)
        return std::nullopt;
    scalar &= 0xFFu >> (length + 1);
    for (std::size_t i = 1; i < length; ++i)
        scalar = scalar << 6 | (byteAt(i) & 0x3F);
    position_ += length;
    return scalar;
}

std::optional<Date> decodeDate(std::string_view text) {
    const bool beforeChrist = text.starts_with('-');
    if (beforeChrist)
        text.remove_prefix(1);
    std::array<unsigned, 6> fields{};
    constexpr std::string_view separators = "--T::Z";
    for (std::size_t i = 0; i < fields.size(); ++i) {
        // With fewer digits the text is at its end, and has no separator.
        const std::size_t digits = std::min<std::size_t>(i == 0 ? 4 : 2, text.size());
        const auto number = parsedWhole<unsigned>(text.substr(0, digits));
        text.remove_prefix(digits);
        if (!number || !text.starts_with(separators[i]))
            return std::nullopt;
        fields[i] = *number;
        text.remove_prefix(1);
    }
    const auto [year, month, day, hour, minute, second] = fields;
    const int signedYear = static_cast<int>(year);
    const year_month_day date(std::chrono::year(beforeChrist ? -signedYear : signedYear),
                              std::chrono::month(month), std::chrono::day(day));
    if (!text.empty() || !date.ok() || hour > 23 || minute > 59 || second > 59)
        return std::nullopt;
    return clamped(sys_days(date) + std::chrono::hours(hour) + std::chrono::minutes(minute) +
                   std::chrono::seconds(second));
}

std::string encodeDate(Date date) {
    const Seconds seconds = split(date).whole;
    const sys_days day = std::chrono::floor<std::chrono::days>(seconds);
    const year_month_day calendar(day);
    const std::chrono::hh_mm_ss<std::chrono::seconds> time(seconds - day);
    std::string text;
    appendNumber(text, static_cast<int>(calendar.year()), 4);
    for (const auto& [separator, number] :
         {std::pair<char, std::int64_t>('-', unsigned(calendar.month())),
          {'-', unsigned(calendar.day())},
          {'T', time.hours().count()},
          {':', time.minutes().count()},
          {':', time.seconds().count()}}) {
        text += separator;
        appendNumber(text, number, 2);
    }
    return text + 'Z';
}

std::optional<Date> dateFromReference(double seconds) {
    if (std::isnan(seconds))
        return std::nullopt;
    constexpr double limit = 1e12; // far beyond the range of dates, well within that of integers
    const double whole = std::floor(std::clamp(seconds, -limit, limit));
    const Date start = clamped(reference + std::chrono::seconds(static_cast<std::int64_t>(whole)));
    if (start == Date::max() || start == Date::min())
        return start;
    const std::chrono::duration<double> fraction(seconds - whole);
    return start + std::chrono::round<Date::duration>(fraction);
}

double secondsFromReference(Date date) {
    const auto [whole, rest] = split(date);
    return static_cast<double>((whole - reference).count()) +
           std::chrono::duration<double>(rest).count();
}

std::optional<NSNumber> decodeInteger(std::string_view text) {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+'))
        text.remove_prefix(1);
    int base = 10;
    if (text.starts_with("0x") || text.starts_with("0X")) {
        text.remove_prefix(2);
        base = 16;
    }
    const std::optional<std::uint64_t> size = parsedWhole<std::uint64_t>(text, base);
    constexpr std::uint64_t limit = std::uint64_t{1} << 63;
    if (!size || (negative && *size > limit))
        return std::nullopt;
    return negative ? NSNumber(static_cast<std::int64_t>(0 - *size)) : NSNumber(*size);
}

std::optional<double> decodeReal(std::string_view text) {
    if (text.starts_with('+') && !text.starts_with("+-"))
        text.remove_prefix(1);
    return parsedWhole<double>(text);
}

std::string encodeReal(double real) {
    if (std::isnan(real))
        return "nan";
    std::array<char, 32> digits;
    const std::to_chars_result end =
        std::to_chars(digits.data(), digits.data() + digits.size(), real);
    return std::string(digits.data(), end.ptr);
}

} // namespace zorvan::propertylist
