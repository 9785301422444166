#include <zorvan/hosts/internal/RowModel.h>

#include <algorithm>

namespace zorvan::internal {

namespace {

int shownRows(std::int64_t count) {
    return static_cast<int>(std::clamp<std::int64_t>(count, 0, RowModel::mostRows));
}

/// Null when it is not one range.
const IndexSet::Range* onlyRange(const IndexSet& set, const IndexSet& other) {
    return other.isEmpty() && set.ranges().size() == 1 ? set.ranges().data() : nullptr;
}

} // namespace

QModelIndex RowModel::index(int row, int column, const QModelIndex& parent) const {
    return hasIndex(row, column, parent) ? createIndex(row, column) : QModelIndex();
}

Qt::ItemFlags RowModel::flags(const QModelIndex& index) const {
    return index.isValid() ? Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled |
                                 Qt::ItemNeverHasChildren
                           : Qt::NoItemFlags;
}

QModelIndex RowModel::indexOfRow(std::int64_t row) const {
    return row < rowCount_ ? index(static_cast<int>(row), 0) : QModelIndex();
}

void RowModel::change(const std::vector<RowChange>& changes, std::int64_t rowCount) {
    std::int64_t expected = rowCount_;
    for (const RowChange& change : changes)
        expected += change.growth();
    if (expected != rowCount || rowCount > mostRows)
        return reset(rowCount);
    const auto place = [&changes](std::int64_t row) {
        for (auto change = changes.begin(); change != changes.end() && row >= 0; ++change)
            row = change->place(row);
        return row;
    };
    const RowChange& first = changes.front();
    const auto* const come = onlyRange(first.come(), first.gone());
    const auto* const gone = onlyRange(first.gone(), first.come());
    if (changes.size() > 1 || (!come && !gone))
        return rearrange(place, rowCount);
    pending_ = place;
    if (come)
        beginInsertRows({}, static_cast<int>(come->lower), static_cast<int>(come->upper - 1));
    else
        beginRemoveRows({}, static_cast<int>(gone->lower), static_cast<int>(gone->upper - 1));
    pending_ = nullptr;
    rowCount_ = static_cast<int>(rowCount);
    if (come)
        endInsertRows();
    else
        endRemoveRows();
}

void RowModel::rearrange(const std::function<std::int64_t(std::int64_t)>& place,
                         std::int64_t rowCount) {
    pending_ = place;
    emit layoutAboutToBeChanged();
    const QModelIndexList before = persistentIndexList();
    QModelIndexList now;
    now.reserve(before.size());
    for (const QModelIndex& index : before) {
        const std::int64_t row = rowInSource(index.row());
        now.push_back(row < 0 ? QModelIndex() : createIndex(static_cast<int>(row), index.column()));
    }
    pending_ = nullptr;
    rowCount_ = shownRows(rowCount);
    changePersistentIndexList(before, now);
    emit layoutChanged();
}

void RowModel::reset(std::int64_t rowCount) {
    beginResetModel();
    pending_ = nullptr;
    rowCount_ = shownRows(rowCount);
    endResetModel();
}

} // namespace zorvan::internal
