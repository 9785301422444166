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
/// action runs, except in `select`. When the change throws, for want of memory or because an
/// element does, the list is as it was. Used from one thread.
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
        const struct Forgetting {
            ~Forgetting() { list.reordering_ = nullptr; }
            SelectableArray& list;
        } forgetting{*self};
        (*handler)([self, change = std::move(change)] { return change(*self); });
    }
    const Element* elementAt(std::optional<std::int64_t> index) const {
        return index ? detail::addressAt(elements_, *index) : nullptr;
    }

    /// All that a change makes but the elements. It is made before they change, so that nothing
    /// throws once they have.
    struct Outcome {
        IndexSet selection;
        std::function<Reordering()> reordering;
        SelectableArrayEdition edition;
    };
    SelectableArrayEdition finish(Outcome outcome) noexcept;

    /// What `change` throws leaves the elements as they were. A copy is changed of elements that
    /// throw themselves when they are moved.
    template <class Change>
    void changeElements(const Change& change) {
        if (detail::movesSafely<Element>)
            return change(elements_);
        std::vector<Element> elements = elements_;
        change(elements);
        elements_ = std::move(elements);
    }

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
SelectableArrayEdition SelectableArray<Element>::finish(Outcome outcome) noexcept {
    selection_ = std::move(outcome.selection);
    reordering_ = std::move(outcome.reordering);
    return std::move(outcome.edition);
}

template <class Element>
void SelectableArray<Element>::setEntries(std::vector<Entry> entries) {
    edit([entries = std::move(entries)](SelectableArray& list) {
        std::vector<Element> elements;
        IndexSet selection;
        elements.reserve(entries.size());
        for (const Entry& entry : entries) {
            if (entry.isSelected)
                selection.insert(detail::countOf(elements));
            elements.push_back(entry.element);
        }
        Outcome outcome{selection, [] { return Reordering::removingAll(); },
                        SelectableArrayEdition::Reload{selection}};
        list.elements_ = std::move(elements);
        return list.finish(std::move(outcome));
    });
}

template <class Element>
void SelectableArray<Element>::insert(std::vector<Element> elements, std::int64_t at) {
    if (elements.empty())
        return;
    edit([elements = std::move(elements), at](SelectableArray& list) {
        detail::checkInsertion(list.count(), at);
        const std::int64_t before = list.count(), count = detail::countOf(elements);
        IndexSet selection = list.selection_;
        selection.shift(at, count);
        Outcome outcome{std::move(selection),
                        [=] { return Reordering::inserting(before, at, count); },
                        SelectableArrayEdition::Insert{count, at}};
        std::vector<Element> added = elements;
        const auto change = [&](std::vector<Element>& changed) {
            detail::Room(changed, added.size()).insert(changed, at, added);
        };
        // At the end nothing gives way, so that also elements that throw may be added in place.
        if (at == before)
            change(list.elements_);
        else
            list.changeElements(change);
        return list.finish(std::move(outcome));
    });
}

template <class Element>
void SelectableArray<Element>::replace(Element element, std::int64_t at) {
    edit([element = std::move(element), at](SelectableArray& list) {
        detail::checkPositions(list.count(), {at});
        Outcome outcome{list.selection_, [count = list.count()] { return Reordering::none(count); },
                        SelectableArrayEdition::Replace{at}};
        Element replacing = element;
        list.elements_[static_cast<std::size_t>(at)] = std::move(replacing);
        return list.finish(std::move(outcome));
    });
}

template <class Element>
void SelectableArray<Element>::remove(IndexSet at) {
    if (at.isEmpty())
        return;
    edit([at = std::move(at)](SelectableArray& list) {
        Outcome outcome{list.selection_.afterRemoving(at),
                        [at, before = list.count()] { return Reordering::removing(before, at); },
                        SelectableArrayEdition::Remove{at}};
        list.changeElements(
            [&at](std::vector<Element>& elements) { zorvan::remove(elements, at); });
        return list.finish(std::move(outcome));
    });
}

template <class Element>
void SelectableArray<Element>::move(IndexSet from, std::int64_t to) {
    if (from.isEmpty())
        return;
    edit([from = std::move(from), to](SelectableArray& list) {
        detail::checkPositions(list.count(), from);
        detail::checkInsertion(list.count(), to);
        Outcome outcome{
            list.selection_.afterMoving(from, to),
            [from, to, count = list.count()] { return Reordering::moving(count, from, to); },
            SelectableArrayEdition::Move{from, to}};
        list.changeElements(
            [&](std::vector<Element>& elements) { zorvan::move(elements, from, to); });
        return list.finish(std::move(outcome));
    });
}

template <class Element>
void SelectableArray<Element>::sort(std::function<bool(const Element&, const Element&)> by) {
    if (elements_.empty())
        return;
    edit([by = std::move(by)](SelectableArray& list) {
        const std::vector<std::int64_t> order = detail::sortedPositions(list.elements_, by);
        IndexSet selection = list.selection_.afterPermuting(order);
        Outcome outcome{selection, [order] { return Reordering::permuting(order); },
                        SelectableArrayEdition::Reload{selection}};
        list.changeElements(
            [&order](std::vector<Element>& elements) { detail::permute(elements, order); });
        return list.finish(std::move(outcome));
    });
}

template <class Element>
void SelectableArray<Element>::reverseElementsOrder() {
    if (elements_.empty())
        return;
    edit([](SelectableArray& list) {
        IndexSet selection = list.selection_.afterReversing(list.count());
        Outcome outcome{selection, [count = list.count()] { return Reordering::reversing(count); },
                        SelectableArrayEdition::Reload{selection}};
        list.changeElements(
            [](std::vector<Element>& elements) { std::reverse(elements.begin(), elements.end()); });
        return list.finish(std::move(outcome));
    });
}

template <class Element>
void SelectableArray<Element>::select(IndexSet indexes) {
    if (indexes == selection_)
        return;
    edit([indexes = std::move(indexes)](SelectableArray& list) {
        IndexSet selection = indexes.intersection(list.allIndexes());
        return list.finish({selection, [count = list.count()] { return Reordering::none(count); },
                            SelectableArrayEdition::Select{selection}});
    });
}

} // namespace zorvan
