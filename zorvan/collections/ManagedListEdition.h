#pragma once

#include <zorvan/collections/IndexSet.h>

#include <optional>

namespace zorvan {

/// One change of a `ManagedList`, told so that a view can follow it. Positions are shown positions.
///
/// A list announces it before the change with what is known by then: for `move` without
/// `movedToIndexes`, and for `move` and `filter` without `newSelection`. After the change it is
/// whole. A set that an action does not speak of is absent.
struct ManagedListEdition {
    /// What kind of change it was; a reversal is a `sort`.
    enum class Action { insert, remove, select, move, sort, filter };

    /// With all sets absent.
    explicit ManagedListEdition(Action change) : action(change) {}

    /// True when the number of shown items may have changed.
    bool mayChangeCount() const noexcept {
        return action == Action::insert || action == Action::remove || action == Action::filter;
    }

    friend bool operator==(const ManagedListEdition&, const ManagedListEdition&) = default;

    Action action; ///< What kind of change it was.
    /// The selection before and after the change, for every action.
    /// @{
    std::optional<IndexSet> oldSelection = {};
    std::optional<IndexSet> newSelection = {};
    /// @}
    /// For `insert`: where the new items stand; empty when a filter lets none of them through.
    std::optional<IndexSet> insertedIndexes = {};
    /// For `remove`: where the removed items stood before the change.
    std::optional<IndexSet> removedIndexes = {};
    /// For `move`: where the moved items stood before the change, and where they stand after it.
    /// @{
    std::optional<IndexSet> movedFromIndexes = {};
    std::optional<IndexSet> movedToIndexes = {};
    /// @}
};

} // namespace zorvan
