#include <zorvan/text/internal/CommonSubsequence.h>

#include <zorvan/platform/foundation/internal/KeyedHash.h>
#include <zorvan/platform/textservices/Characters.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

// The table T of the lengths of common subsequences is never stored. A row of it, minus the cell
// before each, holds zeros and ones only; a bit of `Row` is 1 where T[i][j] == T[i][j-1]. Each row
// follows from the one before by an addition over the whole row (Hyyrö, 2004), and the walk back
// needs no more than these bits.

namespace zorvan::internal {

namespace {

using Word = std::uint64_t;
constexpr std::size_t wordBits = 64;

/// Rows that are all kept take no more than this.
constexpr std::size_t comfortableBytes = 1u << 20;

struct Numbered {
    std::vector<std::uint32_t> numbers;
    std::vector<std::string_view> spellings;
};

/// Gives equal characters equal numbers.
class CharacterNumbers {
public:
    Numbered number(std::string_view text) {
        Numbered result;
        for (const std::string_view character : Characters(text)) {
            result.numbers.push_back(numberOf(character));
            result.spellings.push_back(character);
        }
        return result;
    }

    std::size_t count() const noexcept { return next_; }

private:
    std::uint32_t numberOf(std::string_view character) {
        if (isAscii(character))
            return known(ascii_[static_cast<std::size_t>(character.front())]);
        // What is beyond ASCII may equal what is not: the Kelvin sign is a "K".
        std::string spelling = canonicalCharacter(character);
        if (isAscii(spelling))
            return numberOf(spelling);
        return known(others_.try_emplace(std::move(spelling), unknown).first->second);
    }

    static bool isAscii(std::string_view character) noexcept {
        return character.size() == 1 && static_cast<unsigned char>(character.front()) < 0x80;
    }

    std::uint32_t known(std::uint32_t& number) noexcept {
        if (number == unknown)
            number = next_++;
        return number;
    }

    static constexpr std::uint32_t unknown = UINT32_MAX;
    std::vector<std::uint32_t> ascii_ = std::vector<std::uint32_t>(128, unknown);
    std::unordered_map<std::string, std::uint32_t, KeyedHash> others_;
    std::uint32_t next_ = 0;
};

/// Where each character stands in a text, as bits of a row.
///
/// A character that is frequent has a row of bits of its own; the rest, of which there may be very
/// many, have lists of places.
class Occurrences {
public:
    Occurrences(const std::vector<std::uint32_t>& text, std::size_t alphabet)
        : words_((text.size() + wordBits - 1) / wordBits), places_(alphabet), rows_(alphabet),
          scratch_(words_) {
        for (std::size_t j = 0; j < text.size(); ++j)
            places_[text[j]].push_back(static_cast<std::uint32_t>(j));
        for (std::size_t c = 0; c < alphabet; ++c) {
            if (places_[c].size() <= words_)
                continue;
            rows_[c].resize(words_);
            setBits(rows_[c], places_[c]);
            places_[c] = {};
        }
    }

    std::size_t words() const noexcept { return words_; }

    /// Calls `use` with the bits of a character, which are only good until it returns. Not called
    /// for a character that does not occur.
    template <class Use>
    void with(std::uint32_t character, Use use) {
        if (!rows_[character].empty())
            return use(rows_[character].data());
        const auto& places = places_[character];
        if (places.empty())
            return;
        setBits(scratch_, places);
        use(scratch_.data());
        for (const std::uint32_t j : places)
            scratch_[j / wordBits] = 0;
    }

private:
    static void setBits(std::vector<Word>& row, const std::vector<std::uint32_t>& places) {
        for (const std::uint32_t j : places)
            row[j / wordBits] |= Word{1} << (j % wordBits);
    }

