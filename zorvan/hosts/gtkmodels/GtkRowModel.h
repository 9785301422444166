#pragma once

#include <zorvan/hosts/rows/RowList.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <typeindex>

/// What GTK's own headers declare, too.
/// @{
typedef struct _GtkSelectionModel GtkSelectionModel;
typedef struct _GtkListItemFactory GtkListItemFactory;
/// @}

namespace zorvan {

/// What stands behind a model of GTK, whatever the items. Programs make a `GtkListModel`.
class GtkRowModel {
public:
    /// An item, and what type it is of.
    struct BoxedItem {
        std::shared_ptr<const void> item; ///< Shared by all who hold the object of the row.
        std::type_index type;             ///< As `item` is to be asked for it.
    };
    /// Makes the rows that a model follows.
    using MakeRows = std::function<std::unique_ptr<RowList>(RowFollower&)>;
    /// Takes the item at a position out of the rows, for the object of a row.
    using Box = std::function<BoxedItem(const RowList&, std::int64_t)>;

    /// As in `GtkListModel`, whose items have one type; `item` stops the program for another type
    /// than the item was boxed with, `itemsDidChange` for a model that `create` has not made.
    /// @{
    static GtkSelectionModel* create(const MakeRows& rows, Box box);
    static void itemsDidChange(GtkSelectionModel* model, const IndexSet& rows);
    static const void* item(void* row, std::type_index type);
    static GtkListItemFactory* textFactory(std::function<std::string(void* row)> text);
    /// @}
};

} // namespace zorvan
