#pragma once

#include <zorvan/hosts/gtkmodels/internal/RowObject.h>

#include <gtk/gtk.h>

namespace zorvan::internal {

/// What a model object of GTK does.
class RowModel final : private RowFollower {
public:
    RowModel(GtkSelectionModel* object, const GtkRowModel::MakeRows& rows, GtkRowModel::Box box);

    guint count() const noexcept { return count_; }
    /// A new reference; null outside the list.
    GObject* object(guint row);
    bool isSelected(guint row) const { return rows_->selection().contains(row); }
    GtkBitset* selection(guint first, guint count) const;
    void select(const IndexSet& rows) { rows_->select(rows); }
    const IndexSet& selection() const { return rows_->selection(); }
    void itemsDidChange(const IndexSet& rows);

private:
    /// Rows of which one signal tells.
    struct Span {
        std::int64_t first;
        std::int64_t removed;
        std::int64_t added;
    };

    void rowsWillChange(const RowChange&) override {}
    void rowsDidChange(const RowChange& change,
                       const std::function<Reordering()>& reordering) override;
    void rowsWereLost(const RowChange&) override;

    Span changedSpan(const RowChange& change, const Reordering& reordering) const;
    void tellRows(Span span);
    void tellSelection();

    GtkSelectionModel* const object_;
    const GtkRowModel::Box box_;
    LiveRows live_;
    /// As GTK was told.
    guint count_ = 0;
    /// The rows that were shown as selected.
    IndexSet shownSelection_;
    const std::unique_ptr<RowList> rows_; // goes first
};

} // namespace zorvan::internal
