#pragma once

#include <zorvan/collections/Array.h>
#include <zorvan/collections/FirstPositions.h>
#include <zorvan/collections/IndexSet.h>
#include <zorvan/collections/Permutation.h>
#include <zorvan/collections/Reordering.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

namespace zorvan::detail {

/// All items of a managed list while a filter shows some of them: carries changes that are made
/// through shown positions over to the full list.
///
/// Changes take a shown item to stand at the *first* place of an equal one; only the first change
/// after a filter was set takes it to stand at its own. That one is kept besides, for whoever
/// follows items exactly.
///
/// The shown items are the owner's. They are passed to each call as they are before the change.
template <class Item>
class FullList {
public:
    using Items = std::vector<Item>;
    using Positions = std::vector<std::int64_t>;

    const Items& items() const noexcept { return items_; }
    /// Where each shown item itself stands; -1 for one whose place was lost. Shared: a change makes
    /// a copy when somebody else still reads it. Null when everything is shown.
    std::shared_ptr<const Positions> places() const noexcept { return places_; }

    void setItems(Items items) noexcept { items_ = std::move(items); }
    /// A filter shows the items at these places.
    void show(Positions places) {
        places_ = std::make_shared<Positions>(std::move(places));
        setFinding(Finding::own);
    }
    /// Everything is shown again.
    Items release() noexcept {
        places_.reset();
        firsts_.clear();
        return std::exchange(items_, {});
    }

    /// Where changes take the shown items to stand; the shown position itself when no item is
    /// equal.
    Positions positions(const Items& shown, const IndexSet& at) const;
    /// The same of one, and the position itself for the end of the shown items.
    std::int64_t position(const Items& shown, std::int64_t at) const {
        return at < countOf(shown) ? positions(shown, {at}).front() : at;
    }

    /// `passing` are the positions in `added` of the items that the filter lets through.
    void insert(const Items& shown, std::int64_t at, Items added, Positions passing);
    void remove(const Items& shown, const IndexSet& at);
    void move(const Items& shown, const IndexSet& from, std::int64_t to);
    /// The shown items are sorted to `shownOrder`. What the order throws leaves the items as they
    /// were.
    template <class Order>
    void sort(const Order& by, const Positions& shownOrder);
    void reverse();

private:
    /// What is known of the first places: they are the items' own because the filter was just set;
    /// nothing; or all of them.
    enum class Finding { own, lost, done };

    /// Up to so many are looked for one by one, which is quicker than finding all; by the time
    /// there were many such walks, finding all would have cost no more.
    static constexpr std::int64_t few = 4;
    static constexpr std::int64_t manyWalks = 64;

    std::int64_t count() const noexcept { return countOf(items_); }
    void setFinding(Finding finding) const noexcept {
        finding_ = finding;
        walks_ = 0;
        firsts_.clear();
    }
    /// The next place of an item from `from` on, -1 when there is none.
    std::int64_t find(const Item& item, std::int64_t from) const {
        const auto found = std::find(items_.begin() + from, items_.end(), item);
        return found == items_.end() ? -1 : found - items_.begin();
    }
    void findFirsts(const Items& shown) const;
    Positions& placesToChange();
    void handOverPlaces(const IndexSet& at, const Positions& lost);
    void renewFirsts(const IndexSet& at, const Positions& lost);

