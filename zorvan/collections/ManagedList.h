#pragma once

#include <zorvan/collections/Array.h>
#include <zorvan/collections/FullList.h>
#include <zorvan/collections/IndexSet.h>
#include <zorvan/collections/ManagedListEdition.h>
#include <zorvan/collections/Permutation.h>
#include <zorvan/collections/Reordering.h>
#include <zorvan/collections/SelectionQueries.h>
#include <zorvan/platform/dispatch/NSNotificationCenter.h>
#include <zorvan/platform/foundation/NameLiteral.h>

#include <algorithm>
#include <concepts>
#include <cstdint>
#include <functional>
#include <iterator>
#include <memory>
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
/// the default notification centre, synchronously, with the list as sender and its edition under
/// the key "Edition": before the lists change, with what is known by then, and after. A change that
/// changes nothing is not announced, and one whose filter or order throws neither, except where
/// `sort` says so. The list lives at least until a change has been announced.
///
/// When memory runs out, or an item throws, the list is as it was, or has changed as a whole,
/// whether or not that has been announced. For that, a change through a filter copies items that
/// may throw when they are moved; without a filter such may be lost. What an observer throws
/// reaches the caller, too: observers after it are not told.
///
/// Shown positions outside the list stop the program, except in the selection. Used from one
/// thread. Changing the list from an observer of the announcement *before* a change stops the
/// program; calls that change nothing are let pass. It may be changed from one of the announcement
/// after a change. That change is announced before the first one has reached the observers added
/// later: a view must be told of both in order, so such an observer is added after the views, or
/// leaves its change to the main queue.
///
/// Cost: linear in what is shown, plus, when a change is made through a filter, finding the items
/// concerned in the full list. A few are looked for one by one; what is found stays known over
/// removals. Many at once are linear for items with a `std::hash`, a sort for items that only have
/// an order, and quadratic for items that have nothing but equality. Unequal items that the order
/// does not tell apart are walked: they are quadratic in how many of them it puts together.
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
        /// An edition of that action, with all sets absent.
        using ManagedListEdition::ManagedListEdition;
    };
    /// What kind of change it was.
    using Action = ManagedListEdition::Action;
    /// Shows editions in a table; in `<zorvan/interface/ManagedListViewReloader.h>`.
    using ViewReloader = ManagedListViewReloader;

    /// Posted before and after each change.
    /// @{
    static constexpr NameLiteral willReloadNotification = "ManagedListWillReloadNotification";
    static constexpr NameLiteral didReloadNotification = "ManagedListDidReloadNotification";
    /// @}
    /// The key of the edition in what is posted.
    static constexpr NameLiteral editionKey = "Edition";

    /// A list of those items, unselected and unfiltered.
    static std::shared_ptr<ManagedList> create(std::vector<Item> items = {}) {
        return std::make_shared<ManagedList>(Key{}, std::move(items));
    }
    /// For `create`.
    ManagedList(Key, std::vector<Item> items) : items_(std::move(items)) {}
    ManagedList(const ManagedList&) = delete;
    ManagedList& operator=(const ManagedList&) = delete;

    /// The shown items.
    const std::vector<Item>& items() const noexcept { return items_; }
    /// How many items are shown.
    std::int64_t count() const noexcept { return detail::countOf(items_); }
    /// All items, shown or not.
    const std::vector<Item>& allItems() const noexcept { return filter_ ? full_.items() : items_; }

    /// The selected shown positions.
    const IndexSet& selection() const noexcept { return selection_; }
    /// Positions outside the list are passed over.
    void setSelection(const IndexSet& selection);
    /// As `setSelection`.
    void select(const IndexSet& selection) { setSelection(selection); }

    /// Empty when no filter is set.
    const Filter& filter() const noexcept { return filter_; }
    /// Shows what passes the filter, or everything for an empty one. Selected items that stay in
    /// sight stay selected. What the filter throws reaches the caller, and nothing has changed.
    void setFilter(Filter filter);

    /// Inserts before the shown item at `at` and deselects everything. Under a filter, items that
    /// do not pass are kept out of sight.
    void insert(std::vector<Item> contentOf, std::int64_t at);
    /// Removes the shown items at the positions, from the full list as well.
    void remove(const IndexSet& at);
    /// Moves items before the shown item at `to`, or to the end; they become the selection.
    void move(const IndexSet& from, std::int64_t to);
    /// Sorts the shown items, and the full list as well under a filter; equal items keep their
    /// order. What the order throws reaches the caller; while it sorts the shown items, which comes
    /// first, nothing has changed then. When it only throws for the full list, or memory runs out
    /// there, the shown items are sorted, which has been announced before and is not after.
    void sort(Order by);
    /// Reverses the shown items, and the full list as well under a filter.
    void reverseOrder();

    /// `insert`, `remove` and `move` at the end of the list, for the selection, or for everything
    /// shown.
    /// @{
    void append(std::vector<Item> contentOf) { insert(std::move(contentOf), count()); }
    void removeSelectedItems() { remove(selection_); }
    void removeAllItems() { remove(this->allIndexes()); }
    void moveSelectedItems(std::int64_t to) { move(selection_, to); }
    /// @}

    /// Null when nothing is selected.
    /// @{
    const Item* firstSelectedItem() const { return itemAt(selection_.first()); }
    const Item* lastSelectedItem() const { return itemAt(selection_.last()); }
    /// @}
    /// The selected item when exactly one is, else null.
    const Item* singleSelectedItem() const { return itemAt(selection_.singleIndex()); }
    /// In ascending position order.
    std::vector<Item> selectedItems() const { return at(items_, selection_); }

    /// The edition that a notification of a list of this item type carries, else null. It lives in
    /// the notification.
    static const Edition* edition(const Notification& note) noexcept {
        return note.value<Edition>(editionKey);
    }

    /// Where everything shown went in the change that observers of `didReloadNotification` are
    /// being told of: what an edition leaves out for a sort, a reversal and a filter, and what
    /// tells equal items apart. Absent at other times. It is made when it is asked for, and costs
    /// nothing otherwise. When an observer changes the list, those after it are told of that change
    /// first: before it, they are answered for the change that they were not told of yet, and after
    /// it for that one.
    std::optional<Reordering> reordering() const {
        return reordering_ ? std::optional(reordering_->make(reordering_->change)) : std::nullopt;
    }

    /// Where changes take the item at a shown position to stand in the full list: the first place
    /// of an equal item, or its own until something changes after a filter was set. The position
    /// itself when no filter is set, and for the end of the shown list.
    std::int64_t fullPosition(std::int64_t shown) const {
        return filter_ && shown >= 0 ? full_.position(items_, shown) : shown;
    }

