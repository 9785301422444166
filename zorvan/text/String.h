#pragma once

#include <zorvan/platform/foundation/Required.h>
#include <zorvan/platform/textservices/Collation.h>
#include <zorvan/platform/textservices/NSDataDetector.h>
#include <zorvan/platform/textservices/NSRegularExpression.h>
#include <zorvan/platform/textservices/Range.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zorvan {

/// Operations on UTF-8 text. Offsets and counts are in characters, that is extended grapheme
/// clusters, unless another unit is named. Bytes that are not UTF-8 are kept: each maximal
/// ill-formed subsequence is one character. Two characters are equal when they are canonically
/// equivalent.
///
/// An offset outside the text stops the program with "String index is out of bounds" and what was
/// asked for, except in the operations whose name begins with "safe".

/// \name Blank and empty
/// @{

/// How many characters `s` has.
[[nodiscard]] std::int64_t count(std::string_view s) noexcept;

/// Whether nothing is left of `s` without white space and newlines at its ends.
[[nodiscard]] bool isBlank(std::string_view s) noexcept;
/// `s`, or absent when it is empty.
[[nodiscard]] std::optional<std::string> nonEmpty(std::string_view s);
/// `s` as it is, or absent when it is blank.
[[nodiscard]] std::optional<std::string> nonBlank(std::string_view s);
/// Without white space at both ends: spaces of any width and tabs. Newlines are kept.
[[nodiscard]] std::string strip(std::string_view s);
/// Whether `s` has any character.
[[nodiscard]] bool isValidMessage(std::string_view s) noexcept;

/// @}
/// \name Shape
/// @{

/// Spaces added at the end up to a length of `length` UTF-16 units.
[[nodiscard]] std::string minPadding(std::string_view s, std::int64_t length);
/// The first character in lower case, the rest unchanged.
[[nodiscard]] std::string decapitalized(std::string_view s);
/// The name of the next copy: "File" gives "File (1)", "File (9)" gives "File (10)". What follows
/// the last number in parentheses is not kept. A number that has no successor in 64 bits is not
/// counted up: " (1)" is appended.
[[nodiscard]] std::string incremented(std::string_view s);

/// The ellipsis of the operations below is "...". A text of at most `length` characters is returned
/// as it is. A length that does not hold the ellipsis gives the dots it holds.

/// "..." and the last characters, `length` in all.
[[nodiscard]] std::string reducedStringAtStart(std::string_view s, std::int64_t length);
/// The first characters and "...", `length` in all.
[[nodiscard]] std::string reducedStringAtEnd(std::string_view s, std::int64_t length);
/// As many characters of both ends around "...": `length` in all when it is odd, one more when
/// even.
[[nodiscard]] std::string reducedStringAtMiddle(std::string_view s, std::int64_t length);

/// @}
/// \name Prefix and suffix
/// @{

/// Puts `by` in the place of the prefix `p`; false, and `s` unchanged, when `s` does not start with
/// it.
bool replacePrefix(std::string& s, std::string_view p, std::string_view by);
/// Puts `by` in the place of the suffix; false, and `s` unchanged, when `s` does not end with it.
bool replaceSuffix(std::string& s, std::string_view suffix, std::string_view by);
/// With `by` in the place of the prefix `p`; unchanged when `s` does not start with it.
[[nodiscard]] std::string replacingPrefix(std::string_view s, std::string_view p,
                                          std::string_view by);
/// With `by` in the place of the suffix; unchanged when `s` does not end with it.
[[nodiscard]] std::string replacingSuffix(std::string_view s, std::string_view suffix,
                                          std::string_view by);
/// Without `p` when `s` starts with it.
[[nodiscard]] std::string removedPrefix(std::string_view s, std::string_view p);
/// Without `suffix` when `s` ends with it.
[[nodiscard]] std::string removedSuffix(std::string_view s, std::string_view suffix);

/// Puts "~" in the place of the prefix "/Users/" + login name, wherever that name ends: for
/// "someone",
/// "/Users/someone2/x" becomes "~2/x" too. False, and `path` unchanged, without that prefix, or
/// where the system knows no name.
bool abreviateTildeInPath(std::string& path);
/// The path that `abreviateTildeInPath` would leave.
[[nodiscard]] std::string abreviatingTildeInPath(std::string_view path);

/// @}
/// \name Access by offset
/// @{

/// A place between two characters, in bytes from the start.
using StringIndex = std::size_t;

/// The bytes between two places.
struct StringRange {
    StringIndex lower; ///< Where the first of them starts.
    StringIndex upper; ///< After the last of them.

    friend bool operator==(const StringRange&, const StringRange&) = default;
};

/// The characters in a range, for `substring`.
struct SubstringWith {
    Required<Range> with; ///< Inside the text.
};
/// Those before an offset.
struct SubstringTo {
    Required<std::int64_t> to; ///< From 0 to the length.
};
/// Those from an offset on.
struct SubstringFrom {
    Required<std::int64_t> from; ///< From 0 to the length.
};

