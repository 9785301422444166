#include <zorvan/text/CMTime.h>

#include <zorvan/text/CMTimeIterator.h>

#include <charconv>
#include <cmath>

namespace zorvan {

namespace {

/// Rounded to a whole number, with zeros in front up to the width, which negative ones fill.
std::string padded(double number, std::size_t width) {
    char digits[32];
    std::string text(
        digits,
        std::to_chars(digits, digits + sizeof digits, number, std::chars_format::fixed, 0).ptr);
    return text.insert(0, width > text.size() ? width - text.size() : 0, '0');
}

std::string joined(const ClockTime& time, char separator) {
    return padded(time.hh, 2) + separator + padded(time.mm, 2) + separator + padded(time.ss, 2);
}

std::string joined(const ClockTimeWithMilliseconds& time, char separator) {
    return joined(ClockTime{time.hh, time.mm, time.ss}, separator) + separator + padded(time.ms, 3);
}

} // namespace

ClockTime CMTime::hhmmss() const noexcept {
    const ClockTimeWithMilliseconds time = hhmmssms();
    return {time.hh, time.mm, time.ss};
}

ClockTimeWithMilliseconds CMTime::hhmmssms() const noexcept {
    constexpr double limit = 0x1p63;
    const double seconds = safeSeconds();
    const double whole = std::floor(seconds);
    if (!(whole >= -limit && whole < limit))
        return {};
    const auto count = static_cast<std::int64_t>(whole);
    return {static_cast<double>(count / 3600), static_cast<double>(count % 3600 / 60),
            static_cast<double>(count % 60), (seconds - whole) * 1000};
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
