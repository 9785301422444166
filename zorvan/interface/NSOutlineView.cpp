#include <zorvan/interface/NSOutlineView.h>

#include <zorvan/platform/appkit/NSAnimationContext.h>
#include <zorvan/platform/dispatch/DispatchQueue.h>
#include <zorvan/platform/foundation/fatalError.h>

#include <algorithm>

namespace zorvan {

bool NSOutlineViewDataSource::isExpandable(const NSOutlineView& outline, const Item& item) const {
    return numberOfChildren(outline, item) > 0;
}

std::string NSOutlineViewDataSource::text(const NSOutlineView&, std::int64_t, const Item&) const {
    return {};
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

void NSOutlineView::showChange() {
    std::vector<Row> now = visibleRows();
    // One side is the other with a run of rows taken out: what differs lies between what is common.
    const std::size_t shorter = std::min(rows_.size(), now.size());
    std::size_t head = 0;
    while (head < shorter && rows_[head].item == now[head].item)
        ++head;
    std::size_t tail = 0;
    while (tail < shorter - head &&
           rows_[rows_.size() - 1 - tail].item == now[now.size() - 1 - tail].item)
        ++tail;
    const auto between = [head, tail](const std::vector<Row>& rows) {
        return IndexSet(IndexSet::Range{static_cast<std::int64_t>(head),
                                        static_cast<std::int64_t>(rows.size() - tail)});
    };
    const IndexSet gone = between(rows_), come = between(now);
    rows_ = std::move(now);
    dropRows(gone);
    takeInRows(come);
}

void NSOutlineView::expandItem(const Item& item, bool expandChildren) {
    const auto source = outlineSource_.lock();
    if (expandChildren) {
        std::vector<Item> above;
        markAllExpanded(item, above);
    } else if (item && source && source->isExpandable(*this, item)) {
        expanded_.insert(item);
    }
    showChange();
    note("expandItem",
         std::string(item ? "an item" : "the root") + (expandChildren ? ", with children" : ""));
}

void NSOutlineView::collapseItem(const Item& item) {
    if (expanded_.erase(item) > 0)
        showChange();
    note("collapseItem", item ? "an item" : "the root");
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
        NSAnimationContext::beginGrouping();
        NSAnimationContext::currentContext().setDuration(0);
        outline->expandAllItems();
        NSAnimationContext::endGrouping();
    });
}

NSOutlineView::Item NSOutlineView::item(std::int64_t atRow) const {
    return atRow >= 0 && atRow < numberOfRows() ? rows_[static_cast<std::size_t>(atRow)].item
                                                : nullptr;
}

std::int64_t NSOutlineView::row(const Item& forItem) const {
    const auto found = std::find_if(rows_.begin(), rows_.end(),
                                    [&forItem](const Row& row) { return row.item == forItem; });
    return found == rows_.end() ? -1 : found - rows_.begin();
}

std::int64_t NSOutlineView::level(std::int64_t forRow) const {
    return forRow >= 0 && forRow < numberOfRows() ? rows_[static_cast<std::size_t>(forRow)].level
                                                  : -1;
}

std::string NSOutlineView::cellText(std::int64_t column, std::int64_t row) const {
    const auto source = outlineSource_.lock();
    if (!source)
        return {};
    const std::string text = source->text(*this, column, item(row));
    if (column > 0)
        return text;
    const bool isOpen = isItemExpanded(item(row));
    const char* mark = isOpen ? "▾ " : source->isExpandable(*this, item(row)) ? "▸ " : "   ";
    return std::string(static_cast<std::size_t>(level(row)) * 3, ' ') + mark + text;
}

} // namespace zorvan
