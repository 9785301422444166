#include <zorvan/interface/internal/ItemChange.h>

#include <utility>

namespace zorvan::internal {

ItemChange::ItemChange(const NSCollectionView::Updates& updates)
    : moved_(updates.moved.begin(), updates.moved.end()) {
    std::set<IndexPath> gone = updates.deleted, come = updates.inserted;
    for (const auto& [from, to] : updates.moved) {
        gone.insert(from);
        come.insert(to);
    }
    std::map<std::int64_t, std::pair<IndexSet, IndexSet>> sections;
    for (const IndexPath path : gone)
        sections[path.section].first.insert(path.item);
    for (const IndexPath path : come)
        sections[path.section].second.insert(path.item);
    for (const auto& [section, items] : sections)
        kept_.emplace(section, RowChange::replacing(items.first, items.second));
}

std::optional<IndexPath> ItemChange::place(IndexPath item) const {
    if (const auto moved = moved_.find(item); moved != moved_.end())
        return moved->second;
    const auto section = kept_.find(item.section);
    const std::int64_t now = section == kept_.end() ? item.item : section->second.place(item.item);
    return now < 0 ? std::nullopt : std::optional(IndexPath{now, item.section});
}

} // namespace zorvan::internal
