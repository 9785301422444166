#pragma once

#include <zorvan/hosts/internal/HostedItemView.h>
#include <zorvan/hosts/internal/TableHeader.h>
#include <zorvan/hosts/internal/TableModel.h>

#include <QTableView>

namespace zorvan::internal {

/// Shows a table that is no outline.
class TableWidget : public HostedItemView<QTableView> {
public:
    TableWidget(const std::shared_ptr<NSTableView>& table, QWidget* parent);
    ~TableWidget() override;

protected:
    IndexSet selection() const override { return table_->selectedRowIndexes(); }
    void select(const IndexSet& rows) override;
    QItemSelection toItems(const IndexSet& rows) const override;
    IndexSet fromItems(const QItemSelection& items) const override;

    /// What is typed is looked for in the first column.
    void keyboardSearch(const QString& text) override;
    /// Home and End go through the rows.
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;

    void open(const QModelIndex& index) override;
    void pressed(const QModelIndex& index, QPoint at) override;
    bool isDragged(const QModelIndex& index) const override {
        return model_.isDragged(index.row());
    }
    std::vector<QModelIndex> indexesInSight() const override;
    std::shared_ptr<NSView> cellView(const QModelIndex& index) override;
    void letGoOfOthers(const std::vector<QModelIndex>& inSight) override;

private:
    class Mirror;

    void change(RowChange change);
    void applyChanges();
    void reload();
    void followHeights(const IndexSet& ofRows);
    void followColumns();
    const std::shared_ptr<NSTableView> table_;
    TableModel model_;
    /// Of updates that have begun and not ended.
    std::vector<RowChange> changes_;
    int updateDepth_ = 0;
    bool hasOwnHeights_ = false;
    TableHeader header_;
};

} // namespace zorvan::internal
