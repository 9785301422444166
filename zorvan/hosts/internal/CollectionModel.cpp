#include <zorvan/hosts/internal/CollectionModel.h>

#include <zorvan/interface/internal/ItemChange.h>

#include <algorithm>
#include <utility>

namespace zorvan::internal {

namespace {

IndexPath pathAt(const std::vector<std::int64_t>& starts, std::int64_t row) {
    const auto after = std::upper_bound(starts.begin(), starts.end() - 1, row);
    const auto section = std::max<std::ptrdiff_t>(after - starts.begin() - 1, 0);
    return {row - starts[static_cast<std::size_t>(section)], section};
}

std::int64_t rowAt(const std::vector<std::int64_t>& starts, IndexPath path) {
    const auto section = static_cast<std::size_t>(path.section);
    if (path.section < 0 || section + 1 >= starts.size() || path.item < 0 ||
        path.item >= starts[section + 1] - starts[section])
        return -1;
    return starts[section] + path.item;
}

} // namespace

std::vector<std::int64_t> CollectionModel::starts() const {
    std::vector<std::int64_t> starts(1);
    for (std::int64_t section = 0; section < view_->numberOfSections(); ++section)
        // A data source that lies must not make the sum overflow.
        starts.push_back(std::min<std::int64_t>(
            starts.back() + std::min<std::int64_t>(view_->numberOfItems(section), mostRows),
            mostRows));
    return starts;
}

IndexPath CollectionModel::path(std::int64_t row) const { return pathAt(starts_, row); }

std::int64_t CollectionModel::row(IndexPath path) const { return rowAt(starts_, path); }

std::string CollectionModel::text(const QModelIndex& index) const {
    const IndexPath path = key(index);
    return path.item < 0 ? std::string() : source()->text(*view_, path);
}

void CollectionModel::update(const NSCollectionView::Updates& updates) {
    const std::vector<std::int64_t> before = std::exchange(starts_, starts());
    IndexSet gone, come;
    for (const IndexPath path : updates.deleted)
        gone.insert(std::max<std::int64_t>(rowAt(before, path), 0));
    for (const IndexPath path : updates.inserted)
        come.insert(std::max<std::int64_t>(row(path), 0));
    if (!updates.moved.empty()) {
        const ItemChange change(updates);
        rearrange(
            [&](std::int64_t from) {
                const auto now = change.place(pathAt(before, from));
                return now ? row(*now) : -1;
            },
            starts_.back());
    } else if (!gone.isEmpty() || !come.isEmpty()) {
        this->change({RowChange::replacing(gone, come)}, starts_.back());
    }
    for (const IndexPath path : updates.reloaded)
        if (const QModelIndex changed = indexOf(path); changed.isValid())
            emit dataChanged(changed, changed);
}

void CollectionModel::reload() {
    starts_ = starts();
    reset(starts_.back());
}

} // namespace zorvan::internal
