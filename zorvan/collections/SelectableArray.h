#pragma once

#include <zorvan/collections/Array.h>
#include <zorvan/collections/IndexSet.h>
#include <zorvan/collections/Permutation.h>
#include <zorvan/collections/Reordering.h>
#include <zorvan/collections/SelectableArrayEdition.h>
#include <zorvan/collections/SelectionQueries.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace zorvan {

/// A list whose elements each carry a selected flag, which follows them wherever they go.
///
/// Every change runs through `editionHandler`: it receives the change as a deferred action, runs it
/// when it wishes, and gets back an edition that says exactly what changed. A handler that never
/// runs the action leaves the list as it was. Positions outside the list stop the program when the
/// action runs, except in `select`. Used from one thread.
template <class Element>
class SelectableArray : public std::enable_shared_from_this<SelectableArray<Element>>,
                        public SelectionQueries<SelectableArray<Element>> {
    struct Key {};

public:
    /// An element with its flag.
    struct Entry {
        bool isSelected; ///< Whether it is selected.
        Element element; ///< The element itself.
    };
    /// Applies the change and tells what it was. It keeps the list alive.
    using Action = std::function<SelectableArrayEdition()>;
    /// Takes a change, to run it when it wishes.
    using EditionHandler = std::function<void(const Action&)>;

    /// An empty list whose handler runs each change at once and drops the edition.
    static std::shared_ptr<SelectableArray> create() {
        return std::make_shared<SelectableArray>(Key{});
    }
    /// For `create`.
    explicit SelectableArray(Key) {}
    SelectableArray(const SelectableArray&) = delete;
    SelectableArray& operator=(const SelectableArray&) = delete;

    /// All of them, in order.
    const std::vector<Element>& elements() const noexcept { return elements_; }
    /// The positions of the selected ones.
    const IndexSet& selection() const noexcept { return selection_; }
    /// How many elements there are.
    std::int64_t count() const noexcept { return detail::countOf(elements_); }
    /// The elements with their flags.
    std::vector<Entry> entries() const;

    /// The one that will be handed the next change.
    const EditionHandler& editionHandler() const noexcept { return *editionHandler_; }
    /// A handler may set another one while it runs, for the changes to come.
    void setEditionHandler(EditionHandler handler) {
        editionHandler_ = std::make_shared<const EditionHandler>(std::move(handler));
    }

    /// Where every element went in the change that ran last, for an edition handler to ask as soon
    /// as it has run the action: what an edition leaves out for a sort and a reversal, and what
    /// tells equal elements apart. A replaced element is the old one in its place; all are gone
    /// after `setEntries`. It is made when it is asked for, and costs nothing otherwise. Absent
    /// once the handler has returned.
    std::optional<Reordering> reordering() const {
        return reordering_ ? std::optional(reordering_()) : std::nullopt;
    }

    /// Exchanges the whole list; the edition is a `Reload`.
    void setEntries(std::vector<Entry> entries);
    /// Inserts the elements, unselected, before the one at `at`. Nothing for no elements.
    void insert(std::vector<Element> elements, std::int64_t at);
    /// Replaces one element; its flag stays.
    void replace(Element element, std::int64_t at);
    /// Nothing for an empty set.
    void remove(IndexSet at);
    /// As `zorvan::move` for lists. Nothing for an empty set.
    void move(IndexSet from, std::int64_t to);
    /// Sorts by a strict ordering; equal elements keep their order. Nothing for an empty list.
    void sort(std::function<bool(const Element&, const Element&)> by);
    /// Nothing for an empty list.
    void reverseElementsOrder();
    /// Selects exactly these positions; those outside the list are passed over. Nothing when it is
    /// the selection already.
    void select(IndexSet indexes);

    /// `insert`, `remove` and `move` at an end of the list, for the selection, or for everything.
    /// @{
    void prepend(std::vector<Element> elements) { insert(std::move(elements), 0); }
    void append(std::vector<Element> elements) { insert(std::move(elements), count()); }
    void removeSelectedElements() { remove(selection_); }
    void removeAllElements() { remove(this->allIndexes()); }
    void moveSelectedElements(std::int64_t to) { move(selection_, to); }
    /// @}
    /// Nothing for an empty list.
    void selectLast() {
        if (count() > 0)
            select({count() - 1});
    }

    /// Null when nothing is selected.
    /// @{
    const Element* firstSelectedElement() const { return elementAt(selection_.first()); }
    const Element* lastSelectedElement() const { return elementAt(selection_.last()); }
    /// @}
    /// The selected element when exactly one is, else null.
    const Element* singleSelectedElement() const { return elementAt(selection_.singleIndex()); }
    /// In ascending position order.
    std::vector<Element> selectedElements() const { return at(elements_, selection_); }

    /// Whether the operation of that name would do anything.
    /// @{
    bool canRemoveAllElements() const noexcept { return count() > 0; }
    bool canRemoveSelectedElements() const noexcept { return !this->isSelectionEmpty(); }
    bool canMoveSelectedElements() const noexcept { return !this->isSelectionEmpty(); }
    /// @}

    /// Equal elements in the same order with the same selection.
    friend bool operator==(const SelectableArray& a,
                           const SelectableArray& b) requires std::equality_comparable<Element> {
        return a.elements_ == b.elements_ && a.selection_ == b.selection_;
    }

private:
    template <class Change>
    void edit(Change change) {
        const auto self = this->shared_from_this();
        const auto handler = editionHandler_;
        (*handler)([self, change = std::move(change)]() mutable {
            return SelectableArrayEdition(change(*self));
        });
        reordering_ = {};
    }
    const Element* elementAt(std::optional<std::int64_t> index) const {
        return index ? detail::addressAt(elements_, *index) : nullptr;
    }
    void assign(std::vector<Entry> entries);

    std::vector<Element> elements_;
    IndexSet selection_;
    /// Shared, so that one that is replaced while it runs lives on until it has returned.
    std::shared_ptr<const EditionHandler> editionHandler_ =
        std::make_shared<const EditionHandler>([](const Action& action) { action(); });
    std::function<Reordering()> reordering_;
};

