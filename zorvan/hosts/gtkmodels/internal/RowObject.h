#pragma once

#include <zorvan/hosts/gtkmodels/GtkRowModel.h>

#include <glib-object.h>
#include <unordered_map>

namespace zorvan::internal {

/// The objects of rows that somebody holds, by their rows. It owns none of them.
class LiveRows {
public:
    LiveRows() = default;
    ~LiveRows() { forgetAll(); }
    LiveRows(const LiveRows&) = delete;
    LiveRows& operator=(const LiveRows&) = delete;

    /// A new reference; null when the row has none.
    GObject* find(std::int64_t row) const;
    /// A new reference to a new object.
    GObject* add(std::int64_t row, GtkRowModel::BoxedItem item);

    /// Has every object where its item has gone.
    void follow(const Reordering& reordering);
    void forget(const IndexSet& rows);
    void forgetAll() { follow(Reordering::removingAll()); }
    /// The object of the row is no more.
    void lose(std::int64_t row) { rows_.erase(row); }

private:
    std::unordered_map<std::int64_t, GObject*> rows_;
};

GType rowObjectType();

} // namespace zorvan::internal
