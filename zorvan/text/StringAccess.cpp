#include <zorvan/text/String.h>

#include <zorvan/platform/foundation/fatalError.h>
#include <zorvan/platform/foundation/internal/ascii.h>
#include <zorvan/platform/textservices/Characters.h>
#include <zorvan/text/internal/decimalInteger.h>

#include <charconv>
#include <cstdlib>
#include <locale.h>

namespace zorvan {

namespace {

[[noreturn]] void outOfBounds(std::string_view s, const std::string& asked) noexcept {
    fatalError("String index is out of bounds: " + asked + " in a text of " +
               std::to_string(characterCount(s)));
}

/// The place `count` characters after `offset`; absent when the text ends before.
std::optional<StringIndex> indexAfter(std::string_view s, StringIndex offset,
                                      std::int64_t count) noexcept {
    if (count < 0)
        return std::nullopt;
    const auto wanted = static_cast<std::size_t>(count);
    const auto [index, passed] = advanceCharacters(s, offset, wanted);
    return passed == wanted ? std::optional(index) : std::nullopt;
}

/// The text of a range; absent when the range reaches outside.
std::optional<std::string_view> textIn(std::string_view s, Range r) noexcept {
    if (r.lower < 0 || r.upper < r.lower)
        return std::nullopt;
    const auto lower = indexAfter(s, 0, r.lower);
    const auto upper = lower ? indexAfter(s, *lower, r.upper - r.lower) : std::nullopt;
    if (!upper)
        return std::nullopt;
    return s.substr(*lower, *upper - *lower);
}

std::string_view requireTextIn(std::string_view s, Range r) noexcept {
    const auto text = textIn(s, r);
    if (!text)
        outOfBounds(s, std::to_string(r.lower) + " to " + std::to_string(r.upper));
    return *text;
}

std::string take(std::string& s, StringIndex start, StringIndex end) {
    if (start == end)
        outOfBounds(s, std::to_string(characterCount(std::string_view(s).substr(0, start))));
    std::string taken = s.substr(start, end - start);
    s.erase(start, end - start);
    return taken;
}

/// Whether a number may follow: what `std::from_chars` reads further, "inf", a second sign and a
/// sign alone, is no decimal number.
bool startsDecimal(std::string_view text) noexcept {
    if (text.starts_with('-') || text.starts_with('+'))
        text.remove_prefix(1);
    if (text.starts_with('.'))
        text.remove_prefix(1);
    return !text.empty() && internal::isDigit(text.front());
}

/// The nearest double of a number outside the range of doubles: infinite or zero.
double nearestDouble(std::string_view text) {
    static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
    return strtod_l(std::string(text).c_str(), nullptr, plain);
}

} // namespace

StringIndex startIntIndexToStringIndex(std::string_view s, std::int64_t i) {
    const auto index = indexAfter(s, 0, i);
    if (!index)
        outOfBounds(s, std::to_string(i));
    return *index;
}

StringIndex endIntIndexToStringIndex(std::string_view s, std::int64_t i) {
    const auto wanted = static_cast<std::size_t>(i);
    const auto [index, passed] = retreatCharacters(s, wanted);
    if (i < 0 || passed < wanted)
        outOfBounds(s, std::to_string(i) + " before the end");
    return index;
}

StringRange rangeToStringRange(std::string_view s, Range r) {
    const std::string_view text = requireTextIn(s, r);
    const auto lower = static_cast<StringIndex>(text.data() - s.data());
    return {lower, lower + text.size()};
}

std::string substring(std::string_view s, SubstringWith range) {
    return std::string(requireTextIn(s, range.with));
}

std::string substring(std::string_view s, SubstringTo offset) {
    return std::string(s.substr(0, startIntIndexToStringIndex(s, offset.to)));
}

std::string substring(std::string_view s, SubstringFrom offset) {
    return std::string(s.substr(startIntIndexToStringIndex(s, offset.from)));
}

void insert(std::string& s, std::string_view c, std::int64_t at) {
    s.insert(startIntIndexToStringIndex(s, at), std::string(c));
}

std::string remove(std::string& s, std::int64_t at) {
    const StringIndex start = startIntIndexToStringIndex(s, at);
    return take(s, start, advanceCharacters(s, start, 1).offset);
}

std::string removeFirstChar(std::string& s) {
    return take(s, 0, advanceCharacters(s, 0, 1).offset);
}

std::string removeLastChar(std::string& s) {
    return take(s, retreatCharacters(s, 1).offset, s.size());
}

void removeSubrange(std::string& s, Range r) {
    const auto [lower, upper] = rangeToStringRange(s, r);
    s.erase(lower, upper - lower);
}

std::string safeSubstring(std::string_view s, SubstringTo offset) {
    if (offset.to < 0)
        return {};
    return std::string(s.substr(0, indexAfter(s, 0, offset.to).value_or(s.size())));
}

std::string safeSubstring(std::string_view s, SubstringFrom offset) {
    if (offset.from < 0)
        return std::string(s);
    return std::string(s.substr(indexAfter(s, 0, offset.from).value_or(s.size())));
}

std::optional<std::string> safeChar(std::string_view s, std::int64_t at) {
    const auto start = indexAfter(s, 0, at);
    if (!start || *start == s.size())
        return std::nullopt;
    return std::string(s.substr(*start, advanceCharacters(s, *start, 1).offset - *start));
}

std::optional<std::int64_t> safeInt(std::string_view s, Range r) {
    const auto text = textIn(s, r);
    return text ? internal::decimalInteger(*text) : std::nullopt;
}

std::optional<double> safeDouble(std::string_view s, Range r) {
    const auto text = textIn(s, r);
    if (!text || !startsDecimal(*text))
        return std::nullopt;
    const std::string_view number = text->substr(text->starts_with('+') ? 1 : 0);
    double value = 0;
    const char* const end = number.data() + number.size();
    const auto [stop, error] = std::from_chars(number.data(), end, value);
    if (stop != end)
        return std::nullopt;
    if (error == std::errc::result_out_of_range)
        return nearestDouble(number);
    return error == std::errc() ? std::optional(value) : std::nullopt;
}

} // namespace zorvan
