#pragma once

#include <zorvan/hosts/internal/CellModel.h>
#include <zorvan/hosts/internal/RowModel.h>
#include <zorvan/interface/NSTableView.h>

#include <algorithm>

namespace zorvan::internal {

/// The rows and columns of a table, read from its data source when they are shown.
class TableModel : public ColumnModel<TableModel, NSTableView, RowModel> {
public:
    explicit TableModel(const std::shared_ptr<NSTableView>& table) : ColumnModel(table) {
        reset(table->numberOfRows());
    }

    void reloadCells(const IndexSet& rows, const IndexSet& columns) {
        const auto firstColumn = columns.first(), lastColumn = columns.last();
        if (!firstColumn || *firstColumn >= columnCount() || rowCount() == 0)
            return;
        const int right = static_cast<int>(std::min<std::int64_t>(*lastColumn, columnCount() - 1));
        const IndexSet shown = rows.intersection(IndexSet(IndexSet::Range{0, rowCount()}));
        for (const IndexSet::Range range : shown.ranges())
            emit dataChanged(index(static_cast<int>(range.lower), static_cast<int>(*firstColumn)),
                             index(static_cast<int>(range.upper - 1), right));
    }
    /// Between the updates of a table the data source has other rows than the table: nothing is
    /// read from it.
    void setReading(bool isReading) { isReading_ = isReading; }

    std::shared_ptr<NSTableViewDataSource> source() const {
        return isReading_ ? view_->dataSource() : nullptr;
    }
    std::int64_t key(const QModelIndex& index) const { return rowInSource(index.row()); }
    std::string text(const QModelIndex& index) const {
        return view_->text(index.column(), key(index));
    }
    std::shared_ptr<NSView> cellView(const QModelIndex& index, bool makesIt) const {
        return view_->view(index.column(), key(index), makesIt);
    }

private:
    bool isReading_ = true;
};

} // namespace zorvan::internal
