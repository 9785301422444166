#include <zorvan/hosts/gtkmodels/internal/RowModelObject.h>

#include <zorvan/platform/foundation/fatalError.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace zorvan::internal {

namespace {

guint countOf(const RowList& rows) {
    if (rows.count() >= G_MAXUINT)
        fatalError("A model of GTK has at most 4294967294 rows.");
    return static_cast<guint>(rows.count());
}

/// What is told may drop the model, which then ends when all has been told.
class KeptAlive {
public:
    explicit KeptAlive(GtkSelectionModel* object) : object_(object) { g_object_ref(object); }
    ~KeptAlive() { g_object_unref(object_); }
    KeptAlive(const KeptAlive&) = delete;
    KeptAlive& operator=(const KeptAlive&) = delete;

private:
    GtkSelectionModel* const object_;
};

} // namespace

RowModel::RowModel(GtkSelectionModel* object, const GtkRowModel::MakeRows& rows,
                   GtkRowModel::Box box)
    : object_(object), box_(std::move(box)), rows_(rows(*this)) {
    count_ = countOf(*rows_);
    shownSelection_ = rows_->selection();
}

GObject* RowModel::object(guint row) {
    if (row >= count_ || row >= rows_->count())
        return nullptr;
    GObject* live = live_.find(row);
    return live ? live : live_.add(row, box_(*rows_, row));
}

GtkBitset* RowModel::selection(guint first, guint count) const {
    GtkBitset* set = gtk_bitset_new_empty();
    const IndexSet::Range asked{first, std::int64_t{first} + count};
    const IndexSet there = rows_->selection().intersection(IndexSet(asked));
    for (const IndexSet::Range range : there.ranges())
        gtk_bitset_add_range(set, static_cast<guint>(range.lower),
                             static_cast<guint>(range.count()));
    return set;
}

void RowModel::rowsDidChange(const RowChange& change,
                             const std::function<Reordering()>& reordering) {
    const KeptAlive alive(object_);
    if (change.kind == RowChange::Kind::select)
        return tellSelection();
    if (change.kind == RowChange::Kind::replace)
        return itemsDidChange(change.rows);
    const Reordering where = reordering();
    live_.follow(where);
    std::vector<std::int64_t> selected(shownSelection_.begin(), shownSelection_.end());
    where.apply(selected);
    std::erase(selected, -1);
    shownSelection_ = IndexSet::of(selected);
    tellRows(changedSpan(change, where));
    tellSelection();
}

void RowModel::rowsWereLost(const RowChange&) {
    const KeptAlive alive(object_);
    live_.forgetAll();
    shownSelection_ = rows_->selection();
    tellRows({0, count_, rows_->count()});
}

/// Without the rows before and behind that stand where they stood.
auto RowModel::changedSpan(const RowChange& change, const Reordering& reordering) const -> Span {
    if (change.kind == RowChange::Kind::insert)
        return {*change.rows.first(), 0, change.rows.count()};
    if (change.kind == RowChange::Kind::remove) {
        const std::int64_t removed = *change.rows.last() - *change.rows.first() + 1;
        return {*change.rows.first(), removed, removed - change.rows.count()};
    }
    const std::int64_t before = count_, after = rows_->count(), shorter = std::min(before, after);
    std::int64_t first = 0, behind = 0;
    while (first < shorter && reordering.newPosition(first) == first)
        ++first;
    while (behind < shorter - first &&
           reordering.newPosition(before - 1 - behind) == after - 1 - behind)
        ++behind;
    return {first, before - first - behind, after - first - behind};
}

void RowModel::tellRows(Span span) {
    count_ = countOf(*rows_);
    if (span.removed > 0 || span.added > 0)
        g_list_model_items_changed(G_LIST_MODEL(object_), static_cast<guint>(span.first),
                                   static_cast<guint>(span.removed),
                                   static_cast<guint>(span.added));
}

void RowModel::tellSelection() {
    const IndexSet selection = rows_->selection();
    const IndexSet changed =
        std::exchange(shownSelection_, selection).symmetricDifference(selection);
    if (!changed.isEmpty())
        gtk_selection_model_selection_changed(
            object_, static_cast<guint>(*changed.first()),
            static_cast<guint>(*changed.last() - *changed.first() + 1));
}

void RowModel::itemsDidChange(const IndexSet& rows) {
    const KeptAlive alive(object_);
    const IndexSet there = rows.intersection(IndexSet(IndexSet::Range{0, count_}));
    live_.forget(there);
    for (const IndexSet::Range range : there.ranges())
        tellRows({range.lower, range.count(), range.count()});
}

} // namespace zorvan::internal
