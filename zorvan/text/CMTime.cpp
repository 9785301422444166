#include <zorvan/text/CMTime.h>

#include <zorvan/text/CMTimeIterator.h>

#include <charconv>
#include <cmath>
#include <string_view>

namespace zorvan {

namespace {

struct WholeSeconds {
    std::int64_t hours = 0;
    std::int64_t minutes = 0;
    std::int64_t seconds = 0;
    double fraction = 0;
};

WholeSeconds takenApart(const CMTime& time) {
    constexpr double limit = 9223372036854775808.0; // 2^63
    const double seconds = time.safeSeconds();
    const double whole = std::floor(seconds);
    if (!(whole >= -limit && whole < limit))
        return {};
    const auto count = static_cast<std::int64_t>(whole);
    const std::int64_t rest = count % 3600;
    return {count / 3600, rest / 60, rest % 60, seconds - whole};
}

/// Rounded to a whole number, with zeros in front up to the width.
void append(std::string& text, double number, std::size_t width) {
    char digits[32];
    const std::to_chars_result end =
        std::to_chars(digits, digits + sizeof digits, number, std::chars_format::fixed, 0);
    const std::string_view shown(digits, static_cast<std::size_t>(end.ptr - digits));
    const bool signedNumber = shown.starts_with('-');
    if (signedNumber)
        text += '-';
    text.append(width > shown.size() ? width - shown.size() : 0, '0');
    text += shown.substr(signedNumber ? 1 : 0);
}

std::string joined(const ClockTime& time, char separator) {
    std::string text;
    append(text, time.hh, 2);
    text += separator;
    append(text, time.mm, 2);
    text += separator;
    append(text, time.ss, 2);
    return text;
}

std::string joined(const ClockTimeWithMilliseconds& time, char separator) {
    std::string text = joined(ClockTime{time.hh, time.mm, time.ss}, separator);
    text += separator;
    append(text, time.ms, 3);
    return text;
}

} // namespace

ClockTime CMTime::hhmmss() const noexcept {
    const WholeSeconds parts = takenApart(*this);
    return {static_cast<double>(parts.hours), static_cast<double>(parts.minutes),
            static_cast<double>(parts.seconds)};
}

ClockTimeWithMilliseconds CMTime::hhmmssms() const noexcept {
    const WholeSeconds parts = takenApart(*this);
    return {static_cast<double>(parts.hours), static_cast<double>(parts.minutes),
            static_cast<double>(parts.seconds), parts.fraction * 1000};
}

std::string CMTime::hhmmssDesc() const { return joined(hhmmss(), ':'); }
std::string CMTime::hhmmssmsDesc() const { return joined(hhmmssms(), ':'); }
std::string CMTime::hhmmssName() const { return joined(hhmmss(), '-'); }
std::string CMTime::hhmmssmsName() const { return joined(hhmmssms(), '-'); }

CMTimeIterator CMTime::split(std::int64_t count) const noexcept {
    const CMTime step = detail::multiplyByRatio(*this, 1, count);
    return CMTimeIterator(step.middle() - step, step, count);
}

} // namespace zorvan
