#include <zorvan/numbers-geometry/RealNumber.h>

#include <charconv>
#include <cmath>
#include <random>

namespace zorvan {

std::uint32_t randomUInt32() {
    thread_local std::random_device source;
    return source();
}

std::string description(double x) {
    if (std::isnan(x))
        return "nan";
    if (std::isinf(x))
        return x < 0 ? "-inf" : "inf";
    const double magnitude = std::fabs(x);
    const bool isPlain = x == 0 || (magnitude >= 1e-4 && magnitude < 1e16);
    char buffer[32];
    const auto format = isPlain ? std::chars_format::fixed : std::chars_format::scientific;
    char* end = std::to_chars(buffer, buffer + sizeof buffer, x, format).ptr;
    std::string text(buffer, end);
    if (isPlain && text.find('.') == std::string::npos)
        text += ".0";
    return text;
}

} // namespace zorvan
