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
#include <string_view>
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
///
/// A change that throws has changed nothing, as long as items change places without exceptions.
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
        areAscending_ = true;
    }
    /// Everything is shown again.
    Items release() noexcept {
        places_.reset();
        firsts_.clear();
        marks_.clear();
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
    /// The shown items have been sorted by themselves, which brings their places into an order that
    /// has been made before.
    /// @{
    std::shared_ptr<Positions> placesInOrder(const Positions& shownOrder) const;
    void setPlaces(std::shared_ptr<Positions> places) noexcept;
    /// @}
    /// Sorts the items themselves.
    template <class Order>
    void sort(const Order& by);
    void reverse();

private:
    /// What is known of the first places: they are the items' own because the filter was just set;
    /// nothing; or all of them.
    enum class Finding { own, lost, done };

    /// A byte of the hash of each item, among which an equal one is found in no time.
    using Marks = std::vector<char>;

    /// So many are looked for one by one before all are found, which costs about as much.
    static constexpr std::int64_t mostSearches = Hashable<Item> ? 2048 : 64;

    std::int64_t count() const noexcept { return countOf(items_); }
    void setFinding(Finding finding) const noexcept {
        finding_ = finding;
        searches_ = 0;
        firsts_.clear();
    }
    static Marks marksOf(const Items& items);
    std::int64_t find(const Item& item) const;
    void findFirsts(const Items& shown) const;
    using PlaceOfPlace = std::unordered_map<std::int64_t, std::int64_t>;

    Positions& placesToChange();
    PlaceOfPlace freedPlaces(const IndexSet& at, const Positions& lost) const;
    void handOver(const PlaceOfPlace& freed) noexcept;
    void closeUp(const IndexSet& at) noexcept;
    void lose() noexcept {
        setFinding(Finding::lost);
        areAscending_ = false;
    }
    /// Changes the items, and the marks as they are.
    template <class Change>
    void changeItems(const Change& change) {
        change(items_);
        if (!marks_.empty())
            change(marks_);
    }

    Items items_;
    std::shared_ptr<Positions> places_;
    mutable Finding finding_ = Finding::own;
    /// When all are found and not all are the items' own.
    mutable Positions firsts_;
    bool areAscending_ = true; // the places, for sure
    /// How many were looked for one by one since the places were lost.
    mutable std::int64_t searches_ = 0;
    /// Of the items, made by the first search; none before.
    mutable Marks marks_;
};

template <class Item>
auto FullList<Item>::positions(const Items& shown, const IndexSet& at) const -> Positions {
    if (finding_ == Finding::lost && searches_ + at.count() > mostSearches)
        findFirsts(shown);
    const bool isSearched = finding_ == Finding::lost;
    if (isSearched)
        searches_ += at.count();
    const Positions& found = firsts_.empty() ? *places_ : firsts_;
    Positions result;
    result.reserve(static_cast<std::size_t>(at.count()));
    for (const std::int64_t position : at) {
        const auto index = static_cast<std::size_t>(position);
        const std::int64_t first = isSearched ? find(shown[index]) : found[index];
        result.push_back(first >= 0 ? first : position);
    }
    return result;
}

template <class Item>
auto FullList<Item>::marksOf(const Items& items) -> Marks {
    Marks marks(items.size());
    if constexpr (Hashable<Item>)
        std::transform(items.begin(), items.end(), marks.begin(),
                       [](const Item& item) { return static_cast<char>(mixedHash(item)); });
    return marks;
}

/// The first place of an equal item, -1 when there is none.
template <class Item>
std::int64_t FullList<Item>::find(const Item& item) const {
    if constexpr (!Hashable<Item>) {
        const auto found = std::find(items_.begin(), items_.end(), item);
        return found == items_.end() ? -1 : found - items_.begin();
    } else {
        if (marks_.empty())
            marks_ = marksOf(items_);
        const std::string_view marks(marks_.data(), marks_.size());
        const auto mark = static_cast<char>(mixedHash(item));
        std::size_t place = marks.find(mark);
        while (place != marks.npos && !(items_[place] == item))
            place = marks.find(mark, place + 1);
        return place == marks.npos ? -1 : static_cast<std::int64_t>(place);
    }
}

