#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace zorvan {

/// What a trim takes away. White space is the space separators (no-break space and ideographic
/// space included) and the tab; newlines are U+000A to U+000D, U+0085, U+2028 and U+2029.
enum class CharacterSet { whitespaces, whitespacesAndNewlines };

/// `text` without the code points of `set` at both ends, as a view of it. Code points are looked at
/// one by one: a space that carries a combining mark is taken from under it.
[[nodiscard]] std::string_view trimmed(std::string_view text, CharacterSet set) noexcept;

/// `text` in lower case by the rules that hold in no particular language; ill-formed bytes are
/// kept.
[[nodiscard]] std::string lowercased(std::string_view text);

/// A number in parentheses and what stands before it on its line; views of the text.
struct NumberInParentheses {
    std::string_view before; ///< What stands before the parenthesis on its line.
    std::string_view digits; ///< decimal digits of any script, or none
};

/// The last number in parentheses of the first line that has one. Takes time in the length of the
/// text.
[[nodiscard]] std::optional<NumberInParentheses>
numberInParentheses(std::string_view text) noexcept;

/// How many UTF-16 units `text` takes; an ill-formed subsequence counts as one.
[[nodiscard]] std::size_t utf16Length(std::string_view text) noexcept;

/// `text` in UTF-16, with U+FFFD for each ill-formed subsequence.
[[nodiscard]] std::u16string utf16FromUTF8(std::string_view text);

/// `text` in UTF-8, with U+FFFD for each lone surrogate.
[[nodiscard]] std::string utf8FromUTF16(std::u16string_view text);

} // namespace zorvan
