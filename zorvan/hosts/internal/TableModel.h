#pragma once

#include <zorvan/hosts/internal/RowModel.h>
#include <zorvan/interface/NSTableView.h>

#include <memory>

namespace zorvan::internal {

/// The rows and columns of a table, read from its data source when they are shown.
class TableModel : public RowModel {
public:
    explicit TableModel(std::shared_ptr<NSTableView> table);

    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

    /// -1 for no index.
    std::int64_t rowOf(const QModelIndex& index) const { return index.row(); }
    void insertColumn(int at);
    void removeColumn(int at);
    void reloadCells(const IndexSet& rows, const IndexSet& columns);
    /// Between the updates of a table the data source has other rows than the table: nothing is
    /// read from it.
    void setReading(bool isReading) { isReading_ = isReading; }

protected:
    std::optional<URL> draggedURL(int row) const override;
    bool isMovable(int row) const override;

private:
    const std::shared_ptr<NSTableView> table_;
    int columnCount_;
    bool isReading_ = true;
};

} // namespace zorvan::internal
