#include <zorvan/hosts/gtkmodels/internal/RowModelObject.h>

#include <zorvan/platform/foundation/fatalError.h>

#include <utility>

using zorvan::IndexSet;
using zorvan::internal::RowModel;

namespace {

struct ZorvanRowModel {
    GObject parent;
    RowModel* model;
};
struct ZorvanRowModelClass {
    GObjectClass parent;
};

RowModel& modelOf(void* object) { return *static_cast<ZorvanRowModel*>(object)->model; }

IndexSet range(guint first, guint count) {
    return IndexSet(IndexSet::Range{first, std::int64_t{first} + count});
}

IndexSet members(const GtkBitset* set) {
    IndexSet positions;
    GtkBitsetIter iterator;
    guint position = 0;
    for (gboolean more = gtk_bitset_iter_init_first(&iterator, set, &position); more;
         more = gtk_bitset_iter_next(&iterator, &position))
        positions.insert(position);
    return positions;
}

/// Selects some rows, and no others if so asked.
gboolean select(void* object, const IndexSet& rows, bool only) {
    RowModel& model = modelOf(object);
    model.select(only ? rows : model.selection().union_(rows));
    return TRUE;
}

void implementListModel(GListModelInterface* type) {
    type->get_item_type = [](GListModel*) { return zorvan::internal::rowObjectType(); };
    type->get_n_items = [](GListModel* object) { return modelOf(object).count(); };
    type->get_item = [](GListModel* object, guint row) -> gpointer {
        return modelOf(object).object(row);
    };
}

void implementSelectionModel(GtkSelectionModelInterface* type) {
    type->is_selected = [](GtkSelectionModel* object, guint row) -> gboolean {
        return modelOf(object).isSelected(row);
    };
    type->get_selection_in_range = [](GtkSelectionModel* object, guint first, guint count) {
        return modelOf(object).selection(first, count);
    };
    type->select_item = [](GtkSelectionModel* object, guint row, gboolean only) {
        return select(object, range(row, 1), only);
    };
    type->select_range = [](GtkSelectionModel* object, guint first, guint count, gboolean only) {
        return select(object, range(first, count), only);
    };
    type->unselect_range = [](GtkSelectionModel* object, guint first, guint count) {
        return select(object, modelOf(object).selection().subtracting(range(first, count)), true);
    };
    type->select_all = [](GtkSelectionModel* object) {
        return select(object, range(0, modelOf(object).count()), true);
    };
    type->unselect_all = [](GtkSelectionModel* object) { return select(object, {}, true); };
    type->set_selection = [](GtkSelectionModel* object, GtkBitset* selected, GtkBitset* mask) {
        const IndexSet asked = members(mask);
        const IndexSet kept = modelOf(object).selection().subtracting(asked);
        return select(object, kept.union_(members(selected).intersection(asked)), true);
    };
}

G_DEFINE_TYPE_WITH_CODE(ZorvanRowModel, zorvan_row_model, G_TYPE_OBJECT,
                        G_IMPLEMENT_INTERFACE(G_TYPE_LIST_MODEL, implementListModel)
                            G_IMPLEMENT_INTERFACE(GTK_TYPE_SELECTION_MODEL,
                                                  implementSelectionModel))

void zorvan_row_model_init(ZorvanRowModel*) {}

void zorvan_row_model_class_init(ZorvanRowModelClass* type) {
    G_OBJECT_CLASS(type)->finalize = [](GObject* object) {
        delete reinterpret_cast<ZorvanRowModel*>(object)->model;
        G_OBJECT_CLASS(zorvan_row_model_parent_class)->finalize(object);
    };
}

} // namespace

namespace zorvan {

GtkSelectionModel* GtkRowModel::create(const MakeRows& rows, Box box) {
    auto* object = static_cast<ZorvanRowModel*>(g_object_new(zorvan_row_model_get_type(), nullptr));
    object->model = new RowModel(GTK_SELECTION_MODEL(object), rows, std::move(box));
    return GTK_SELECTION_MODEL(object);
}

void GtkRowModel::itemsDidChange(GtkSelectionModel* model, const IndexSet& rows) {
    if (!G_TYPE_CHECK_INSTANCE_TYPE(model, zorvan_row_model_get_type()))
        fatalError("The model is none over a list.");
    modelOf(model).itemsDidChange(rows);
}

} // namespace zorvan
