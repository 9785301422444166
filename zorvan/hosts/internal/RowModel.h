#pragma once

#include <zorvan/hosts/qtmodels/internal/rowSelections.h>
#include <zorvan/interface/internal/RowChange.h>

#include <QAbstractItemModel>
#include <functional>
#include <vector>

namespace zorvan::internal {

/// A list of rows as Qt wants to be told of its changes. What is shown in the rows is already
/// another when the change is told.
class RowModel : public QAbstractItemModel {
public:
    using QAbstractItemModel::QAbstractItemModel;

    /// More than Qt could place, one below the other, are not shown.
    static constexpr int mostRows = 1 << 24;

    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : rowCount_;
    }
    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex&) const override { return {}; }
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    /// Invalid for a row that is none.
    QModelIndex indexOfRow(std::int64_t row) const;
    /// -1 for no index.
    std::int64_t rowOf(const QModelIndex& index) const { return index.row(); }
    /// Whole rows as the ranges of a selection, and back.
    QItemSelection toItems(const IndexSet& rows) const { return wholeRows(*this, rows); }
    IndexSet fromItems(const QItemSelection& items) const { return rowsOf(items); }

    /// What these changes, one after the other, make of the rows: an insertion or a removal when it
    /// is one range, else another layout in which every row that stays keeps its indexes.
    void change(const std::vector<RowChange>& changes, std::int64_t rowCount);
    /// Another layout: `place` gives where a row stands afterwards, -1 for one that has gone.
    void rearrange(const std::function<std::int64_t(std::int64_t)>& place, std::int64_t rowCount);
    void reset(std::int64_t rowCount);

protected:
    /// Where a row is to be read: in the middle of a change it stands elsewhere already, or, as -1,
    /// has gone.
    std::int64_t rowInSource(int row) const { return pending_ ? pending_(row) : row; }

private:
    int rowCount_ = 0;
    std::function<std::int64_t(std::int64_t)> pending_;
};

} // namespace zorvan::internal
