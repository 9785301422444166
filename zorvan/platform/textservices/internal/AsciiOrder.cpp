#include <zorvan/platform/textservices/internal/AsciiOrder.h>

#include <zorvan/platform/foundation/internal/ascii.h>
#include <zorvan/platform/textservices/internal/requireMemory.h>

#include <unicode/ucoleitr.h>
#include <unicode/uniset.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace zorvan::internal {

namespace {

constexpr std::size_t longestNumber = 254; // the collator splits longer ones

bool isAscii(char c) noexcept { return static_cast<unsigned char>(c) < 0x80; }

int compareWith(const UCollator* collator, std::string_view a, std::string_view b) {
    UErrorCode status = U_ZERO_ERROR;
    const int order = ucol_strcollUTF8(collator, a.data(), static_cast<std::int32_t>(a.size()),
                                       b.data(), static_cast<std::int32_t>(b.size()), &status);
    requireMemory(status);
    return order;
}

/// Whether the set holds a string made of ASCII alone.
bool holdsAscii(const icu::UnicodeSet& set) {
    if (set.isBogus()) // memory did not suffice for what was added
        throw std::bad_alloc();
    std::array<UChar, 64> text;
    for (std::int32_t i = 0; i < uset_getItemCount(set.toUSet()); ++i) {
        UErrorCode status = U_ZERO_ERROR;
        UChar32 start = 0;
        UChar32 end = 0;
        const std::int32_t length = uset_getItem(set.toUSet(), i, &start, &end, text.data(),
                                                 static_cast<std::int32_t>(text.size()), &status);
        if (U_FAILURE(status))
            return true;
        const bool isRange = length == 0;
        if (isRange ? start < 0x80 : std::all_of(text.begin(), text.begin() + length, [](UChar c) {
                return c < 0x80;
            }))
            return true;
    }
    return false;
}

bool treatsAsciiOneByOne(const UCollator* collator) {
    UErrorCode status = U_ZERO_ERROR;
    icu::UnicodeSet contractions;
    icu::UnicodeSet expansions;
    ucol_getContractionsAndExpansions(collator, contractions.toUSet(), expansions.toUSet(), true,
                                      &status);
    requireMemory(status);
    return U_SUCCESS(status) && !holdsAscii(contractions) && !holdsAscii(expansions);
}

/// Where numbers stand to a character, 0 when that depends on the number.
int numbersAgainst(const UCollator* collator, std::string_view character) {
    const int small = compareWith(collator, "0", character);
    for (const std::string_view number : {"9", "10", "123456789", "99999999999999999999999999"})
        if (compareWith(collator, number, character) != small)
            return 0;
    return small;
}

/// How far two texts agree, when that part is ASCII; absent when it is not.
std::optional<std::size_t> commonAscii(std::string_view a, std::string_view b) noexcept {
    const std::size_t size = std::min(a.size(), b.size());
    std::size_t i = 0;
    std::uint64_t seen = 0;
    for (; size - i >= sizeof seen; i += sizeof seen) {
        std::uint64_t left;
        std::uint64_t right;
        std::memcpy(&left, a.data() + i, sizeof left);
        std::memcpy(&right, b.data() + i, sizeof right);
        if (left != right)
            break;
        seen |= left;
    }
    if (seen & 0x8080808080808080)
        return std::nullopt;
    for (; i < size && a[i] == b[i]; ++i)
        if (!isAscii(a[i]))
            return std::nullopt;
    return i;
}

std::size_t digitsEnd(std::string_view text, std::size_t start) noexcept {
    while (start < text.size() && isDigit(text[start]))
        ++start;
    return start;
}

/// A run of digits without its leading zeros; `offset` moves past it.
std::string_view takeNumber(std::string_view text, std::size_t& offset) noexcept {
    const std::size_t end = digitsEnd(text, offset);
    while (offset < end && text[offset] == '0')
        ++offset;
    const std::string_view number = text.substr(offset, end - offset);
    offset = end;
    return number;
}

std::strong_ordering compareNumbers(std::string_view a, std::string_view b) noexcept {
    if (a.size() != b.size())
        return a.size() <=> b.size();
    return a.compare(b) <=> 0;
}

} // namespace