/// The place `i` characters after the start.
[[nodiscard]] StringIndex startIntIndexToStringIndex(std::string_view s, std::int64_t i);
/// The place `i` characters before the end.
[[nodiscard]] StringIndex endIntIndexToStringIndex(std::string_view s, std::int64_t i);
/// The places before the first and after the last character of the range.
[[nodiscard]] StringRange rangeToStringRange(std::string_view s, Range r);

/// `substring(s, {.with = {2, 5}})`: the characters in the range.
[[nodiscard]] std::string substring(std::string_view s, SubstringWith range);
/// `substring(s, {.to = 5})`: the characters before the offset.
[[nodiscard]] std::string substring(std::string_view s, SubstringTo offset);
/// `substring(s, {.from = 5})`: the characters from the offset on.
[[nodiscard]] std::string substring(std::string_view s, SubstringFrom offset);

/// Inserts the character `c` before the one at offset `at`, which may be the end.
void insert(std::string& s, std::string_view c, std::int64_t at);
/// Removes the character at offset `at`, and returns it.
std::string remove(std::string& s, std::int64_t at);
/// Removes the first character, and returns it. `s` must not be empty.
std::string removeFirstChar(std::string& s);
/// Removes the last character, and returns it. `s` must not be empty.
std::string removeLastChar(std::string& s);
/// Removes the characters in the range.
void removeSubrange(std::string& s, Range r);

/// The first `to` characters, or all there are; none for a negative offset.
[[nodiscard]] std::string safeSubstring(std::string_view s, SubstringTo offset);
/// The characters from the offset on, or none; all for a negative offset.
[[nodiscard]] std::string safeSubstring(std::string_view s, SubstringFrom offset);
/// The character at the offset; absent outside the text.
[[nodiscard]] std::optional<std::string> safeChar(std::string_view s, std::int64_t at);
/// The characters in the range as a decimal integer: an optional sign, then ASCII digits only.
/// Absent when they are none, when the number does not fit, and when the range reaches outside the
/// text or is empty.
[[nodiscard]] std::optional<std::int64_t> safeInt(std::string_view s, Range r);
/// The characters in the range as a decimal number: an optional sign, digits with an optional
/// point, an optional exponent, whatever the C locale. One too large for a double is infinite, one
/// too small is zero. Absent for anything else ("inf" and "nan" included), or as `safeInt` for the
/// range.
[[nodiscard]] std::optional<double> safeDouble(std::string_view s, Range r);

/// @}
/// \name Order
/// @{

/// As people order names: case, accents and width ignored, digits as numbers, by the alphabet of
/// the current locale. A strict weak order.
[[nodiscard]] ComparisonResult finderCompare(std::string_view a, std::string_view b);
/// By the alphabet of that locale.
[[nodiscard]] ComparisonResult finderCompare(std::string_view a, std::string_view b,
                                             const Locale& locale);

/// @}
/// \name Regular expressions
/// @{

/// The groups 1 to n of every match of `pattern` in `s`, in order. A match of a pattern without
/// groups contributes an empty list, and a group that took no part contributes empty text.
///
/// Prints "invalid regex: " and the reason as one line to standard output, and returns no match,
/// when the pattern does not compile. A search that exceeds the bounds of `NSRegularExpression`
/// gives the matches found until then, and prints "regex given up: " and the reason.
[[nodiscard]] std::vector<std::vector<std::string>>
captureMatches(std::string_view s, std::string_view pattern,
               NSRegularExpression::Options options = NSRegularExpression::Options::none);
/// As `captureMatches` with the option that leaves case out.
[[nodiscard]] std::vector<std::vector<std::string>>
caseInsensitiveCaptureMatches(std::string_view s, std::string_view pattern);

/// @}
/// \name Validation
/// @{

/// Whether the whole of `s` matches "[A-Z0-9a-z._%+-]+@[A-Za-z0-9.-]+\.[A-Za-z]{2,64}".
[[nodiscard]] bool isValidEmail(std::string_view s) noexcept;
/// Whether a link detector finds the whole of `s` as its first link.
[[nodiscard]] bool isValidLink(std::string_view s);
/// The same with other types; false when there is no detector for them.
[[nodiscard]] bool isValid(std::string_view s, NSTextCheckingType checkType);

/// @}

/// The longest common subsequence of characters, folded from the left over the strings; absent for
/// no strings. Of several equally long ones it is the one found by walking back from both ends and
/// preferring to leave the end of the second text, then that of the first. The characters are spelt
/// as in the first string. Takes time in the product of the lengths over 64, and memory in the
/// larger length times the root of the other.
[[nodiscard]] std::optional<std::string> commonSubsequence(const std::vector<std::string>& strings);

} // namespace zorvan
