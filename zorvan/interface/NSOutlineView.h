#pragma once

#include <zorvan/interface/NSTableView.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace zorvan {

class NSOutlineView;
class NSOutlineViewObserver;

/// Gives an outline its items. Items are told apart by identity; no item (null) stands for the
/// root. What is not overridden is empty, absent, false, or does nothing.
class NSOutlineViewDataSource {
public:
    /// An item: any object, told from others by its address.
    using Item = std::shared_ptr<const void>;

    virtual ~NSOutlineViewDataSource() = default;
    /// How many items stand below the item, or below the root; below 0 counts as none.
    virtual std::int64_t numberOfChildren(const NSOutlineView& outline, const Item& item) const = 0;
    /// A child of the item, or of the root, from 0 on.
    virtual Item child(const NSOutlineView& outline, std::int64_t index,
                       const Item& item) const = 0;
    /// Whether the item has children unless overridden.
    virtual bool isExpandable(const NSOutlineView& outline, const Item& item) const;
    /// The text of a cell, which the outline draws where it has no cell view.
    virtual std::string text(const NSOutlineView& outline, std::int64_t column,
                             const Item& item) const;
    /// What a drag of the item carries out of the window, such as a file; absent when it stays.
    virtual std::optional<URL> draggedURL(const NSOutlineView& outline, const Item& item) const;
    /// Whether a person may drag the item to another place of the outline.
    virtual bool isMovable(const NSOutlineView& outline, const Item& item) const;
    /// A person has dragged movable items, in the order of their rows, below `holder`, before its
    /// child at `before` or to their end: move them, and reload the outline. None of them holds
    /// `holder`.
    virtual void itemsDragged(NSOutlineView& outline, const std::vector<Item>& items,
                              const Item& holder, std::int64_t before);
    /// Whether files, or other addresses, that come from elsewhere may be dropped in the outline.
    virtual bool acceptsDrop(const NSOutlineView& outline, const std::vector<URL>& urls) const;
    /// They were dropped below `holder`, before its child at `before` or at the end.
    virtual void urlsDropped(NSOutlineView& outline, const std::vector<URL>& urls,
                             const Item& holder, std::int64_t before);
};

/// A table whose rows are the visible items of a tree: the children of the root, and those of every
/// item that is expanded and visible itself.
///
/// An item that holds itself, at any depth, stops the program when it would become visible.
class NSOutlineView : public NSTableView {
public:
    /// As for the data source.
    using Item = NSOutlineViewDataSource::Item;

    /// Without data source, columns and items.
    static std::shared_ptr<NSOutlineView> create(const CGRect& frame = {});
    /// For `create`.
    using NSTableView::NSTableView;

    /// Told of what a table tells too.
    using NSTableView::addObserver;
    /// Whoever shows the outline, and tests. Not kept alive.
    void addObserver(const std::shared_ptr<NSOutlineViewObserver>& observer);

    /// Null when there is none, or it has gone.
    std::shared_ptr<NSOutlineViewDataSource> outlineDataSource() const noexcept {
        return outlineSource_.lock();
    }
    /// Reloads.
    void setOutlineDataSource(const std::shared_ptr<NSOutlineViewDataSource>& source);

    /// Shows the children of the item, and with `expandChildren` those of everything below it. No
    /// item stands for the root, which is always expanded itself. Nothing for an item that is not
    /// expandable.
    void expandItem(const Item& item, bool expandChildren = false);
    /// Hides what is below the item; what was expanded there stays so for later. Nothing for the
    /// root.
    void collapseItem(const Item& item);
    /// False for the root. An item may be expanded and out of sight.
    bool isItemExpanded(const Item& item) const { return expanded_.contains(item); }
    /// As `expandItem` or `collapseItem`, for the item alone.
    /// @{
    void setExpanded(bool expanded, const Item& item);
    void toggleExpand(const Item& item) { setExpanded(!isItemExpanded(item), item); }
    /// @}
    /// Everything below the root.
    void expandAllItems() { expandItem(nullptr, true); }
    /// Later, on the main queue, and at once as far as animation goes. Nothing when the outline is
    /// gone.
    void asyncExpandAllItems();

    /// The visible item at a row; null when there is no such row.
    Item item(std::int64_t atRow) const;
    /// The row of a visible item, or -1.
    std::int64_t row(const Item& forItem) const;
    using NSTableView::row;
    /// How deep the item at a row stands: 0 for the children of the root, -1 when there is no such
    /// row.
    std::int64_t level(std::int64_t forRow) const;

protected:
    std::int64_t sourceRowCount() override;
    std::string cellText(std::int64_t column, std::int64_t row) const override;

private:
    struct Row {
        Item item;
        std::int64_t level;
    };

    void markAllExpanded(const Item& item, std::vector<Item>& above);
    void listVisible(const Item& item, std::vector<Item>& above, std::vector<Row>& rows) const;
    std::vector<Row> visibleRows() const;
    /// In the middle of updates the table may have been told of rows whose items are asked for at
    /// the end alone.
    bool hasItem(std::int64_t atRow) const noexcept {
        return atRow >= 0 && std::cmp_less(atRow, rows_.size());
    }
    /// Brings the rows in line with what is expanded now, telling the table which came or went.
    void showChange(const std::function<void(NSOutlineViewObserver&)>& told);

    std::weak_ptr<NSOutlineViewDataSource> outlineSource_;
    ObserverList<NSOutlineViewObserver> outlineObservers_;
    std::unordered_set<Item> expanded_;
    std::vector<Row> rows_;
};

} // namespace zorvan
