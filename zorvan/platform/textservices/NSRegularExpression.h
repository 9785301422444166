#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace zorvan {

/// A pattern that does not compile, or a search that had to be given up; `what()` says why.
class RegularExpressionError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A compiled regular expression in ICU's syntax. It never changes, and threads may share it.
class NSRegularExpression {
public:
    /// How a pattern is read; a set of the constants.
    struct Options {
        std::uint32_t rawValue = 0; ///< A bit for each.

        static const Options none;            ///< Every letter, sign and line as ICU has it.
        static const Options caseInsensitive; ///< Letters of either case are equal.
        /// Blanks are left out, and what follows a "#".
        static const Options allowCommentsAndWhitespace;
        static const Options ignoreMetacharacters;     ///< The pattern is a text to be found.
        static const Options dotMatchesLineSeparators; ///< A dot is a line break too.
        static const Options anchorsMatchLines;        ///< "^" and "$" are at each line, too.
        static const Options useUnixLineSeparators;    ///< Only "\n" ends a line.
        /// "\b" is where words end by the rules of Unicode.
        static const Options useUnicodeWordBoundaries;

        /// What is in either set.
        friend constexpr Options operator|(Options a, Options b) noexcept {
            return {a.rawValue | b.rawValue};
        }
        friend constexpr bool operator==(Options, Options) = default;
    };

    /// Compiles `pattern`; throws `RegularExpressionError` when it does not.
    NSRegularExpression(std::string_view pattern, Options options);

    /// As the constructor, but the expressions a thread has used lately are not compiled again.
    static NSRegularExpression cached(std::string_view pattern, Options options);

    /// Finds every match in `text`, in order, and gives the groups 1 to n of each. A group that
    /// took no part is empty text; a match of a pattern without groups is an empty list. Bytes that
    /// are not UTF-8 match as U+FFFD and are kept as they are in what is captured. The text is
    /// copied as UTF-16, with two bytes for each of its own at most; one of 2^31 units or more is
    /// given up as needing too much memory.
    ///
    /// A search is bounded: it may save 20 million steps to come back to, and 100 more for each
    /// byte of the text, hold 64 MB of them, and have the processor for two seconds, and a
    /// microsecond more for each byte. Past that it is given up: it throws
    /// `RegularExpressionError`, or, with a place for the reason, says why there and gives the
    /// matches found until then. The time is looked at after every 10,000 steps saved, and at every
    /// 64th place where a match might begin. A pattern that reads far at each of many steps on its
    /// way back, such as "(a+)\1b", goes on for longer: at one place, for up to the square of the
    /// text, which is seconds for 100 KB of "a" and minutes for 1 MB.
    std::vector<std::vector<std::string>> captures(std::string_view text,
                                                   std::string* givenUp = nullptr) const;

private:
    struct Compiled;
    std::shared_ptr<const Compiled> compiled_;
};

inline constexpr NSRegularExpression::Options NSRegularExpression::Options::none{0};
inline constexpr NSRegularExpression::Options NSRegularExpression::Options::caseInsensitive{1};
inline constexpr NSRegularExpression::Options
    NSRegularExpression::Options::allowCommentsAndWhitespace{2};
inline constexpr NSRegularExpression::Options NSRegularExpression::Options::ignoreMetacharacters{4};
inline constexpr NSRegularExpression::Options
    NSRegularExpression::Options::dotMatchesLineSeparators{8};
inline constexpr NSRegularExpression::Options NSRegularExpression::Options::anchorsMatchLines{16};
inline constexpr NSRegularExpression::Options NSRegularExpression::Options::useUnixLineSeparators{
    32};
inline constexpr NSRegularExpression::Options
    NSRegularExpression::Options::useUnicodeWordBoundaries{64};

} // namespace zorvan
