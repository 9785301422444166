#pragma once

#include <zorvan/collections/Array.h>
#include <zorvan/collections/FirstPositions.h>
#include <zorvan/collections/IndexSet.h>
#include <zorvan/collections/ManagedListEdition.h>
#include <zorvan/collections/SelectionQueries.h>
#include <zorvan/platform/dispatch/NSNotificationCenter.h>

#include <algorithm>
#include <concepts>
#include <cstdint>
#include <functional>
#include <memory>
#include <numeric>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zorvan {

struct ManagedListViewReloader;

/// The list model behind a table view: items in order, a selection, and an optional filter.
///
/// While a filter is set the list shows only the items that pass it, keeps the full list aside, and
/// carries every change made through shown positions over to it. Each change is announced twice on
/// the default notification centre, synchronously, with the list as sender and the same edition
/// under the key "Edition": before the lists change and after. A change that changes nothing is not
/// announced.
///
/// Shown positions outside the list stop the program, except in the selection. Used from one
/// thread. Changing the list from an observer of the announcement *before* a change stops the
/// program.
///
/// Cost: linear in what is shown, plus, when a change is made through a filter, finding each shown
/// item in the full list; that is linear for items with a `std::hash`, a sort for items that only
/// have an order, and quadratic for items that have nothing but equality.
template <std::equality_comparable Item>
class ManagedList : public std::enable_shared_from_this<ManagedList<Item>>,
                    public SelectionQueries<ManagedList<Item>> {
    struct Key {};

public:
    /// True for an item to show.
    using Filter = std::function<bool(const Item&)>;
    /// True when the first item comes before the second; a strict weak order.
    using Order = std::function<bool(const Item&, const Item&)>;

    /// An edition of a list of this item type.
    struct Edition : ManagedListEdition {
        using ManagedListEdition::ManagedListEdition;
    };
    using Action = ManagedListEdition::Action;
    /// Shows editions in a table; in `<zorvan/interface/ManagedListViewReloader.h>`.
    using ViewReloader = ManagedListViewReloader;

    static constexpr std::string_view willReloadNotification = "ManagedListWillReloadNotification";
    static constexpr std::string_view didReloadNotification = "ManagedListDidReloadNotification";
    static constexpr std::string_view editionKey = "Edition";

    static std::shared_ptr<ManagedList> create(std::vector<Item> items = {}) {
        return std::make_shared<ManagedList>(Key{}, std::move(items));
    }
    ManagedList(Key, std::vector<Item> items) : items_(std::move(items)) {}

    /// The shown items.
    const std::vector<Item>& items() const noexcept { return items_; }
    std::int64_t count() const noexcept { return detail::countOf(items_); }
    /// All items, shown or not.
    const std::vector<Item>& allItems() const noexcept { return filter_ ? fullItems_ : items_; }

    /// The selected shown positions.
    const IndexSet& selection() const noexcept { return selection_; }
    /// Positions outside the list are passed over.
    void setSelection(const IndexSet& selection);
    void select(const IndexSet& selection) { setSelection(selection); }

    /// Empty when no filter is set.
    const Filter& filter() const noexcept { return filter_; }
    /// Shows what passes the filter, or everything for an empty one. Selected items that stay in
    /// sight stay selected. What the filter throws reaches the caller, and nothing has changed.
    void setFilter(Filter filter);

    /// Inserts before the shown item at `at` and deselects everything. Under a filter, items that
    /// do not pass are kept out of sight.
    void insert(const std::vector<Item>& contentOf, std::int64_t at);
    void remove(const IndexSet& at);
    /// Moves items before the shown item at `to`, or to the end; they become the selection.
    void move(const IndexSet& from, std::int64_t to);
    /// Sorts the shown items, and the full list as well under a filter; equal items keep their
    /// order. What the order throws reaches the caller.
    void sort(const Order& by);
    void reverseOrder();

    void append(const std::vector<Item>& contentOf) { insert(contentOf, count()); }
    void removeSelectedItems() { remove(IndexSet(selection_)); }
    void removeAllItems() { remove(this->allIndexes()); }
    void moveSelectedItems(std::int64_t to) { move(IndexSet(selection_), to); }

    /// Null when nothing is selected.
    const Item* firstSelectedItem() const { return itemAt(selection_.first()); }
    const Item* lastSelectedItem() const { return itemAt(selection_.last()); }
    /// The selected item when exactly one is, else null.
    const Item* singleSelectedItem() const { return itemAt(selection_.singleIndex()); }
    /// In ascending position order.
    std::vector<Item> selectedItems() const { return at(items_, selection_); }

    /// The edition that a notification of a list of this item type carries, else null. It lives in
    /// the notification.
    static const Edition* edition(const Notification& note) noexcept {
        return note.value<Edition>(editionKey);
    }

    /// Where the item at a shown position stands in the full list: the first place of an equal
    /// item. The position itself when no filter is set, and for the end of the shown list.
    std::int64_t fullPosition(std::int64_t shown) const;

private:
    /// What a filter lets through of a list.
    struct Passing {
        std::vector<Item> items;
        std::vector<std::int64_t> positions;
        IndexSet selection;
    };

    const Item* itemAt(std::optional<std::int64_t> index) const {
        return index ? &items_[static_cast<std::size_t>(*index)] : nullptr;
    }
    Edition begin(Action action) const {
        Edition edition(action);
        edition.oldSelection = selection_;
        return edition;
    }
    void announce(std::string_view name, const Edition& edition) {
        NSNotificationCenter::defaultCenter()->post(
            NSNotificationName(name), this->shared_from_this(),
            Notification::UserInfo{{std::string(editionKey), edition}});
    }
    void announceWill(const Edition& edition);
    void checkIsNotAnnouncing() const {
        if (isAnnouncingWill_)
            fatalError("A managed list was changed while it announced another change.");
    }

    IndexSet fullPositions(const IndexSet& shown) const;
    void findFullPositions() const;
    static std::vector<std::int64_t> sortedPositions(const std::vector<Item>& items,
                                                     const Order& by);
    static void permute(std::vector<Item>& items, const std::vector<std::int64_t>& positions);
    static Passing pass(const std::vector<Item>& items, const IndexSet& selection,
                        const Filter& filter);

    std::vector<Item> items_;
    std::vector<Item> fullItems_; // while a filter is set
    Filter filter_;
    IndexSet selection_;
    /// For each shown position its full one, -1 for none. Found again when it is next asked for.
    mutable std::vector<std::int64_t> mapping_;
    mutable bool isMappingCurrent_ = true;
    bool isAnnouncingWill_ = false;
};