    Items items_;
    std::shared_ptr<Positions> places_;
    mutable Finding finding_ = Finding::own;
    /// When all are found and not all are the items' own.
    mutable Positions firsts_;
    /// How many were looked for one by one since the last change that moved or brought items.
    mutable std::int64_t walks_ = 0;
};

template <class Item>
auto FullList<Item>::positions(const Items& shown, const IndexSet& at) const -> Positions {
    const bool isWalked = finding_ == Finding::lost && at.count() <= few && walks_ < manyWalks;
    if (isWalked)
        walks_ += at.count();
    else if (finding_ == Finding::lost)
        findFirsts(shown);
    const Positions& found = firsts_.empty() ? *places_ : firsts_;
    Positions result;
    result.reserve(static_cast<std::size_t>(at.count()));
    for (const std::int64_t position : at) {
        const auto index = static_cast<std::size_t>(position);
        const std::int64_t first = isWalked ? find(shown[index], 0) : found[index];
        result.push_back(first >= 0 ? first : position);
    }
    return result;
}

template <class Item>
void FullList<Item>::findFirsts(const Items& shown) const {
    const FirstPositions<Item> positions(items_);
    setFinding(Finding::done);
    firsts_.resize(shown.size());
    std::transform(shown.begin(), shown.end(), firsts_.begin(),
                   [&positions](const Item& item) { return positions.of(item); });
    if (firsts_ == *places_)
        firsts_.clear();
}

template <class Item>
auto FullList<Item>::placesToChange() -> Positions& {
    if (places_.use_count() > 1)
        places_ = std::make_shared<Positions>(*places_);
    return *places_;
}

template <class Item>
void FullList<Item>::insert(const Items& shown, std::int64_t at, Items added, Positions passing) {
    const std::int64_t full = position(shown, at);
    Positions& places = placesToChange();
    Reordering::inserting(count(), full, countOf(added)).apply(places);
    for (std::int64_t& place : passing)
        place += full;
    places.insert(places.begin() + at, passing.begin(), passing.end());
    items_.insert(items_.begin() + full, std::make_move_iterator(added.begin()),
                  std::make_move_iterator(added.end()));
    setFinding(Finding::lost);
}

template <class Item>
void FullList<Item>::remove(const Items& shown, const IndexSet& at) {
    const Positions lost = positions(shown, at);
    const IndexSet removed = IndexSet::of(lost);
    const Reordering change = Reordering::removing(count(), removed);
    handOverPlaces(at, lost);
    zorvan::remove(*places_, at);
    change.apply(*places_);
    renewFirsts(at, lost);
    if (!firsts_.empty()) {
        zorvan::remove(firsts_, at);
        change.apply(firsts_);
    }
    zorvan::remove(items_, removed);
}

/// Where the full list loses an equal item before the shown one, that one's place is free for
/// whoever is shown of the item that goes.
template <class Item>
void FullList<Item>::handOverPlaces(const IndexSet& at, const Positions& lost) {
    Positions& places = placesToChange();
    std::unordered_map<std::int64_t, std::int64_t> freed;
    std::size_t i = 0;
    for (const std::int64_t shown : at) {
        const std::int64_t place = places[static_cast<std::size_t>(shown)];
        if (place != lost[i])
            freed.insert_or_assign(lost[i], place);
        ++i;
    }
    if (freed.empty())
        return;
    for (std::int64_t& place : places)
        if (const auto found = freed.find(place); found != freed.end())
            place = found->second;
}

/// What was found stays true of items that only lose others before them; those that lose their
/// first equal get the next one.
template <class Item>
void FullList<Item>::renewFirsts(const IndexSet& at, const Positions& lost) {
    if (finding_ == Finding::own || (!firsts_.empty() && at.count() > few))
        setFinding(Finding::lost);
    if (firsts_.empty())
        return;
    for (const std::int64_t first : lost) {
        const std::int64_t next = find(items_[static_cast<std::size_t>(first)], first + 1);
        std::replace(firsts_.begin(), firsts_.end(), first, next);
    }
}

template <class Item>
void FullList<Item>::move(const Items& shown, const IndexSet& from, std::int64_t to) {
    const IndexSet moved = IndexSet::of(positions(shown, from));
    const std::int64_t target = position(shown, to);
    Positions& places = placesToChange();
    Reordering::moving(count(), moved, target).apply(places);
    zorvan::move(places, from, to);
    zorvan::move(items_, moved, target);
    setFinding(Finding::lost);
}

template <class Item>
template <class Order>
void FullList<Item>::sort(const Order& by, const Positions& shownOrder) {
    Positions& places = placesToChange();
    setFinding(Finding::lost);
    permute(places, shownOrder);
    const Positions order = sortedPositions(items_, by);
    Reordering::permuting(order).apply(places);
    permute(items_, order);
}

template <class Item>
void FullList<Item>::reverse() {
    Positions& places = placesToChange();
    std::reverse(places.begin(), places.end());
    Reordering::reversing(count()).apply(places);
    std::reverse(items_.begin(), items_.end());
    setFinding(Finding::lost);
}

} // namespace zorvan::detail
