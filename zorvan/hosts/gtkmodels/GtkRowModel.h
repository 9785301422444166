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
        /// Kept alive.
        std::shared_ptr<const void> item;
        /// Of the item.
        std::type_index type;
    };
    /// Makes the rows that a model follows.
    using MakeRows = std::function<std::unique_ptr<RowList>(RowFollower&)>;
    /// The item of a row of the list.
    using Box = std::function<BoxedItem(const RowList&, std::int64_t)>;

    /// A new reference to a model of these rows, whose items are made when GTK asks for them.
    static GtkSelectionModel* create(const MakeRows& rows, Box box);
    /// Items in these rows were changed where they stand; rows outside the list are passed over.
    static void itemsDidChange(GtkSelectionModel* model, const IndexSet& rows);
    /// The item of a row that GTK hands out, a `GObject`. Another type, or another object, stops
    /// the program.
    static const void* item(void* row, std::type_index type);
    /// A new reference to a factory of labels that show these texts, shortened at the end.
    static GtkListItemFactory* textFactory(std::function<std::string(void* row)> text);
};

} // namespace zorvan
