#include <zorvan/hosts/internal/TableModel.h>

#include <algorithm>

namespace zorvan::internal {

void TableModel::reloadCells(const IndexSet& rows, const IndexSet& columns) {
    const auto firstColumn = columns.first(), lastColumn = columns.last();
    if (!firstColumn || *firstColumn >= columnCount() || rowCount() == 0)
        return;
    const int right = static_cast<int>(std::min<std::int64_t>(*lastColumn, columnCount() - 1));
    const IndexSet shown = rows.intersection(IndexSet(IndexSet::Range{0, rowCount()}));
    for (const IndexSet::Range range : shown.ranges())
        emit dataChanged(index(static_cast<int>(range.lower), static_cast<int>(*firstColumn)),
                         index(static_cast<int>(range.upper - 1), right));
}

} // namespace zorvan::internal