template <class Item>
void FullList<Item>::findFirsts(const Items& shown) const {
    const FirstPositions<Item> positions(items_);
    Positions firsts(shown.size());
    std::transform(shown.begin(), shown.end(), firsts.begin(),
                   [&positions](const Item& item) { return positions.of(item); });
    setFinding(Finding::done);
    if (firsts != *places_)
        firsts_ = std::move(firsts);
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
    const Reordering change = Reordering::inserting(count(), full, countOf(added));
    Marks addedMarks = marks_.empty() ? Marks() : marksOf(added);
    Positions& places = placesToChange();
    Room roomForPlaces(places, passing.size());
    Room roomForMarks(marks_, addedMarks.size());
    Room roomForItems(items_, added.size());
    // Nothing throws from here on.
    lose();
    change.apply(places);
    for (std::int64_t& place : passing)
        place += full;
    roomForPlaces.insert(places, at, passing);
    if (!addedMarks.empty())
        roomForMarks.insert(marks_, full, addedMarks);
    roomForItems.insert(items_, full, added);
}

template <class Item>
void FullList<Item>::remove(const Items& shown, const IndexSet& at) {
    const Positions lost = positions(shown, at);
    const IndexSet removed = IndexSet::of(lost);
    const Reordering change = Reordering::removing(count(), removed);
    const PlaceOfPlace freed = freedPlaces(at, lost);
    placesToChange();
    // Nothing throws from here on.
    handOver(freed);
    if (areAscending_)
        closeUp(at);
    else
        change.apply(*places_);
    zorvan::remove(*places_, at);
    if (finding_ == Finding::own || !firsts_.empty())
        setFinding(Finding::lost);
    changeItems([&removed](auto& list) { zorvan::remove(list, removed); });
}

/// Where the full list loses an equal item before the shown one, that one's place is free for
/// whoever is shown of the item that goes.
template <class Item>
auto FullList<Item>::freedPlaces(const IndexSet& at, const Positions& lost) const -> PlaceOfPlace {
    PlaceOfPlace freed;
    std::size_t i = 0;
    for (const std::int64_t shown : at) {
        const std::int64_t place = (*places_)[static_cast<std::size_t>(shown)];
        if (place != lost[i])
            freed.insert_or_assign(lost[i], place);
        ++i;
    }
    return freed;
}

template <class Item>
void FullList<Item>::handOver(const PlaceOfPlace& freed) noexcept {
    if (freed.empty())
        return;
    areAscending_ = false;
    for (std::int64_t& place : *places_)
        if (const auto found = freed.find(place); found != freed.end())
            place = found->second;
}

/// What the places become when those at `at` go: each is less by those before it, which needs no
/// asking where they stand as they ascend.
template <class Item>
void FullList<Item>::closeUp(const IndexSet& at) noexcept {
    std::int64_t gone = 0;
    auto place = places_->begin() + *at.first();
    const auto comeForward = [&](auto end) {
        for (; place != end; ++place)
            *place -= gone;
    };
    for (const IndexSet::Range range : at.ranges()) {
        comeForward(places_->begin() + range.lower);
        gone += range.count();
    }
    comeForward(places_->end());
}

template <class Item>
void FullList<Item>::move(const Items& shown, const IndexSet& from, std::int64_t to) {
    const IndexSet moved = IndexSet::of(positions(shown, from));
    const std::int64_t target = position(shown, to);
    const Reordering change = Reordering::moving(count(), moved, target);
    Positions movedPlaces;
    movedPlaces.reserve(static_cast<std::size_t>(from.count()));
    Items movedItems;
    movedItems.reserve(static_cast<std::size_t>(moved.count()));
    Marks movedMarks;
    movedMarks.reserve(static_cast<std::size_t>(moved.count()));
    Positions& places = placesToChange();
    // Nothing throws from here on.
    lose();
    change.apply(places);
    detail::move(places, from, to, movedPlaces);
    detail::move(items_, moved, target, movedItems);
    if (!marks_.empty())
        detail::move(marks_, moved, target, movedMarks);
}

template <class Item>
auto FullList<Item>::placesInOrder(const Positions& shownOrder) const
    -> std::shared_ptr<Positions> {
    auto places = std::make_shared<Positions>(*places_);
    permute(*places, shownOrder);
    return places;
}

template <class Item>
void FullList<Item>::setPlaces(std::shared_ptr<Positions> places) noexcept {
    places_ = std::move(places);
    lose();
}

template <class Item>
template <class Order>
void FullList<Item>::sort(const Order& by) {
    const Positions order = sortedPositions(items_, by);
    const Reordering change = Reordering::permuting(order);
    Positions& places = placesToChange();
    Marks marks = marks_;
    if (!marks.empty())
        permute(marks, order);
    permute(items_, order);
    // Nothing throws from here on.
    lose();
    marks_ = std::move(marks);
    change.apply(places);
}

template <class Item>
void FullList<Item>::reverse() {
    const Reordering change = Reordering::reversing(count());
    Positions& places = placesToChange();
    // Nothing throws from here on.
    lose();
    std::reverse(places.begin(), places.end());
    change.apply(places);
    changeItems([](auto& list) { std::reverse(list.begin(), list.end()); });
}

} // namespace zorvan::detail