template <class Element>
auto SelectableArray<Element>::entries() const -> std::vector<Entry> {
    std::vector<Entry> entries;
    entries.reserve(elements_.size());
    for (std::int64_t i = 0; i < count(); ++i)
        entries.push_back({selection_.contains(i), elements_[static_cast<std::size_t>(i)]});
    return entries;
}

template <class Element>
void SelectableArray<Element>::assign(std::vector<Entry> entries) {
    elements_.clear();
    selection_.removeAll();
    elements_.reserve(entries.size());
    for (Entry& entry : entries) {
        if (entry.isSelected)
            selection_.insert(count());
        elements_.push_back(std::move(entry.element));
    }
}

template <class Element>
void SelectableArray<Element>::setEntries(std::vector<Entry> entries) {
    edit([entries = std::move(entries)](SelectableArray& list) {
        list.assign(entries);
        list.reordering_ = [] { return Reordering::removingAll(); };
        return SelectableArrayEdition::Reload{list.selection_};
    });
}

template <class Element>
void SelectableArray<Element>::insert(std::vector<Element> elements, std::int64_t at) {
    if (elements.empty())
        return;
    edit([elements = std::move(elements), at](SelectableArray& list) {
        detail::checkInsertion(list.count(), at);
        const std::int64_t count = detail::countOf(elements);
        list.reordering_ = [=, before = list.count()] {
            return Reordering::inserting(before, at, count);
        };
        list.elements_.insert(list.elements_.begin() + at, elements.begin(), elements.end());
        list.selection_.shift(at, count);
        return SelectableArrayEdition::Insert{count, at};
    });
}

template <class Element>
void SelectableArray<Element>::replace(Element element, std::int64_t at) {
    edit([element = std::move(element), at](SelectableArray& list) {
        detail::checkPositions(list.count(), {at});
        list.elements_[static_cast<std::size_t>(at)] = element;
        list.reordering_ = [count = list.count()] { return Reordering::none(count); };
        return SelectableArrayEdition::Replace{at};
    });
}

template <class Element>
void SelectableArray<Element>::remove(IndexSet at) {
    if (at.isEmpty())
        return;
    edit([at = std::move(at)](SelectableArray& list) {
        list.reordering_ = [at, before = list.count()] { return Reordering::removing(before, at); };
        zorvan::remove(list.elements_, at);
        list.selection_ = list.selection_.afterRemoving(at);
        return SelectableArrayEdition::Remove{at};
    });
}

template <class Element>
void SelectableArray<Element>::move(IndexSet from, std::int64_t to) {
    if (from.isEmpty())
        return;
    edit([from = std::move(from), to](SelectableArray& list) {
        zorvan::move(list.elements_, from, to);
        list.reordering_ = [from, to, count = list.count()] {
            return Reordering::moving(count, from, to);
        };
        list.selection_ = list.selection_.afterMoving(from, to);
        return SelectableArrayEdition::Move{from, to};
    });
}

template <class Element>
void SelectableArray<Element>::sort(std::function<bool(const Element&, const Element&)> by) {
    if (elements_.empty())
        return;
    edit([by = std::move(by)](SelectableArray& list) {
        std::vector<std::int64_t> order = detail::sortedPositions(list.elements_, by);
        detail::permute(list.elements_, order);
        list.selection_ = list.selection_.afterPermuting(order);
        list.reordering_ = [order = std::move(order)] { return Reordering::permuting(order); };
        return SelectableArrayEdition::Reload{list.selection_};
    });
}

template <class Element>
void SelectableArray<Element>::reverseElementsOrder() {
    if (elements_.empty())
        return;
    edit([](SelectableArray& list) {
        std::reverse(list.elements_.begin(), list.elements_.end());
        list.selection_ = list.selection_.afterReversing(list.count());
        list.reordering_ = [count = list.count()] { return Reordering::reversing(count); };
        return SelectableArrayEdition::Reload{list.selection_};
    });
}

template <class Element>
void SelectableArray<Element>::select(IndexSet indexes) {
    if (indexes == selection_)
        return;
    edit([indexes = std::move(indexes)](SelectableArray& list) {
        list.selection_ = indexes.intersection(list.allIndexes());
        list.reordering_ = [count = list.count()] { return Reordering::none(count); };
        return SelectableArrayEdition::Select{list.selection_};
    });
}

} // namespace zorvan
