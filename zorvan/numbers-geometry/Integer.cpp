#include <zorvan/numbers-geometry/Integer.h>

#include <cmath>
#include <cstddef>

namespace zorvan {

std::int64_t pow(IntegerOperand x, IntegerOperand y) noexcept {
    return intValue(std::pow(static_cast<double>(x.value), static_cast<double>(y.value)));
}

std::string zeroPadded(std::int64_t x, std::int64_t n) {
    std::string text = std::to_string(x);
    const double digits =
        n < 1 ? 0 : std::ceil(std::log(static_cast<double>(n) + 1) / 2.302585092994046);
    const auto width = static_cast<std::size_t>(digits);
    if (text.size() < width)
        text.insert(x < 0 ? 1 : 0, width - text.size(), '0');
    return text;
}

} // namespace zorvan