private:
    using Positions = std::vector<std::int64_t>;

    /// A callable that makes a reordering. Unlike a `std::function` it needs no memory, which might
    /// run out between a change and its announcement.
    struct MakeReordering {
        const void* change;
        Reordering (*make)(const void* change);
    };

    /// What a filter lets through of a list.
    struct Passing {
        std::vector<Item> items;
        Positions positions;
        IndexSet selection;
    };

    /// Sets a value for a time; observers may throw.
    template <class Value>
    struct Setting {
        Setting(Value& set, Value value) : place(set), before(std::exchange(set, value)) {}
        ~Setting() { place = before; }
        Setting(const Setting&) = delete;
        Setting& operator=(const Setting&) = delete;

        Value& place;
        Value before;
    };

    /// One change and its announcements. It keeps the list alive, which an observer may drop.
    class Change {
    public:
        Change(ManagedList& list, Action action) : edition(action), list_(list.shared_from_this()) {
            if (list.isAnnouncingWill_)
                fatalError("A managed list was changed while it announced another change.");
            edition.oldSelection = list.selection_;
        }
        void announceWill() const {
            const Setting<bool> isAnnouncing(list_->isAnnouncingWill_, true);
            NSNotificationCenter::defaultCenter()->post(note(willReloadNotification));
        }
        /// To be called before the lists change, with an edition that says it all.
        void prepareDid() { did_.emplace(note(didReloadNotification)); }
        template <class Make>
        void announceDid(const Make& makeReordering) const {
            const MakeReordering reordering{&makeReordering, [](const void* make) {
                                                return (*static_cast<const Make*>(make))();
                                            }};
            const Setting<const MakeReordering*> current(list_->reordering_, &reordering);
            NSNotificationCenter::defaultCenter()->post(*did_);
        }

        Edition edition;

    private:
        Notification note(std::string_view name) const {
            return Notification(NSNotificationName(name), list_,
                                Notification::UserInfo{{editionKey, edition}});
        }

        std::shared_ptr<ManagedList> list_;
        std::optional<Notification> did_;
    };

    const Item* itemAt(std::optional<std::int64_t> index) const {
        return index ? detail::addressAt(items_, *index) : nullptr;
    }

    static Passing pass(const std::vector<Item>& items, const IndexSet& selection,
                        const Filter& filter);

    /// Has the shown items and the full list changed so that they never part: `change` throws only
    /// before it has changed anything, unless items themselves throw; then it is given copies.
    template <class Change>
    void changeLists(const Change& change) {
        if (detail::movesSafely<Item> || !filter_)
            return change(items_, full_);
        std::vector<Item> items = items_;
        detail::FullList<Item> full = full_;
        change(items, full);
        items_ = std::move(items);
        full_ = std::move(full);
    }

    std::vector<Item> items_;
    detail::FullList<Item> full_; // while a filter is set
    Filter filter_;
    IndexSet selection_;
    const MakeReordering* reordering_ = nullptr;
    bool isAnnouncingWill_ = false;
};

