#pragma once

#include <zorvan/hosts/internal/HostedTable.h>
#include <zorvan/hosts/internal/OutlineModel.h>
#include <zorvan/interface/NSOutlineViewObserver.h>

namespace zorvan::internal {

/// Shows an outline.
class OutlineWidget
    : public HostedTable<QTreeView, NSOutlineView, OutlineModel, NSOutlineViewObserver> {
public:
    OutlineWidget(const std::shared_ptr<NSOutlineView>& outline, QWidget* parent);
    ~OutlineWidget() override { leave(); }

protected:
    using QTreeView::rowsInserted;

    void itemExpanded(const NSOutlineView::Item&, bool) override { followExpansion(); }
    void itemCollapsed(const NSOutlineView::Item&) override { followExpansion(); }
    void reloaded() override;
    // Rows of an outline are its data source's: changed by themselves they are read anew.
    void rowsInserted(const IndexSet&, NSTableView::AnimationOptions) override { reloaded(); }
    void rowsRemoved(const IndexSet&, NSTableView::AnimationOptions) override { reloaded(); }
    void rowsMoved(const IndexSet&, std::int64_t) override { reloaded(); }
    void rowMoved(std::int64_t, std::int64_t) override { reloaded(); }
    void cellsReloaded(const IndexSet& rows, const IndexSet& columns) override;
    void rowHeightsDidChange(const IndexSet&) override { scheduleDelayedItemsLayout(); }
    void selectionDidChange() override { selectionMirror().mirror(); }
    void scrolledTo(std::int64_t row) override { scrollTo(model_.indexOfRow(row)); }

    QRect dropMark(QPoint at) const override { return dropPlace(at).mark; }
    void selectionDropped(QPoint at) override;
    void urlsDropped(const std::vector<URL>& urls, QPoint at) override;
    std::vector<QModelIndex> indexesInSight() const override;

private:
    class Delegate;

    /// Before which child of what something that is dropped goes.
    struct DropPlace {
        QModelIndex holder;
        int before;
        QRect mark;
    };
    DropPlace dropPlace(QPoint at) const;
    bool isBelow(QModelIndex index, const QModelIndexList& others) const;
    void followExpansion();

    bool isExpanding_ = false;
};

} // namespace zorvan::internal
