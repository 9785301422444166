#include <zorvan/platform/textservices/Characters.h>

#include <zorvan/platform/textservices/internal/CharacterBreaks.h>
#include <zorvan/platform/textservices/internal/CodePoints.h>

#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <span>
#include <vector>

namespace zorvan {

using internal::BreakClass;
using internal::breakClass;
using internal::BreakState;
using internal::nextCodePoint;
using internal::previousCodePoint;

namespace {

constexpr std::size_t asciiBlock = 64;

struct AsciiBlock {
    bool isAscii;
    std::size_t lineEndings; // "\r\n" whose "\n" lies in the block
};

/// Looks at the 64 bytes from `bytes`, and at the one before them.
AsciiBlock inspectBlock(const char* bytes) noexcept {
    std::uint8_t seen = 0;
    std::uint8_t pairs = 0;
    for (std::size_t i = 0; i < asciiBlock; ++i) {
        const auto byte = static_cast<std::uint8_t>(bytes[i]);
        const auto before = static_cast<std::uint8_t>(*(bytes + i - 1));
        seen = static_cast<std::uint8_t>(seen | byte);
        pairs = static_cast<std::uint8_t>(pairs + ((byte == '\n') & (before == '\r')));
    }
    return {(seen & 0x80) == 0, pairs};
}

/// How many of the next eight bytes are ASCII other than "\r".
std::size_t plainAsciiBytes(const char* bytes) noexcept {
    constexpr std::uint64_t ones = 0x0101010101010101;
    constexpr std::uint64_t highs = 0x8080808080808080;
    std::uint64_t word;
    std::memcpy(&word, bytes, sizeof word);
    const std::uint64_t difference = word ^ (ones * '\r');
    const std::uint64_t returns = (difference - ones) & ~difference & highs;
    const std::uint64_t stops = (word & highs) | returns;
    if constexpr (std::endian::native == std::endian::little)
        return static_cast<std::size_t>(std::countr_zero(stops)) / 8;
    return stops == 0 ? 8 : 0;
}

BreakState stateAfterAscii(char last) noexcept {
    if (last == '\r')
        return BreakState::carriageReturn;
    const bool isControl = static_cast<unsigned char>(last) < 0x20 || last == 0x7F;
    return isControl ? BreakState::control : BreakState::any;
}

/// Walks forward over the boundaries of a text. It stops in front of a character, with its state
/// that of the one just passed.
class Walker {
public:
    Walker(std::string_view text, std::size_t offset, std::size_t limit) noexcept
        : text_(text), offset_(offset), limit_(limit) {}

    CharacterPosition walk() noexcept {
        while (offset_ < text_.size()) {
            std::size_t next = offset_;
            const std::int32_t c = nextCodePoint(text_, next);
            const auto [breaks, state] = internal::step(state_, breakClass(c));
            if (breaks && passed_ == limit_)
                return {offset_, passed_};
            passed_ += breaks;
            state_ = state;
            offset_ = next;
            if (static_cast<std::uint32_t>(c) < 0x80 && c != '\r')
                skipAscii();
        }
        return {offset_, passed_};
    }

private:
    /// Between two ASCII code points lies a boundary, unless they are "\r\n".
    void skipAscii() noexcept {
        skipBlocks();
        while (state_ != BreakState::carriageReturn && text_.size() - offset_ >= 8 &&
               limit_ - passed_ >= 8) {
            const std::size_t plain = plainAsciiBytes(text_.data() + offset_);
            skip(plain, plain);
            if (plain < 8)
                return;
        }
    }

    void skipBlocks() noexcept {
        while (text_.size() - offset_ >= asciiBlock && limit_ - passed_ >= asciiBlock) {
            const auto [isAscii, lineEndings] = inspectBlock(text_.data() + offset_);
            if (!isAscii)
                return;
            skip(asciiBlock, asciiBlock - lineEndings);
        }
    }

    void skip(std::size_t bytes, std::size_t characters) noexcept {
        if (bytes == 0)
            return;
        offset_ += bytes;
        passed_ += characters;
        state_ = stateAfterAscii(text_[offset_ - 1]);
    }

