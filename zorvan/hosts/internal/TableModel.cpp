#include <zorvan/hosts/internal/TableModel.h>

#include <zorvan/hosts/internal/askSafely.h>
#include <zorvan/hosts/internal/viewGeometry.h>

#include <algorithm>
#include <utility>

namespace zorvan::internal {

TableModel::TableModel(std::shared_ptr<NSTableView> table)
    : table_(std::move(table)), columnCount_(static_cast<int>(table_->numberOfColumns())) {
    reset(table_->numberOfRows());
}

int TableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : columnCount_;
}

std::optional<URL> TableModel::draggedURL(int row) const {
    const auto dataSource = table_->dataSource();
    return dataSource && isReading_ ? dataSource->draggedURL(*table_, row) : std::nullopt;
}

bool TableModel::isMovable(int row) const {
    const auto dataSource = table_->dataSource();
    return dataSource && isReading_ && dataSource->isMovable(*table_, row);
}

QVariant TableModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || role != Qt::DisplayRole || !isReading_)
        return {};
    const std::int64_t row = source(index.row());
    const std::string text = askSafely([&] { return table_->text(index.column(), row); });
    if (!text.empty())
        return toQString(text);
    // What is seen in place of a text has a name for those who do not see it.
    const auto view = table_->view(index.column(), row, false);
    return view ? toQString(view->accessibilityLabel()) : QString();
}

QVariant TableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= table_->numberOfColumns())
        return {};
    const NSTableColumn& column = *table_->tableColumns()[static_cast<std::size_t>(section)];
    if (role == Qt::DisplayRole)
        return toQString(column.title());
    return role == Qt::TextAlignmentRole ? QVariant(Qt::AlignLeading | Qt::AlignVCenter)
                                         : QVariant();
}

void TableModel::insertColumn(int at) {
    beginInsertColumns({}, at, at);
    ++columnCount_;
    endInsertColumns();
}

void TableModel::removeColumn(int at) {
    beginRemoveColumns({}, at, at);
    --columnCount_;
    endRemoveColumns();
}

void TableModel::reloadCells(const IndexSet& rows, const IndexSet& columns) {
    const auto firstColumn = columns.first(), lastColumn = columns.last();
    if (!firstColumn || *firstColumn >= columnCount_ || rowCount() == 0)
        return;
    const int right = static_cast<int>(std::min<std::int64_t>(*lastColumn, columnCount_ - 1));
    const IndexSet shown = rows.intersection(IndexSet(IndexSet::Range{0, rowCount()}));
    for (const IndexSet::Range range : shown.ranges())
        emit dataChanged(index(static_cast<int>(range.lower), static_cast<int>(*firstColumn)),
                         index(static_cast<int>(range.upper - 1), right));
}

} // namespace zorvan::internal