template <std::equality_comparable Item>
void ManagedList<Item>::announceWill(const Edition& edition) {
    // Cleared by a guard: an observer may throw.
    const struct Guard {
        bool& flag;
        explicit Guard(bool& announcing) : flag(announcing) { flag = true; }
        ~Guard() { flag = false; }
    } guard(isAnnouncingWill_);
    announce(willReloadNotification, edition);
}

template <std::equality_comparable Item>
void ManagedList<Item>::findFullPositions() const {
    if (isMappingCurrent_)
        return;
    const detail::FirstPositions<Item> positions(fullItems_);
    mapping_.resize(items_.size());
    std::transform(items_.begin(), items_.end(), mapping_.begin(),
                   [&positions](const Item& item) { return positions.of(item); });
    isMappingCurrent_ = true;
}

template <std::equality_comparable Item>
std::int64_t ManagedList<Item>::fullPosition(std::int64_t shown) const {
    if (!filter_)
        return shown;
    findFullPositions();
    const bool isMapped = shown >= 0 && shown < detail::countOf(mapping_) &&
                          mapping_[static_cast<std::size_t>(shown)] >= 0;
    return isMapped ? mapping_[static_cast<std::size_t>(shown)] : shown;
}

template <std::equality_comparable Item>
IndexSet ManagedList<Item>::fullPositions(const IndexSet& shown) const {
    std::vector<std::int64_t> positions;
    positions.reserve(static_cast<std::size_t>(shown.count()));
    for (const std::int64_t position : shown)
        positions.push_back(fullPosition(position));
    return IndexSet::of(positions);
}

template <std::equality_comparable Item>
void ManagedList<Item>::setSelection(const IndexSet& selection) {
    checkIsNotAnnouncing();
    IndexSet valid = selection.intersection(this->allIndexes());
    if (valid == selection_)
        return;
    Edition edition = begin(Action::select);
    edition.newSelection = valid;
    announceWill(edition);
    selection_ = std::move(valid);
    announce(didReloadNotification, edition);
}

template <std::equality_comparable Item>
void ManagedList<Item>::insert(const std::vector<Item>& contentOf, std::int64_t at) {
    checkIsNotAnnouncing();
    if (contentOf.empty())
        return;
    detail::checkInsertion(items_, at);
    std::vector<Item> shown;
    std::copy_if(contentOf.begin(), contentOf.end(), std::back_inserter(shown),
                 [this](const Item& item) { return !filter_ || filter_(item); });
    Edition edition = begin(Action::insert);
    edition.insertedIndexes = IndexSet({.loc = at, .len = detail::countOf(shown)});
    edition.newSelection = IndexSet();
    announceWill(edition);

    if (filter_) {
        fullItems_.insert(fullItems_.begin() + fullPosition(at), contentOf.begin(),
                          contentOf.end());
        isMappingCurrent_ = false;
    }
    items_.insert(items_.begin() + at, std::make_move_iterator(shown.begin()),
                  std::make_move_iterator(shown.end()));
    selection_.removeAll();
    announce(didReloadNotification, edition);
}

template <std::equality_comparable Item>
void ManagedList<Item>::remove(const IndexSet& at) {
    checkIsNotAnnouncing();
    if (at.isEmpty())
        return;
    detail::checkPositions(items_, at);
    Edition edition = begin(Action::remove);
    edition.removedIndexes = at;
    edition.newSelection = selection_.afterRemoving(at);
    announceWill(edition);

    if (filter_) {
        zorvan::remove(fullItems_, fullPositions(at));
        isMappingCurrent_ = false;
    }
    zorvan::remove(items_, at);
    selection_ = *edition.newSelection;
    announce(didReloadNotification, edition);
}

