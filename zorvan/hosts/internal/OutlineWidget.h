#pragma once

#include <zorvan/hosts/internal/HostedItemView.h>
#include <zorvan/hosts/internal/OutlineModel.h>
#include <zorvan/hosts/internal/TableHeader.h>

#include <QTreeView>

namespace zorvan::internal {

/// Shows an outline.
class OutlineWidget : public HostedItemView<QTreeView> {
public:
    OutlineWidget(const std::shared_ptr<NSOutlineView>& outline, QWidget* parent);
    ~OutlineWidget() override;

protected:
    IndexSet selection() const override { return outline_->selectedRowIndexes(); }
    void select(const IndexSet& rows) override { outline_->selectRowIndexes(rows, false); }
    QItemSelection toItems(const IndexSet& rows) const override;
    IndexSet fromItems(const QItemSelection& items) const override;

    void open(const QModelIndex& index) override;
    void pressed(const QModelIndex& index, QPoint at) override;
    std::vector<QModelIndex> indexesInSight() const override;
    std::shared_ptr<NSView> cellView(const QModelIndex& index) override;
    void letGoOfOthers(const std::vector<QModelIndex>& inSight) override;

private:
    class Mirror;
    class Delegate;

    void reload();
    void followExpansion();
    void followColumns();

    const std::shared_ptr<NSOutlineView> outline_;
    OutlineModel model_;
    TableHeader header_;
    bool isExpanding_ = false;
};

} // namespace zorvan::internal
