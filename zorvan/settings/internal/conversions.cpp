#include <zorvan/settings/internal/conversions.h>

#include <zorvan/platform/foundation/NSHomeDirectory.h>
#include <zorvan/platform/foundation/internal/ascii.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <string_view>

namespace zorvan::internal {

namespace {

/// A text without the spaces in front, and its sign apart.
struct SignedText {
    bool isNegative = false;
    std::string_view rest;
};

SignedText withoutSign(std::string_view text) {
    const std::size_t start = text.find_first_not_of(" \t\n\v\f\r");
    text.remove_prefix(start == std::string_view::npos ? text.size() : start);
    const bool hasSign = !text.empty() && (text[0] == '-' || text[0] == '+');
    return {hasSign && text[0] == '-', text.substr(hasSign ? 1 : 0)};
}

std::int64_t integerIn(std::string_view text) {
    const SignedText number = withoutSign(text);
    constexpr std::uint64_t limit = std::uint64_t{1} << 63;
    std::uint64_t magnitude = 0;
    for (const char c : number.rest) {
        if (!isDigit(c))
            break;
        const auto digit = static_cast<std::uint64_t>(c - '0');
        magnitude = magnitude > (limit - digit) / 10 ? limit : magnitude * 10 + digit;
    }
    if (number.isNegative)
        return static_cast<std::int64_t>(-magnitude); // 2^63 becomes the least integer
    return magnitude == limit ? std::numeric_limits<std::int64_t>::max()
                              : static_cast<std::int64_t>(magnitude);
}

/// The power of ten of the first digit that is not 0, without the exponent.
std::int64_t magnitudeOf(std::string_view digits) {
    const std::size_t point = std::min(digits.find('.'), digits.size());
    const auto first = static_cast<std::int64_t>(digits.find_first_not_of("0."));
    const auto units = static_cast<std::int64_t>(point);
    return first < units ? units - 1 - first : units - first;
}

/// Beyond the range `from_chars` says only that it is: the value is 0 when the number is small.
double outOfRange(std::string_view text) {
    const std::size_t letter = std::min(text.find_first_of("eE"), text.size());
    const std::string_view exponent = text.substr(std::min(letter + 1, text.size()));
    // Within bounds that no length of a text reaches, so that the sum does not overflow.
    constexpr std::int64_t limit = std::int64_t{1} << 62;
    const std::int64_t power = std::clamp(integerIn(exponent), -limit, limit);
    return magnitudeOf(text.substr(0, letter)) + power < 0
               ? 0
               : std::numeric_limits<double>::infinity();
}

double realIn(std::string_view text) {
    const SignedText number = withoutSign(text);
    // Not what else `from_chars` reads: "inf", "nan", another sign.
    const bool isNumber =
        !number.rest.empty() && (isDigit(number.rest[0]) || number.rest[0] == '.');
    if (!isNumber)
        return 0;
    double value = 0;
    const char* end = number.rest.data() + number.rest.size();
    const auto result = std::from_chars(number.rest.data(), end, value);
    if (result.ec == std::errc::result_out_of_range)
        value = outOfRange(
            number.rest.substr(0, static_cast<std::size_t>(result.ptr - number.rest.data())));
    return number.isNegative ? -value : value;
}

bool truthIn(std::string_view text) {
    const std::string_view rest = withoutSign(text).rest;
    const std::size_t start = rest.find_first_not_of('0');
    return start != std::string_view::npos &&
           std::string_view("YyTt123456789").find(rest[start]) != std::string_view::npos;
}

std::string textOf(const NSNumber& number) {
    if (number.isUnsigned())
        return std::to_string(number.uint64Value());
    if (!number.isReal())
        return std::to_string(number.int64Value());
    char buffer[32];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, number.doubleValue());
    return {buffer, result.ptr};
}

} // namespace

bool asBool(const PropertyList& value) noexcept {
    if (const auto* number = value.as<NSNumber>())
        return number->boolValue();
    const auto* text = value.as<std::string>();
    return text && truthIn(*text);
}

std::int64_t asInteger(const PropertyList& value) noexcept {
    if (const auto* number = value.as<NSNumber>())
        return number->int64Value();
    const auto* text = value.as<std::string>();
    return text ? integerIn(*text) : 0;
}

double asDouble(const PropertyList& value) {
    if (const auto* number = value.as<NSNumber>())
        return number->doubleValue();
    const auto* text = value.as<std::string>();
    return text ? realIn(*text) : 0;
}

std::optional<std::string> asString(const PropertyList& value) {
    if (const auto* number = value.as<NSNumber>())
        return textOf(*number);
    const auto* text = value.as<std::string>();
    return text ? std::optional(*text) : std::nullopt;
}

std::optional<std::vector<std::string>> asStrings(const PropertyList& value) {
    const auto* array = value.as<PropertyList::Array>();
    if (!array)
        return std::nullopt;
    std::vector<std::string> texts;
    for (const PropertyList& item : *array) {
        const auto* text = item.as<std::string>();
        if (!text)
            return std::nullopt;
        texts.push_back(*text);
    }
    return texts;
}

std::optional<URL> asURL(const PropertyList& value) {
    const auto* text = value.as<std::string>();
    if (!text || text->find('\0') != std::string::npos)
        return std::nullopt;
    if (text->starts_with('/'))
        return URL({.fileURLWithPath = *text});
    if (*text == "~" || text->starts_with("~/"))
        if (const std::string home = NSHomeDirectory(); !home.empty())
            return URL({.fileURLWithPath = home + text->substr(1)});
    return URL::make({.string = *text});
}

} // namespace zorvan::internal