template <std::equality_comparable Item>
void ManagedList<Item>::setSelection(const IndexSet& selection) {
    IndexSet valid = selection.intersection(this->allIndexes());
    if (valid == selection_)
        return;
    Change change(*this, Action::select);
    change.edition.newSelection = valid;
    change.announceWill();
    change.prepareDid();
    selection_ = std::move(valid);
    change.announceDid([count = count()] { return Reordering::none(count); });
}

template <std::equality_comparable Item>
void ManagedList<Item>::insert(std::vector<Item> contentOf, std::int64_t at) {
    if (contentOf.empty())
        return;
    detail::checkInsertion(count(), at);
    Passing passing;
    if (filter_)
        passing = pass(contentOf, {}, filter_);
    else
        passing.items.swap(contentOf);
    const std::int64_t before = count(), inserted = detail::countOf(passing.items);
    Change change(*this, Action::insert);
    change.edition.insertedIndexes = IndexSet({.loc = at, .len = inserted});
    change.edition.newSelection = IndexSet();
    change.announceWill();

    change.prepareDid();
    changeLists([&](std::vector<Item>& items, detail::FullList<Item>& full) {
        detail::Room room(items, passing.items.size());
        if (filter_)
            full.insert(items, at, std::move(contentOf), std::move(passing.positions));
        room.insert(items, at, passing.items);
    });
    selection_.removeAll();
    change.announceDid([=] { return Reordering::inserting(before, at, inserted); });
}

template <std::equality_comparable Item>
void ManagedList<Item>::remove(const IndexSet& at) {
    if (at.isEmpty())
        return;
    detail::checkPositions(count(), at);
    const std::int64_t before = count();
    Change change(*this, Action::remove);
    change.edition.removedIndexes = at;
    IndexSet selection = selection_.afterRemoving(at);
    change.edition.newSelection = selection;
    change.announceWill();

    change.prepareDid();
    const IndexSet& removed = *change.edition.removedIndexes;
    changeLists([&](std::vector<Item>& items, detail::FullList<Item>& full) {
        if (filter_)
            full.remove(items, removed);
        zorvan::remove(items, removed);
    });
    selection_ = std::move(selection);
    change.announceDid([&] { return Reordering::removing(before, removed); });
}

