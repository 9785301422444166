#pragma once

#include <zorvan/hosts/internal/HostedTable.h>
#include <zorvan/hosts/internal/OutlineModel.h>

namespace zorvan::internal {

/// Shows an outline.
class OutlineWidget : public HostedTable<QTreeView, NSOutlineView, OutlineModel> {
public:
    OutlineWidget(const std::shared_ptr<NSOutlineView>& outline, QWidget* parent);
    ~OutlineWidget() override { leave(); }

protected:
    QItemSelection toItems(const IndexSet& rows) const override;
    IndexSet fromItems(const QItemSelection& items) const override;

    bool isDragged(const QModelIndex& index) const override;
    bool isMovable(const QModelIndex& index) const override;
    bool acceptsDrop(const std::vector<URL>& urls) const override;
    QRect dropMark(QPoint at) const override;
    void selectionDropped(QPoint at) override;
    void urlsDropped(const std::vector<URL>& urls, QPoint at) override;
    std::vector<QModelIndex> indexesInSight() const override;

private:
    class RowMirror;
    class Delegate;

    /// Before which child of what something that is dropped goes.
    struct DropPlace {
        QModelIndex holder;
        int before;
        QRect mark;
    };
    DropPlace dropPlace(QPoint at) const;
    bool isBelow(QModelIndex index, const QModelIndexList& others) const;
    void reload();
    void followExpansion();

    bool isExpanding_ = false;
};

} // namespace zorvan::internal
