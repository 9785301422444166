#pragma once

#include <zorvan/collections/IndexSet.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

// How two ascending lists of ranges are merged. They interleave without a pattern, and a branch on
// which side comes next would be mispredicted half of the time: so the steps select instead of
// branching. Each step then waits for the one before it; so the lists are cut into stretches that
// are merged side by side.
namespace zorvan::internal {

using Range = IndexSet::Range;

/// -1 for a negative number, else 0. Arithmetic, because compilers make branches of comparisons and
/// of "?:". It is given differences of positions, which are at least -1, so that none overflows.
inline std::int64_t signOf(std::int64_t number) noexcept { return number >> 63; }
inline std::int64_t chosen(std::int64_t sign, std::int64_t ifNegative,
                           std::int64_t otherwise) noexcept {
    return otherwise ^ ((otherwise ^ ifNegative) & sign);
}

/// A stretch of two sets to be merged. A step consumes at least one range, and at most one of each.
/// `Second` walks the ranges of the second set.
template <class Second>
struct Stretch {
    const Range* a;
    const Range* aEnd;
    Second b;
    Second bEnd;
    Range* out;

    std::ptrdiff_t sureSteps() const noexcept {
        return std::min<std::ptrdiff_t>(aEnd - a, bEnd - b);
    }
};

template <class Second>
struct Intersection : Stretch<Second> {
    static constexpr std::size_t unused = 0; // of what is written, at the start

    /// A range of the second set may reach into several stretches. They end between ranges of the
    /// first, so that no two of them give the same position.
    static bool isBefore(Range range, std::int64_t start) noexcept { return range.upper <= start; }

    void step() noexcept {
        const Range x = *this->a, y = *this->b;
        const std::int64_t lower = std::max(x.lower, y.lower);
        const std::int64_t upper = std::min(x.upper, y.upper);
        *this->out = {lower, upper};
        this->out -= signOf(lower - upper);
        this->a += 1 + signOf(y.upper - x.upper);
        this->b += 1 + signOf(x.upper - y.upper);
    }
    void finish() noexcept {}
};

template <class Second>
struct Union : Stretch<Second> {
    static constexpr std::size_t unused = 1;

    /// What reaches into the next stretch is joined with what that one gives.
    static bool isBefore(Range range, std::int64_t start) noexcept { return range.lower < start; }

    void step() noexcept {
        const Range x = *this->a, y = *this->b;
        const std::int64_t isSecond = signOf(y.lower - x.lower);
        this->a += 1 + isSecond;
        this->b -= isSecond;
        take({chosen(isSecond, y.lower, x.lower), chosen(isSecond, y.upper, x.upper)});
    }
    void finish() noexcept {
        while (this->a != this->aEnd)
            take(*this->a++);
        while (this->b != this->bEnd)
            take(*this->b++);
        *this->out++ = current;
    }
    void take(Range next) noexcept {
        const std::int64_t isApart = signOf(current.upper - next.lower);
        *this->out = current;
        this->out -= isApart;
        current.lower = chosen(isApart, next.lower, current.lower);
        current.upper = std::max(current.upper, next.upper);
    }

    Range current{-1, -1}; // none yet: what is written first is unused
};

/// Walks what lies between the ranges of a set, before the first and after the last.
class Gaps {
public:
    Gaps(std::span<const Range> ranges, std::size_t place) : ranges_(ranges), place_(place) {}

    Range operator*() const noexcept {
        return {place_ == 0 ? 0 : ranges_[place_ - 1].upper,
                place_ == ranges_.size() ? IndexSet::maximumIndex + 1 : ranges_[place_].lower};
    }
    Gaps& operator+=(std::ptrdiff_t count) noexcept {
        place_ += static_cast<std::size_t>(count);
        return *this;
    }
    friend Gaps operator+(Gaps gaps, std::ptrdiff_t count) noexcept { return gaps += count; }
    friend std::ptrdiff_t operator-(Gaps a, Gaps b) noexcept {
        return static_cast<std::ptrdiff_t>(a.place_ - b.place_);
    }

private:
    std::span<const Range> ranges_;
    std::size_t place_;
};

/// Merges three stretches side by side. They are taken by value, so that they stay in registers.
/// Gives where the result of each ends.
template <class Merge>
std::array<Range*, 3> mergeTogether(Merge first, Merge second, Merge third) {
    for (;;) {
        std::ptrdiff_t steps = std::min({first.sureSteps(), second.sureSteps(), third.sureSteps()});
        if (steps <= 0)
            break;
        for (; steps > 0; --steps) {
            first.step();
            second.step();
            third.step();
        }
    }
    const auto finish = [](Merge stretch) {
        while (stretch.sureSteps() > 0)
            stretch.step();
        stretch.finish();
        return stretch.out;
    };
    return {finish(first), finish(second), finish(third)};
}

/// Moves a piece of a result to the end of what comes before it, which may meet its first ranges.
inline Range* join(const Range* begin, Range* end, std::span<const Range> piece) {
    for (; !piece.empty() && end != begin && piece[0].lower <= end[-1].upper;
         piece = piece.subspan(1))
        end[-1].upper = std::max(end[-1].upper, piece[0].upper);
    return std::copy(piece.begin(), piece.end(), end);
}

} // namespace zorvan::internal
