#pragma once

#include <zorvan/collections/IndexSet.h>
#include <zorvan/collections/Reordering.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace zorvan {

/// One change of the rows of a list, as a model of another toolkit has to be told of it.
struct RowChange {
    /// A move, a sort, a reversal and a filter all `reorder`.
    enum class Kind { insert, remove, replace, select, reorder };

    /// What has happened to the rows.
    Kind kind;
    /// The rows inserted, as they stand afterwards; removed, as they stood before; or replaced.
    /// Empty for the other kinds.
    IndexSet rows = {};
};

/// What follows the rows of a list.
class RowFollower {
public:
    /// Before the list changes; not told of a selection. Not every list can tell (`SelectableArray`
    /// cannot). `rowsDidChange` or `rowsWereLost` comes before the next one.
    virtual void rowsWillChange(const RowChange& change) = 0;
    /// The list has changed, and nothing has changed it since. `reordering` says where every row
    /// went; it may be asked during the call.
    virtual void rowsDidChange(const RowChange& change,
                               const std::function<Reordering()>& reordering) = 0;
    /// The change that was told to come was given up half-way, because somebody threw: it may have
    /// happened or not.
    virtual void rowsWereLost(const RowChange& change) = 0;

protected:
    ~RowFollower() = default;
};

/// A list as models of other toolkits see it, whatever its kind.
class RowList {
public:
    RowList() = default;
    virtual ~RowList() = default;
    RowList(const RowList&) = delete;
    RowList& operator=(const RowList&) = delete;

    /// How many rows the list shows.
    virtual std::int64_t count() const = 0;
    /// The selected rows.
    virtual const IndexSet& selection() const = 0;
    /// Selects these rows and no others; rows outside the list are passed over.
    virtual void select(const IndexSet& rows) = 0;
    /// Takes the rows out of the list.
    virtual void remove(const IndexSet& rows) = 0;
    /// Before the row at `to`, or to the end.
    virtual void move(const IndexSet& rows, std::int64_t to) = 0;
};

/// The same with the items of the rows.
template <class Item>
class ItemList : public RowList {
public:
    /// Whether the one is to stand before the other; strict.
    using Order = std::function<bool(const Item&, const Item&)>;

    /// Items that the list goes on owning: they are read where they stand.
    explicit ItemList(const std::vector<Item>& items) : items_(items) {}

    /// In the order of the rows.
    const std::vector<Item>& items() const noexcept { return items_; }
    std::int64_t count() const final { return std::ssize(items_); }
    /// Sorts the list itself; equal items keep their order.
    virtual void sort(Order by) = 0;
    /// Puts in place of an item what a setter has made of a copy of it. False when nobody is told
    /// of that as a change of the list.
    virtual bool replace(Item changed, std::int64_t at) = 0;

private:
    const std::vector<Item>& items_;
};

} // namespace zorvan