template <std::equality_comparable Item>
void ManagedList<Item>::move(const IndexSet& from, std::int64_t to) {
    if (from.isEmpty())
        return;
    detail::checkPositions(count(), from);
    detail::checkInsertion(count(), to);
    Change change(*this, Action::move);
    change.edition.movedFromIndexes = from;
    change.announceWill();

    const IndexSet& moved = *change.edition.movedFromIndexes;
    const std::int64_t landing = to - moved.count(IndexSet::Range{0, to});
    IndexSet landed({.loc = landing, .len = moved.count()});
    change.edition.movedToIndexes = landed;
    change.edition.newSelection = landed;
    change.prepareDid();
    changeLists([&](std::vector<Item>& items, detail::FullList<Item>& full) {
        std::vector<Item> buffer;
        buffer.reserve(static_cast<std::size_t>(moved.count()));
        if (filter_)
            full.move(items, moved, to);
        detail::move(items, moved, to, buffer);
    });
    selection_ = std::move(landed);
    change.announceDid([&, count = count()] { return Reordering::moving(count, moved, to); });
}

template <std::equality_comparable Item>
void ManagedList<Item>::sort(Order by) {
    if (items_.empty())
        return;
    const Positions order = detail::sortedPositions(items_, by);
    Change change(*this, Action::sort);
    IndexSet selection = selection_.afterPermuting(order);
    change.edition.newSelection = selection;
    change.announceWill();

    change.prepareDid();
    changeLists([&](std::vector<Item>& items, detail::FullList<Item>& full) {
        auto places = filter_ ? full.placesInOrder(order) : nullptr;
        detail::permute(items, order);
        if (filter_)
            full.setPlaces(std::move(places));
    });
    selection_ = std::move(selection);
    if (filter_)
        changeLists([&by](auto&, detail::FullList<Item>& full) { full.sort(by); });
    change.announceDid([&order] { return Reordering::permuting(order); });
}

template <std::equality_comparable Item>
void ManagedList<Item>::reverseOrder() {
    if (items_.empty())
        return;
    Change change(*this, Action::sort);
    IndexSet selection = selection_.afterReversing(count());
    change.edition.newSelection = selection;
    change.announceWill();

    change.prepareDid();
    changeLists([&](std::vector<Item>& items, detail::FullList<Item>& full) {
        if (filter_)
            full.reverse();
        std::reverse(items.begin(), items.end());
    });
    selection_ = std::move(selection);
    change.announceDid([count = count()] { return Reordering::reversing(count); });
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
    if (!filter_ && !filter)
        return;
    IndexSet selection = filter_ ? IndexSet::of(full_.positions(items_, selection_)) : selection_;
    Passing passing;
    if (filter)
        passing = pass(allItems(), selection, filter);
    Change change(*this, Action::filter);
    change.announceWill();

    // What needs memory comes first, so that the list is whole should there be none.
    const std::shared_ptr<const Positions> before = full_.places();
    change.edition.newSelection = filter ? passing.selection : selection;
    change.prepareDid();
    if (!filter) {
        items_ = full_.release();
        selection_ = std::move(selection);
    } else {
        full_.show(std::move(passing.positions));
        if (!filter_)
            full_.setItems(std::move(items_));
        items_ = std::move(passing.items);
        selection_ = std::move(passing.selection);
    }
    filter_ = std::move(filter);
    const auto shown = [](const std::shared_ptr<const Positions>& places) {
        return places ? std::optional(std::span(*places)) : std::nullopt;
    };
    change.announceDid([&, after = full_.places(), count = detail::countOf(allItems())] {
        return Reordering::refiltering(count, shown(before), shown(after));
    });
}

} // namespace zorvan
