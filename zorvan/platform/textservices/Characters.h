#pragma once

#include <concepts>
#include <cstddef>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>

namespace zorvan {

/// Characters of UTF-8 text. A character is one extended grapheme cluster of Unicode (UAX #29, with
/// the rule that keeps Indic conjuncts whole): "é", a flag, a family emoji and "\r\n" count as one.
///
/// Bytes that are not UTF-8 are never dropped: each maximal ill-formed subsequence is a character
/// of its own, which nothing joins.

/// How many characters `text` has.
[[nodiscard]] std::size_t characterCount(std::string_view text) noexcept;

/// A place in a text, and how many characters were passed on the way to it.
struct CharacterPosition {
    std::size_t offset; ///< in bytes
    std::size_t passed; ///< The characters between.
};

/// The place up to `count` characters after `offset`, which must be a boundary; it stops at the
/// end.
[[nodiscard]] CharacterPosition advanceCharacters(std::string_view text, std::size_t offset,
                                                  std::size_t count) noexcept;

/// The place up to `count` characters before the end; it stops at the start.
[[nodiscard]] CharacterPosition retreatCharacters(std::string_view text, std::size_t count);

/// Whether two characters are canonically equivalent: precomposed "é" equals "e" followed by a
/// combining acute. Ill-formed bytes equal only the same bytes. This and what compares characters
/// below throw `std::bad_alloc` from then on when memory did not suffice for the first such use.
[[nodiscard]] bool charactersAreEqual(std::string_view a, std::string_view b);

/// A spelling that two characters share exactly when they are equal.
[[nodiscard]] std::string canonicalCharacter(std::string_view character);

/// How many bytes of `text` its first characters take when they equal those of `prefix`; absent
/// when they do not.
[[nodiscard]] std::optional<std::size_t> matchingPrefix(std::string_view text,
                                                        std::string_view prefix);

/// Where the last characters of `text` begin when they equal those of `suffix`; absent when they do
/// not.
[[nodiscard]] std::optional<std::size_t> matchingSuffix(std::string_view text,
                                                        std::string_view suffix);

/// The characters of a text, first to last, as views of it: `for (std::string_view c :
/// Characters(s))`.
class Characters {
public:
    /// The characters of the text, which must outlive this.
    explicit Characters(std::string_view text) noexcept : text_(text) {}
    /// The text would be gone before its characters were read.
    template <std::same_as<std::string> Text>
    explicit Characters(const Text&&) = delete;

    /// Walks the characters; compares places of one text only.
    class Iterator {
    public:
        /// What the standard library asks of an iterator.
        /// @{
        using value_type = std::string_view;
        using difference_type = std::ptrdiff_t;
        using iterator_category = std::input_iterator_tag;
        /// @}

        Iterator() = default;
        /// At the boundary `offset` bytes into the text.
        Iterator(std::string_view text, std::size_t offset) noexcept
            : text_(text), start_(offset), end_(advanceCharacters(text, offset, 1).offset) {}

        /// The character at the place.
        std::string_view operator*() const noexcept { return text_.substr(start_, end_ - start_); }
        /// On to the next character.
        /// @{
        Iterator& operator++() noexcept { return *this = Iterator(text_, end_); }
        Iterator operator++(int) noexcept {
            Iterator before = *this;
            ++*this;
            return before;
        }
        /// @}
        /// At the same place.
        friend bool operator==(const Iterator& a, const Iterator& b) noexcept {
            return a.start_ == b.start_;
        }

    private:
        std::string_view text_;
        std::size_t start_ = 0;
        std::size_t end_ = 0;
    };

    /// The first character, and the place behind the last one.
    /// @{
    Iterator begin() const noexcept { return {text_, 0}; }
    Iterator end() const noexcept { return {text_, text_.size()}; }
    /// @}

private:
    std::string_view text_;
};

} // namespace zorvan