AsciiOrder::AsciiOrder(const UCollator* collator)
    : isUsable_(collator && treatsAsciiOneByOne(collator) && readRanks(collator)) {}

bool AsciiOrder::readRanks(const UCollator* collator) {
    std::vector<char> order;
    for (int c = 0; c < 128; ++c) {
        const char character = static_cast<char>(c);
        if (isDigit(character) && character != '0')
            continue;
        const std::string_view text(&character, 1);
        if (compareWith(collator, text, "") == 0)
            continue;
        if (character != '0' && numbersAgainst(collator, text) == 0)
            return false;
        order.push_back(character);
    }
    const auto compare = [collator](char a, char b) {
        return compareWith(collator, {&a, 1}, {&b, 1});
    };
    std::sort(order.begin(), order.end(), [&](char a, char b) { return compare(a, b) < 0; });
    std::uint8_t rank = 0;
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (i == 0 || compare(order[i - 1], order[i]) != 0)
            ++rank;
        ranks_[static_cast<std::size_t>(order[i])] = rank;
    }
    std::fill(&ranks_['0'], &ranks_['9'] + 1, ranks_['0']);
    return ranks_['0'] != 0;
}

std::optional<std::uint8_t> AsciiOrder::nextRank(std::string_view text,
                                                 std::size_t& offset) const noexcept {
    for (; offset < text.size(); ++offset) {
        // What follows may make one letter with this one, as a combining mark does.
        if (!isAscii(text[offset]) || (offset + 1 < text.size() && !isAscii(text[offset + 1])))
            return std::nullopt;
        if (const std::uint8_t rank = ranks_[static_cast<std::size_t>(text[offset])])
            return rank;
    }
    return 0;
}

std::optional<std::strong_ordering> AsciiOrder::compare(std::string_view a,
                                                        std::string_view b) const noexcept {
    if (!isUsable_)
        return std::nullopt;
    const auto common = commonAscii(a, b);
    if (!common)
        return std::nullopt;
    std::size_t i = *common;
    while (i > 0 && isDigit(a[i - 1]))
        --i;
    for (std::size_t j = i;;) {
        const auto left = nextRank(a, i);
        const auto right = nextRank(b, j);
        if (!left || !right)
            return std::nullopt;
        if (*left != *right)
            return *left <=> *right;
        if (*left == 0)
            return std::strong_ordering::equal;
        if (!isDigit(a[i]) || !isDigit(b[j])) {
            ++i;
            ++j;
            continue;
        }
        const std::string_view first = takeNumber(a, i);
        const std::string_view second = takeNumber(b, j);
        const bool endsInAscii =
            (i == a.size() || isAscii(a[i])) && (j == b.size() || isAscii(b[j]));
        if (!endsInAscii || first.size() > longestNumber || second.size() > longestNumber)
            return std::nullopt;
        if (const auto order = compareNumbers(first, second); order != 0)
            return order;
    }
}

bool AsciiOrder::appendKey(std::string_view name, std::string& keys) const {
    if (!isUsable_)
        return false;
    for (std::size_t i = 0; i < name.size();) {
        if (!isAscii(name[i]))
            return false;
        const std::uint8_t rank = ranks_[static_cast<std::size_t>(name[i])];
        if (rank != 0)
            keys.push_back(static_cast<char>(rank));
        if (!isDigit(name[i])) {
            ++i;
            continue;
        }
        const std::string_view number = takeNumber(name, i);
        if (number.size() > longestNumber)
            return false;
        keys.push_back(static_cast<char>(number.size()));
        keys += number;
    }
    return true;
}

} // namespace zorvan::internal