    std::size_t words_;
    std::vector<std::vector<std::uint32_t>> places_;
    std::vector<std::vector<Word>> rows_;
    std::vector<Word> scratch_;
};

/// The row that follows `before`: V' = (V + (V & M)) | (V & ~M).
void nextRow(const Word* before, const Word* matches, Word* after, std::size_t words) noexcept {
    unsigned char carry = 0;
    for (std::size_t w = 0; w < words; ++w) {
        const Word row = before[w];
        const Word taken = row & matches[w];
        const Word partial = row + taken;
        const Word sum = partial + carry;
        carry = static_cast<unsigned char>((partial < row) | (sum < partial));
        after[w] = sum | (row & ~matches[w]);
    }
}

/// The rows of the table, of which only every so many are kept; the others are computed again, a
/// block at a time, when the walk back comes to them.
class Rows {
public:
    Rows(const std::vector<std::uint32_t>& a, Occurrences& b)
        : a_(a), b_(b), words_(b.words()), blockRows_(rowsPerBlock(a.size(), words_)),
          kept_((a.size() / blockRows_ + 1) * words_), block_((blockRows_ + 1) * words_) {
        std::vector<Word> row(words_, ~Word{0});
        for (std::size_t i = 0;; ++i) {
            if (i % blockRows_ == 0)
                std::copy(row.begin(), row.end(), keptRow(i / blockRows_));
            const bool blockIsLast = i / blockRows_ == a_.size() / blockRows_;
            if (blockIsLast)
                break;
            advance(row.data(), i, row.data(), words_);
        }
        fillBlock(a_.size() / blockRows_, words_);
    }

    /// Whether T[i][j] == T[i][j-1], for j from 1. `i` may only go down, and `j` with it.
    bool isLevel(std::size_t i, std::size_t j) {
        const Word* row = rowAt(i, j);
        return row[(j - 1) / wordBits] >> ((j - 1) % wordBits) & 1;
    }

    /// The last column up to `j` in which row `i` rises; 0 when there is none.
    std::size_t lastRise(std::size_t i, std::size_t j) {
        const Word* row = rowAt(i, j);
        std::size_t w = (j - 1) / wordBits;
        Word rises = ~row[w] & (~Word{0} >> (wordBits - 1 - (j - 1) % wordBits));
        while (rises == 0 && w > 0)
            rises = ~row[--w];
        if (rises == 0)
            return 0;
        return w * wordBits + static_cast<std::size_t>(std::bit_width(rises));
    }

private:
    static std::size_t rowsPerBlock(std::size_t rows, std::size_t words) {
        if (rows + 1 <= comfortableBytes / (words * sizeof(Word)))
            return rows + 1;
        return static_cast<std::size_t>(std::sqrt(static_cast<double>(rows))) + 1;
    }

    Word* keptRow(std::size_t block) { return kept_.data() + block * words_; }

    void advance(const Word* before, std::size_t i, Word* after, std::size_t words) {
        bool occurs = false;
        b_.with(a_[i], [&](const Word* matches) {
            nextRow(before, matches, after, words);
            occurs = true;
        });
        if (!occurs && before != after)
            std::copy_n(before, words, after);
    }

    void fillBlock(std::size_t block, std::size_t words) {
        firstRow_ = block * blockRows_;
        const std::size_t last = std::min(firstRow_ + blockRows_ - 1, a_.size());
        std::copy_n(keptRow(block), words, block_.data());
        for (std::size_t i = firstRow_; i < last; ++i) {
            Word* row = block_.data() + (i - firstRow_) * words_;
            advance(row, i, row + words_, words);
        }
    }

    const Word* rowAt(std::size_t i, std::size_t j) {
        if (i < firstRow_)
            fillBlock(i / blockRows_, (j - 1) / wordBits + 1);
        return block_.data() + (i - firstRow_) * words_;
    }

    const std::vector<std::uint32_t>& a_;
    Occurrences& b_;
    std::size_t words_;
    std::size_t blockRows_;
    std::vector<Word> kept_;
    std::vector<Word> block_;
    std::size_t firstRow_ = 0;
};

} // namespace

std::string commonSubsequence(std::string_view a, std::string_view b) {
    if (a.empty() || b.empty())
        return {};
    CharacterNumbers characters;
    const Numbered first = characters.number(a);
    const Numbered second = characters.number(b);
    Occurrences occurrences(second.numbers, characters.count());
    Rows rows(first.numbers, occurrences);

    std::vector<std::string_view> taken;
    std::size_t i = first.numbers.size();
    std::size_t j = second.numbers.size();
    while (i >= 1 && (j = rows.lastRise(i, j)) >= 1) {
        // Row i rises at j. If row i-1 rises there as well, it has the same value at j: had it
        // less, the cell before j in it would be two less than T[i][j], which no cell next to it
        // allows.
        while (i > 1 && !rows.isLevel(i - 1, j))
            --i;
        taken.push_back(first.spellings[i - 1]);
        --i;
        if (--j == 0)
            break;
    }
    std::string result;
    for (auto character = taken.rbegin(); character != taken.rend(); ++character)
        result += *character;
    return result;
}

} // namespace zorvan::internal
