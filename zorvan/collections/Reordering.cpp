#include <zorvan/collections/Reordering.h>

#include <algorithm>
#include <limits>

namespace zorvan {

namespace {

std::vector<std::int64_t> inverse(std::span<const std::int64_t> positions, std::int64_t count) {
    std::vector<std::int64_t> places(static_cast<std::size_t>(count), -1);
    for (std::size_t i = 0; i < positions.size(); ++i)
        if (positions[i] >= 0)
            places[static_cast<std::size_t>(positions[i])] = static_cast<std::int64_t>(i);
    return places;
}

} // namespace

Reordering Reordering::none(std::int64_t count) { return inserting(count, count, 0); }

Reordering Reordering::inserting(std::int64_t count, std::int64_t at, std::int64_t inserted) {
    return Reordering(std::vector<Stretch>{{0, 1, 0}, {at, 1, inserted}, {count, 0, -1}});
}

Reordering Reordering::removing(std::int64_t count, const IndexSet& at) {
    std::vector<Stretch> stretches{{0, 1, 0}};
    std::int64_t gone = 0;
    for (const IndexSet::Range range : at.ranges()) {
        gone += range.count();
        stretches.push_back({range.lower, 0, -1});
        stretches.push_back({range.upper, 1, -gone});
    }
    stretches.push_back({count, 0, -1});
    return Reordering(std::move(stretches));
}

Reordering Reordering::moving(std::int64_t count, const IndexSet& from, std::int64_t to) {
    const std::int64_t landing = to - from.count(IndexSet::Range{0, to});
    std::vector<Stretch> stretches;
    std::int64_t taken = 0;
    const auto stay = [&](std::int64_t lower, std::int64_t upper) {
        if (lower < to)
            stretches.push_back({lower, 1, -taken});
        if (upper > to)
            stretches.push_back({std::max(lower, to), 1, from.count() - taken});
    };
    std::int64_t end = 0;
    for (const IndexSet::Range range : from.ranges()) {
        stay(end, range.lower);
        stretches.push_back({range.lower, 1, landing + taken - range.lower});
        taken += range.count();
        end = range.upper;
    }
    stay(end, count);
    stretches.push_back({count, 0, -1});
    return Reordering(std::move(stretches));
}

Reordering Reordering::reversing(std::int64_t count) {
    return Reordering(std::vector<Stretch>{{0, -1, count - 1}, {count, 0, -1}});
}

Reordering Reordering::permuting(std::span<const std::int64_t> oldPositions) {
    return Reordering(inverse(oldPositions, static_cast<std::int64_t>(oldPositions.size())));
}

Reordering Reordering::refiltering(std::int64_t count,
                                   std::optional<std::span<const std::int64_t>> before,
                                   std::optional<std::span<const std::int64_t>> after) {
    Reordering shown = after ? Reordering(inverse(*after, count)) : none(count);
    if (!before)
        return shown;
    std::vector<std::int64_t> positions(before->begin(), before->end());
    shown.apply(positions);
    return Reordering(std::move(positions));
}

std::size_t Reordering::stretchOf(std::int64_t position) const noexcept {
    const auto next =
        std::upper_bound(stretches_.begin(), stretches_.end(), position,
                         [](std::int64_t p, const Stretch& stretch) { return p < stretch.lower; });
    return static_cast<std::size_t>(next - stretches_.begin()) - 1;
}

std::optional<std::int64_t> Reordering::newPosition(std::int64_t old) const noexcept {
    std::int64_t position = old;
    apply(std::span(&position, 1));
    return position < 0 ? std::nullopt : std::optional(position);
}

void Reordering::apply(std::span<std::int64_t> positions) const noexcept {
    if (stretches_.empty()) {
        for (std::int64_t& position : positions)
            position = position >= 0 && position < std::ssize(newPositions_)
                           ? newPositions_[static_cast<std::size_t>(position)]
                           : -1;
        return;
    }
    // The stretch of the position before is mostly that of the next one too.
    Stretch stretch = stretches_[0];
    std::uint64_t length = 0;
    for (std::int64_t& position : positions) {
        if (static_cast<std::uint64_t>(position) - static_cast<std::uint64_t>(stretch.lower) >=
            length) {
            if (position < 0) {
                position = -1;
                continue;
            }
            const std::size_t at = stretchOf(position);
            stretch = stretches_[at];
            length = at + 1 < stretches_.size()
                         ? static_cast<std::uint64_t>(stretches_[at + 1].lower - stretch.lower)
                         : std::numeric_limits<std::uint64_t>::max() / 2;
        }
        position = stretch.offset + stretch.sign * position;
    }
}

} // namespace zorvan
