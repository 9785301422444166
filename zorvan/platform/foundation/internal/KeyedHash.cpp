#include <zorvan/platform/foundation/internal/KeyedHash.h>

#include <zorvan/platform/foundation/internal/randomBytes.h>

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

// Aumasson and Bernstein, "SipHash: a fast short-input PRF", 2012: one round for each word, three
// at the end. Words are read in the processor's own order of bytes.

namespace zorvan::internal {

namespace {

using Word = std::uint64_t;

class State {
public:
    explicit State(const std::array<Word, 2>& key) noexcept
        : a_(key[0] ^ 0x736f6d6570736575), b_(key[1] ^ 0x646f72616e646f6d),
          c_(key[0] ^ 0x6c7967656e657261), d_(key[1] ^ 0x7465646279746573) {}

    void take(Word word) noexcept {
        d_ ^= word;
        mix();
        a_ ^= word;
    }

    Word end() noexcept {
        c_ ^= 0xFF;
        mix();
        mix();
        mix();
        return a_ ^ b_ ^ c_ ^ d_;
    }

private:
    void mix() noexcept {
        a_ += b_;
        b_ = std::rotl(b_, 13) ^ a_;
        a_ = std::rotl(a_, 32);
        c_ += d_;
        d_ = std::rotl(d_, 16) ^ c_;
        a_ += d_;
        d_ = std::rotl(d_, 21) ^ a_;
        c_ += b_;
        b_ = std::rotl(b_, 17) ^ c_;
        c_ = std::rotl(c_, 32);
    }

    Word a_, b_, c_, d_;
};

} // namespace

std::size_t KeyedHash::operator()(std::string_view text) const {
    static const auto key = std::bit_cast<std::array<Word, 2>>(randomBytes());
    State state(key);
    std::size_t at = 0;
    for (Word word; text.size() - at >= sizeof word; at += sizeof word) {
        std::memcpy(&word, text.data() + at, sizeof word);
        state.take(word);
    }
    Word last = Word{text.size()} << 56;
    for (unsigned shift = 0; at < text.size(); ++at, shift += 8)
        last |= Word{static_cast<unsigned char>(text[at])} << shift;
    state.take(last);
    return static_cast<std::size_t>(state.end());
}

} // namespace zorvan::internal
