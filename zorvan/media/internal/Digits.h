#pragma once

#include <zorvan/platform/foundation/internal/ascii.h>

#include <cstddef>
#include <optional>
#include <string_view>

namespace zorvan {

using internal::isDigit, internal::isSpace;

/// Takes ASCII text apart from the left.
class DigitReader {
public:
    explicit constexpr DigitReader(std::string_view text) noexcept : rest_(text) {}

    constexpr std::string_view rest() const noexcept { return rest_; }
    constexpr bool atEnd() const noexcept { return rest_.empty(); }
    /// NUL at the end.
    constexpr char next() const noexcept { return rest_.empty() ? '\0' : rest_.front(); }

    constexpr void skipSpace() noexcept {
        while (!rest_.empty() && isSpace(rest_.front()))
            rest_.remove_prefix(1);
    }
    /// Takes the next character when it is one of these.
    constexpr bool take(std::string_view any) noexcept {
        if (rest_.empty() || any.find(rest_.front()) == any.npos)
            return false;
        rest_.remove_prefix(1);
        return true;
    }
    /// The number of exactly that many digits, at most 9; absent, and nothing taken, when they are
    /// not there.
    constexpr std::optional<int> number(std::size_t digits) noexcept {
        if (rest_.size() < digits)
            return std::nullopt;
        int value = 0;
        for (const char c : rest_.substr(0, digits)) {
            if (!isDigit(c))
                return std::nullopt;
            value = value * 10 + (c - '0');
        }
        rest_.remove_prefix(digits);
        return value;
    }
    /// All digits that follow.
    constexpr std::string_view digits() noexcept {
        std::size_t count = 0;
        while (count < rest_.size() && isDigit(rest_[count]))
            ++count;
        const std::string_view taken = rest_.substr(0, count);
        rest_.remove_prefix(count);
        return taken;
    }

private:
    std::string_view rest_;
};

} // namespace zorvan
