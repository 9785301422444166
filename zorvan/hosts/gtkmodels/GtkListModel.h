#pragma once

#include <zorvan/hosts/gtkmodels/GtkRowModel.h>
#include <zorvan/hosts/rows/rowsOf.h>

#include <functional>
#include <memory>
#include <string>
#include <typeindex>
#include <utility>

namespace zorvan {

/// Models of GTK 4 over a `ManagedList` or a `SelectableArray`: a `GListModel` of what the list
/// shows, and a `GtkSelectionModel` that mirrors its selection both ways, for C and for gtkmm:
///
///     GtkSelectionModel* model = GtkListModel<Photo>::create(list);
///     GtkWidget* view = gtk_column_view_new(model); // which takes the reference
///     GtkListItemFactory* titles = GtkListModel<Photo>::textFactory(
///         [](const Photo& photo) { return photo.title; });
///     GtkColumnViewColumn* column = gtk_column_view_column_new("Title", titles);
///     gtk_column_view_append_column(GTK_COLUMN_VIEW(view), column);
///
/// Every change is told in one signal "items-changed", of the rows from the first that changes to
/// the last. The object of a row, as long as somebody holds it, stays with its item through moves,
/// sorts and filters, so that a view keeps its place and its focus; equal items are told apart.
///
/// Handlers of its signals must not change the list. Main thread only.
template <class Item>
class GtkListModel {
public:
    /// A new reference. The model keeps the list alive and follows it until it is finalized; it
    /// puts itself before the edition handler of an array, which is therefore to be set first. No
    /// list stops the program.
    template <class List>
    [[nodiscard]] static GtkSelectionModel* create(const std::shared_ptr<List>& list) {
        return GtkRowModel::create(
            [&list](RowFollower& follower) { return detail::rowsOf(list, follower); },
            [](const RowList& rows, std::int64_t at) {
                const auto& items = static_cast<const ItemList<Item>&>(rows).items();
                return GtkRowModel::BoxedItem{
                    std::make_shared<const Item>(items[static_cast<std::size_t>(at)]),
                    typeid(Item)};
            });
    }

    /// The item of a row's object, as it was when the object was made; it lives as long as that.
    /// What is no row of such items stops the program.
    static const Item& item(void* row) {
        return *static_cast<const Item*>(GtkRowModel::item(row, typeid(Item)));
    }

    /// Tells the views that items in these rows were changed where they stand: the rows get new
    /// objects. Rows outside the list are passed over.
    static void itemsDidChange(GtkSelectionModel* model, const IndexSet& rows) {
        GtkRowModel::itemsDidChange(model, rows);
    }

    /// A new reference to what makes a label for each item that a view shows.
    [[nodiscard]] static GtkListItemFactory*
    textFactory(std::function<std::string(const Item&)> text) {
        return GtkRowModel::textFactory(
            [text = std::move(text)](void* row) { return text(item(row)); });
    }
};

} // namespace zorvan
