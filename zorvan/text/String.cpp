#include <zorvan/text/String.h>

#include <zorvan/platform/foundation/NSUserName.h>
#include <zorvan/platform/textservices/Characters.h>
#include <zorvan/platform/textservices/Unicode.h>
#include <zorvan/text/internal/decimalInteger.h>

#include <algorithm>
#include <limits>

namespace zorvan {

namespace {

constexpr std::string_view ellipsis = "...";

/// A count of characters from an offset that is not negative.
std::size_t unsignedCount(std::int64_t count) noexcept {
    return static_cast<std::size_t>(std::max<std::int64_t>(count, 0));
}

std::string_view firstCharacters(std::string_view s, std::int64_t count) noexcept {
    return s.substr(0, advanceCharacters(s, 0, unsignedCount(count)).offset);
}

std::string_view lastCharacters(std::string_view s, std::int64_t count) {
    return s.substr(retreatCharacters(s, unsignedCount(count)).offset);
}

bool isLongerThan(std::string_view s, std::int64_t count) noexcept {
    return count < 0 || advanceCharacters(s, 0, unsignedCount(count)).offset < s.size();
}

std::string_view dotsWithin(std::int64_t length) noexcept {
    return ellipsis.substr(0, unsignedCount(length));
}

std::string concatenated(std::string_view a, std::string_view b, std::string_view c = {}) {
    std::string result;
    result.reserve(a.size() + b.size() + c.size());
    return result.append(a).append(b).append(c);
}

} // namespace

std::int64_t count(std::string_view s) noexcept {
    return static_cast<std::int64_t>(characterCount(s));
}

bool isBlank(std::string_view s) noexcept {
    return trimmed(s, CharacterSet::whitespacesAndNewlines).empty();
}

std::optional<std::string> nonEmpty(std::string_view s) {
    return s.empty() ? std::nullopt : std::optional<std::string>(s);
}

std::optional<std::string> nonBlank(std::string_view s) {
    return isBlank(s) ? std::nullopt : std::optional<std::string>(s);
}

std::string strip(std::string_view s) { return std::string(trimmed(s, CharacterSet::whitespaces)); }

bool isValidMessage(std::string_view s) noexcept { return !s.empty(); }

std::string minPadding(std::string_view s, std::int64_t length) {
    std::string result(s);
    const std::size_t present = utf16Length(s);
    result.append(std::max(unsignedCount(length), present) - present, ' ');
    return result;
}

std::string decapitalized(std::string_view s) {
    const std::string_view first = firstCharacters(s, 1);
    return concatenated(lowercased(first), s.substr(first.size()));
}

std::string incremented(std::string_view s) {
    constexpr std::int64_t shortestNumbered = 4;
    std::string firstCopy = concatenated(s, " (1)");
    if (!isLongerThan(s, shortestNumbered - 1))
        return firstCopy;
    const auto found = numberInParentheses(s);
    const auto number = found ? internal::decimalInteger(found->digits) : std::nullopt;
    if (!number || *number == std::numeric_limits<std::int64_t>::max())
        return firstCopy;
    return concatenated(found->before, "(", std::to_string(*number + 1) + ")");
}

std::string reducedStringAtStart(std::string_view s, std::int64_t length) {
    if (!isLongerThan(s, length))
        return std::string(s);
    return concatenated(dotsWithin(length), lastCharacters(s, length - 3));
}

std::string reducedStringAtEnd(std::string_view s, std::int64_t length) {
    if (!isLongerThan(s, length))
        return std::string(s);
    return concatenated(firstCharacters(s, length - 3), dotsWithin(length));
}

std::string reducedStringAtMiddle(std::string_view s, std::int64_t length) {
    if (!isLongerThan(s, length))
        return std::string(s);
    if (length < 2)
        return std::string(dotsWithin(length));
    const std::int64_t kept = length / 2 - 1;
    return concatenated(firstCharacters(s, kept), ellipsis, lastCharacters(s, kept));
}

bool replacePrefix(std::string& s, std::string_view p, std::string_view by) {
    const auto length = matchingPrefix(s, p);
    if (!length)
        return false;
    s.replace(0, *length, std::string(by));
    return true;
}

bool replaceSuffix(std::string& s, std::string_view suffix, std::string_view by) {
    const auto start = matchingSuffix(s, suffix);
    if (!start)
        return false;
    s.replace(*start, std::string::npos, std::string(by));
    return true;
}

std::string replacingPrefix(std::string_view s, std::string_view p, std::string_view by) {
    std::string copy(s);
    replacePrefix(copy, p, by);
    return copy;
}

std::string replacingSuffix(std::string_view s, std::string_view suffix, std::string_view by) {
    std::string copy(s);
    replaceSuffix(copy, suffix, by);
    return copy;
}

std::string removedPrefix(std::string_view s, std::string_view p) {
    return replacingPrefix(s, p, {});
}

std::string removedSuffix(std::string_view s, std::string_view suffix) {
    return replacingSuffix(s, suffix, {});
}

bool abreviateTildeInPath(std::string& path) {
    const std::string user = NSUserName();
    return !user.empty() && replacePrefix(path, "/Users/" + user, "~");
}

std::string abreviatingTildeInPath(std::string_view path) {
    std::string copy(path);
    abreviateTildeInPath(copy);
    return copy;
}

ComparisonResult finderCompare(std::string_view a, std::string_view b) {
    return compareNames(a, b);
}

ComparisonResult finderCompare(std::string_view a, std::string_view b, const Locale& locale) {
    return compareNames(a, b, locale);
}

} // namespace zorvan