    std::string_view text_;
    std::size_t offset_;
    std::size_t limit_;
    std::size_t passed_ = 0;
    BreakState state_ = internal::startOfText;
};

/// The last boundary before `offset` that holds whatever comes before it, or the start.
std::size_t surelyBoundaryBefore(std::string_view text, std::size_t offset) noexcept {
    BreakClass after = breakClass(previousCodePoint(text, offset));
    while (offset > 0) {
        std::size_t previous = offset;
        const BreakClass before = breakClass(previousCodePoint(text, previous));
        if (internal::alwaysBreaks(before, after))
            return offset;
        offset = previous;
        after = before;
    }
    return 0;
}

/// Passes whole blocks of ASCII that end at the boundary `at.offset`.
void skipBlocksBackward(std::string_view text, std::size_t limit, CharacterPosition& at) noexcept {
    // One more byte is looked at, to know that the block begins with a boundary.
    while (at.offset > asciiBlock && limit - at.passed >= asciiBlock) {
        const std::size_t start = at.offset - asciiBlock;
        const char before = text[start - 1];
        const auto [isAscii, lineEndings] = inspectBlock(text.data() + start);
        if (!isAscii || static_cast<unsigned char>(before) >= 0x80)
            return;
        const bool startsInside = before == '\r' && text[start] == '\n';
        at.offset = start + (startsInside ? 1 : 0);
        at.passed += asciiBlock - lineEndings;
    }
}

bool isAscii(std::string_view text) noexcept {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

/// Decomposes code points and puts their marks in canonical order. ICU's normalizer does the same,
/// but inserts mark by mark, which takes the square of the time where there are many.
class CanonicalOrder {
public:
    explicit CanonicalOrder(std::size_t expected) {
        // ICU keeps it for good that its first use found no memory, and would find every two
        // characters equal.
        if (U_FAILURE(status_))
            throw std::bad_alloc();
        parts_.reserve(expected);
    }

    void add(UChar32 c) {
        std::array<char16_t, 32> units;
        const std::int32_t length = unorm2_getDecomposition(
            normalizer_, c, units.data(), static_cast<std::int32_t>(units.size()), &status_);
        if (length < 0)
            append(c);
        for (std::int32_t i = 0; i < length;) {
            UChar32 part;
            U16_NEXT_UNSAFE(units, i, part);
            append(part);
        }
    }

    std::string spelling() {
        orderMarks();
        std::string result;
        for (const Part part : parts_)
            internal::appendCodePoint(result, static_cast<UChar32>(part >> 8));
        return result;
    }

private:
    using Part = std::uint32_t; // a code point, and below it in 8 bits its combining class

    static constexpr std::uint8_t combiningClass(Part part) {
        return static_cast<std::uint8_t>(part);
    }

    void append(UChar32 c) {
        const Part part = static_cast<Part>(c) << 8 | u_getCombiningClass(c);
        if (combiningClass(part) != 0)
            return parts_.push_back(part);
        orderMarks();
        parts_.push_back(part);
        marks_ = parts_.size();
    }

    void orderMarks() {
        const std::span marks = std::span(parts_).subspan(marks_);
        if (!std::ranges::is_sorted(marks, {}, combiningClass))
            std::ranges::stable_sort(marks, {}, combiningClass);
    }

    UErrorCode status_ = U_ZERO_ERROR;
    const UNormalizer2* const normalizer_ = unorm2_getNFDInstance(&status_);
    std::vector<Part> parts_;
    std::size_t marks_ = 0; // where those behind the last starter begin
};

} // namespace

std::size_t characterCount(std::string_view text) noexcept {
    return Walker(text, 0, std::numeric_limits<std::size_t>::max()).walk().passed;
}

CharacterPosition advanceCharacters(std::string_view text, std::size_t offset,
                                    std::size_t count) noexcept {
    return Walker(text, offset, count).walk();
}

CharacterPosition retreatCharacters(std::string_view text, std::size_t count) {
    CharacterPosition at{text.size(), 0};
    std::vector<std::size_t> boundaries;
    while (at.offset > 0 && at.passed < count) {
        skipBlocksBackward(text, count, at);
        if (at.offset == 0 || at.passed == count)
            break;
        boundaries.clear();
        const std::string_view before = text.substr(0, at.offset);
        for (std::size_t b = surelyBoundaryBefore(text, at.offset); b < at.offset;
             b = advanceCharacters(before, b, 1).offset)
            boundaries.push_back(b);
        for (; !boundaries.empty() && at.passed < count; boundaries.pop_back(), ++at.passed)
            at.offset = boundaries.back();
    }
    return at;
}

std::string canonicalCharacter(std::string_view character) {
    if (isAscii(character))
        return std::string(character);
    CanonicalOrder order(character.size());
    for (std::size_t offset = 0; offset < character.size();) {
        const UChar32 c = nextCodePoint(character, offset);
        if (c < 0)
            return std::string(character);
        order.add(c);
    }
    return order.spelling();
}

bool charactersAreEqual(std::string_view a, std::string_view b) {
    if (a == b)
        return true;
    if (isAscii(a) && isAscii(b))
        return false;
    return canonicalCharacter(a) == canonicalCharacter(b);
}

std::optional<std::size_t> matchingPrefix(std::string_view text, std::string_view prefix) {
    Characters characters(text);
    auto candidate = characters.begin();
    std::size_t length = 0;
    for (const std::string_view wanted : Characters(prefix)) {
        if (candidate == characters.end() || !charactersAreEqual(*candidate, wanted))
            return std::nullopt;
        length += (*candidate).size();
        ++candidate;
    }
    return length;
}

std::optional<std::size_t> matchingSuffix(std::string_view text, std::string_view suffix) {
    const std::size_t count = characterCount(suffix);
    const auto [start, passed] = retreatCharacters(text, count);
    if (passed < count || matchingPrefix(text.substr(start), suffix) != text.size() - start)
        return std::nullopt;
    return start;
}

} // namespace zorvan
