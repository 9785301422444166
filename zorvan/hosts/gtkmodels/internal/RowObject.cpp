#include <zorvan/hosts/gtkmodels/internal/RowObject.h>

#include <zorvan/platform/foundation/fatalError.h>

#include <new>
#include <utility>

using zorvan::internal::LiveRows;

namespace {

/// What GLib allocates, zeroed; the members in it are made and destroyed by hand.
struct ZorvanRow {
    GObject parent;
    zorvan::GtkRowModel::BoxedItem item;
    LiveRows* rows; // null when it has been forgotten
    std::int64_t row;
};
struct ZorvanRowClass {
    GObjectClass parent;
};

G_DEFINE_TYPE(ZorvanRow, zorvan_row, G_TYPE_OBJECT)

ZorvanRow* rowOf(void* object) { return static_cast<ZorvanRow*>(object); }

void zorvan_row_init(ZorvanRow* row) {
    new (&row->item) zorvan::GtkRowModel::BoxedItem{nullptr, typeid(void)};
}

void zorvan_row_class_init(ZorvanRowClass* type) {
    G_OBJECT_CLASS(type)->finalize = [](GObject* object) {
        if (rowOf(object)->rows)
            rowOf(object)->rows->lose(rowOf(object)->row);
        rowOf(object)->item.~BoxedItem();
        G_OBJECT_CLASS(zorvan_row_parent_class)->finalize(object);
    };
}

} // namespace

namespace zorvan::internal {

GType rowObjectType() { return zorvan_row_get_type(); }

GObject* LiveRows::find(std::int64_t row) const {
    const auto found = rows_.find(row);
    return found == rows_.end() ? nullptr : G_OBJECT(g_object_ref(found->second));
}

GObject* LiveRows::add(std::int64_t row, GtkRowModel::BoxedItem item) {
    GObject* object = G_OBJECT(g_object_new(zorvan_row_get_type(), nullptr));
    rowOf(object)->item = std::move(item);
    rowOf(object)->rows = this;
    rowOf(object)->row = row;
    rows_.insert_or_assign(row, object);
    return object;
}

void LiveRows::follow(const Reordering& reordering) {
    const auto before = std::exchange(rows_, {});
    for (const auto& [row, object] : before) {
        const std::optional<std::int64_t> now = reordering.newPosition(row);
        if (!now) {
            rowOf(object)->rows = nullptr;
            continue;
        }
        rowOf(object)->row = *now;
        rows_.insert_or_assign(*now, object);
    }
}

void LiveRows::forget(const IndexSet& rows) {
    std::erase_if(rows_, [&rows](const auto& entry) {
        if (!rows.contains(entry.first))
            return false;
        rowOf(entry.second)->rows = nullptr;
        return true;
    });
}

} // namespace zorvan::internal

const void* zorvan::GtkRowModel::item(void* row, std::type_index type) {
    if (!G_TYPE_CHECK_INSTANCE_TYPE(row, zorvan_row_get_type()) || rowOf(row)->item.type != type)
        fatalError("The object is no row of a list of such items.");
    return rowOf(row)->item.item.get();
}
