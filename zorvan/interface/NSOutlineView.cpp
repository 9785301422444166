#include <zorvan/interface/NSOutlineView.h>

#include <zorvan/interface/NSOutlineViewObserver.h>
#include <zorvan/interface/internal/AnimationGrouping.h>
#include <zorvan/interface/internal/RowChange.h>
#include <zorvan/platform/dispatch/DispatchQueue.h>
#include <zorvan/platform/foundation/fatalError.h>

#include <algorithm>
#include <optional>

namespace zorvan {

std::shared_ptr<NSOutlineView> NSOutlineView::create(const CGRect& frame) {
    return std::make_shared<NSOutlineView>(Key{}, frame);
}

bool NSOutlineViewDataSource::isExpandable(const NSOutlineView& outline, const Item& item) const {
    return numberOfChildren(outline, item) > 0;
}

std::string NSOutlineViewDataSource::text(const NSOutlineView&, std::int64_t, const Item&) const {
    return {};
}

std::optional<URL> NSOutlineViewDataSource::draggedURL(const NSOutlineView&, const Item&) const {
    return std::nullopt;
}

bool NSOutlineViewDataSource::isMovable(const NSOutlineView&, const Item&) const { return false; }

void NSOutlineViewDataSource::itemsDragged(NSOutlineView&, const std::vector<Item>&, const Item&,
                                           std::int64_t) {}

bool NSOutlineViewDataSource::acceptsDrop(const NSOutlineView&, const std::vector<URL>&) const {
    return false;
}

void NSOutlineViewDataSource::urlsDropped(NSOutlineView&, const std::vector<URL>&, const Item&,
                                          std::int64_t) {}

void NSOutlineViewObserver::itemExpanded(const NSOutlineView::Item&, bool) {}
void NSOutlineViewObserver::itemCollapsed(const NSOutlineView::Item&) {}

void NSOutlineView::addObserver(const std::shared_ptr<NSOutlineViewObserver>& observer) {
    NSTableView::addObserver(observer);
    outlineObservers_.add(observer);
}

void NSOutlineView::setOutlineDataSource(const std::shared_ptr<NSOutlineViewDataSource>& source) {
    outlineSource_ = source;
    expanded_.clear();
    reloadData();
}

std::int64_t NSOutlineView::sourceRowCount() {
    rows_ = visibleRows();
    return static_cast<std::int64_t>(rows_.size());
}

std::vector<NSOutlineView::Row> NSOutlineView::visibleRows() const {
    std::vector<Row> rows;
    std::vector<Item> above;
    listVisible(nullptr, above, rows);
    return rows;
}

void NSOutlineView::listVisible(const Item& item, std::vector<Item>& above,
                                std::vector<Row>& rows) const {
    const auto source = outlineSource_.lock();
    if (!source)
        return;
    const std::int64_t count = source->numberOfChildren(*this, item);
    for (std::int64_t i = 0; i < count; ++i) {
        const Item child = source->child(*this, i, item);
        if (std::find(above.begin(), above.end(), child) != above.end())
            fatalError("An item of an outline view holds itself.");
        rows.push_back({child, static_cast<std::int64_t>(above.size())});
        if (!isItemExpanded(child))
            continue;
        above.push_back(child);
        listVisible(child, above, rows);
        above.pop_back();
    }
}

void NSOutlineView::markAllExpanded(const Item& item, std::vector<Item>& above) {
    const auto source = outlineSource_.lock();
    if (!source || (item && !source->isExpandable(*this, item)))
        return;
    if (std::find(above.begin(), above.end(), item) != above.end())
        fatalError("An item of an outline view holds itself.");
    if (item)
        expanded_.insert(item);
    above.push_back(item);
    const std::int64_t count = source->numberOfChildren(*this, item);
    for (std::int64_t i = 0; i < count; ++i)
        markAllExpanded(source->child(*this, i, item), above);
    above.pop_back();
}

namespace {

/// The rows of `whole` that `part` lacks; absent when it is not `whole` with rows left out.
template <class Rows>
std::optional<IndexSet> lacking(const Rows& part, const Rows& whole) {
    IndexSet rows;
    auto next = part.begin();
    for (std::size_t row = 0; row < whole.size(); ++row) {
        if (next != part.end() && next->item == whole[row].item)
            ++next;
        else
            rows.insert(static_cast<std::int64_t>(row));
    }
    return next == part.end() ? std::optional(std::move(rows)) : std::nullopt;
}

template <class Rows>
internal::RowChange changeBetween(const Rows& before, const Rows& now) {
    using internal::RowChange;
    if (const auto come = lacking(before, now))
        return RowChange::inserting(*come);
    if (const auto gone = lacking(now, before))
        return RowChange::removing(*gone);
    const auto all = [](const Rows& rows) {
        return IndexSet(IndexSet::Range{0, static_cast<std::int64_t>(rows.size())});
    };
    return RowChange::replacing(all(before), all(now));
}

} // namespace

void NSOutlineView::showChange(const std::function<void(NSOutlineViewObserver&)>& told) {
    std::vector<Row> now = visibleRows();
    const internal::RowChange change = changeBetween(rows_, now);
    rows_ = std::move(now);
    changeRows(change, [&] { outlineObservers_.tell(told); });
}

void NSOutlineView::expandItem(const Item& item, bool expandChildren) {
    const auto source = outlineSource_.lock();
    if (expandChildren) {
        std::vector<Item> above;
        markAllExpanded(item, above);
    } else if (item && source && source->isExpandable(*this, item)) {
        expanded_.insert(item);
    }
    showChange(
        [&](NSOutlineViewObserver& observer) { observer.itemExpanded(item, expandChildren); });
}

void NSOutlineView::collapseItem(const Item& item) {
    if (expanded_.erase(item) > 0)
        showChange([&](NSOutlineViewObserver& observer) { observer.itemCollapsed(item); });
}

void NSOutlineView::setExpanded(bool expanded, const Item& item) {
    if (expanded)
        expandItem(item);
    else
        collapseItem(item);
}

void NSOutlineView::asyncExpandAllItems() {
    const auto self = std::static_pointer_cast<NSOutlineView>(shared_from_this());
    DispatchQueue::main()->async([weak = std::weak_ptr<NSOutlineView>(self)] {
        const std::shared_ptr<NSOutlineView> outline = weak.lock();
        if (!outline)
            return;
        const internal::AnimationGrouping grouping;
        NSAnimationContext::currentContext().setDuration(0);
        outline->expandAllItems();
    });
}

NSOutlineView::Item NSOutlineView::item(std::int64_t atRow) const {
    return hasItem(atRow) ? rows_[static_cast<std::size_t>(atRow)].item : nullptr;
}

std::int64_t NSOutlineView::row(const Item& forItem) const {
    const auto found = std::find_if(rows_.begin(), rows_.end(),
                                    [&forItem](const Row& row) { return row.item == forItem; });
    return found == rows_.end() ? -1 : found - rows_.begin();
}

std::int64_t NSOutlineView::level(std::int64_t forRow) const {
    return hasItem(forRow) ? rows_[static_cast<std::size_t>(forRow)].level : -1;
}

std::string NSOutlineView::cellText(std::int64_t column, std::int64_t row) const {
    const auto source = outlineSource_.lock();
    if (!source || !hasItem(row))
        return {};
    const std::string text = source->text(*this, column, item(row));
    if (column > 0)
        return text;
    const bool isOpen = isItemExpanded(item(row));
    const char* mark = isOpen ? "▾ " : source->isExpandable(*this, item(row)) ? "▸ " : "   ";
    return std::string(static_cast<std::size_t>(level(row)) * 3, ' ') + mark + text;
}

} // namespace zorvan