template <std::equality_comparable Item>
void ManagedList<Item>::move(const IndexSet& from, std::int64_t to) {
    checkIsNotAnnouncing();
    if (from.isEmpty())
        return;
    detail::checkPositions(items_, from);
    detail::checkInsertion(items_, to);
    const std::int64_t landing = to - from.count(IndexSet::Range{0, to});
    Edition edition = begin(Action::move);
    edition.movedFromIndexes = from;
    announceWill(edition);

    if (filter_) {
        zorvan::move(fullItems_, fullPositions(from), fullPosition(to));
        isMappingCurrent_ = false;
    }
    zorvan::move(items_, from, to);
    selection_ = IndexSet({.loc = landing, .len = from.count()});
    edition.movedToIndexes = selection_;
    edition.newSelection = selection_;
    announce(didReloadNotification, edition);
}

template <std::equality_comparable Item>
std::vector<std::int64_t> ManagedList<Item>::sortedPositions(const std::vector<Item>& items,
                                                             const Order& by) {
    std::vector<std::int64_t> positions(items.size());
    std::iota(positions.begin(), positions.end(), 0);
    std::stable_sort(
        positions.begin(), positions.end(), [&items, &by](std::int64_t a, std::int64_t b) {
            return by(items[static_cast<std::size_t>(a)], items[static_cast<std::size_t>(b)]);
        });
    return positions;
}

template <std::equality_comparable Item>
void ManagedList<Item>::permute(std::vector<Item>& items,
                                const std::vector<std::int64_t>& positions) {
    std::vector<Item> permuted;
    permuted.reserve(items.size());
    for (const std::int64_t position : positions)
        permuted.push_back(std::move(items[static_cast<std::size_t>(position)]));
    items = std::move(permuted);
}

template <std::equality_comparable Item>
void ManagedList<Item>::sort(const Order& by) {
    checkIsNotAnnouncing();
    if (items_.empty())
        return;
    // Positions are sorted, not items, so that an order that throws leaves every item in its place.
    const std::vector<std::int64_t> positions = sortedPositions(items_, by);
    IndexSet selection;
    for (std::size_t i = 0; i < positions.size(); ++i)
        if (selection_.contains(positions[i]))
            selection.insert(static_cast<std::int64_t>(i));
    Edition edition = begin(Action::sort);
    edition.newSelection = selection;
    announceWill(edition);

    permute(items_, positions);
    selection_ = std::move(selection);
    if (filter_) {
        isMappingCurrent_ = false;
        permute(fullItems_, sortedPositions(fullItems_, by));
    }
    announce(didReloadNotification, edition);
}

template <std::equality_comparable Item>
void ManagedList<Item>::reverseOrder() {
    checkIsNotAnnouncing();
    if (items_.empty())
        return;
    Edition edition = begin(Action::sort);
    edition.newSelection = selection_.afterReversing(count());
    announceWill(edition);

    std::reverse(items_.begin(), items_.end());
    selection_ = *edition.newSelection;
    if (filter_) {
        std::reverse(fullItems_.begin(), fullItems_.end());
        isMappingCurrent_ = false;
    }
    announce(didReloadNotification, edition);
}

template <std::equality_comparable Item>
auto ManagedList<Item>::pass(const std::vector<Item>& items, const IndexSet& selection,
                             const Filter& filter) -> Passing {
    Passing passing;
    std::span<const IndexSet::Range> selected = selection.ranges(); // from the position on
    for (std::int64_t full = 0; full < detail::countOf(items); ++full) {
        const Item& item = items[static_cast<std::size_t>(full)];
        if (!filter(item))
            continue;
        while (!selected.empty() && selected.front().upper <= full)
            selected = selected.subspan(1);
        if (!selected.empty() && selected.front().lower <= full)
            passing.selection.insert(detail::countOf(passing.positions));
        passing.positions.push_back(full);
    }
    // Afterwards, when it is known how many there are.
    passing.items.reserve(passing.positions.size());
    for (const std::int64_t full : passing.positions)
        passing.items.push_back(items[static_cast<std::size_t>(full)]);
    return passing;
}

template <std::equality_comparable Item>
void ManagedList<Item>::setFilter(Filter filter) {
    checkIsNotAnnouncing();
    if (!filter_ && !filter)
        return;
    Edition edition = begin(Action::filter);
    announceWill(edition);

    IndexSet selection = filter_ ? fullPositions(selection_) : selection_;
    if (filter) {
        Passing passing = pass(allItems(), selection, filter);
        if (!filter_)
            fullItems_ = std::move(items_);
        items_ = std::move(passing.items);
        mapping_ = std::move(passing.positions);
        selection = std::move(passing.selection);
    } else {
        items_ = std::move(fullItems_);
        fullItems_.clear();
        mapping_.clear();
    }
    isMappingCurrent_ = true;
    filter_ = std::move(filter);
    selection_ = std::move(selection);
    edition.newSelection = selection_;
    announce(didReloadNotification, edition);
}

} // namespace zorvan
