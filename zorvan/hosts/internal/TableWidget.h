#pragma once

#include <zorvan/hosts/internal/HostedTable.h>
#include <zorvan/hosts/internal/TableModel.h>

namespace zorvan::internal {

/// Shows a table that is no outline.
class TableWidget : public HostedTable<QTableView, NSTableView, TableModel> {
public:
    TableWidget(const std::shared_ptr<NSTableView>& table, QWidget* parent);
    ~TableWidget() override { leave(); }

protected:
    QItemSelection toItems(const IndexSet& rows) const override;
    IndexSet fromItems(const QItemSelection& items) const override;

    /// What is typed is looked for in the first column.
    void keyboardSearch(const QString& text) override;
    /// Home and End go through the rows.
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;

    bool isDragged(const QModelIndex& index) const override {
        return model_.isDragged(index.row());
    }
    bool isMovable(const QModelIndex& index) const override {
        return !model_.movable({index.row()}).isEmpty();
    }
    bool acceptsDrop(const std::vector<URL>& urls) const override;
    QRect dropMark(QPoint at) const override;
    void selectionDropped(QPoint at) override;
    void urlsDropped(const std::vector<URL>& urls, QPoint at) override;
    std::vector<QModelIndex> indexesInSight() const override;

private:
    class RowMirror;

    void change(RowChange change);
    void applyChanges();
    void reload();
    void followHeights(const IndexSet& ofRows);
    /// Before which row something dropped there goes.
    int dropRow(QPoint at) const;

    /// Of updates that have begun and not ended.
    std::vector<RowChange> changes_;
    int updateDepth_ = 0;
    bool hasOwnHeights_ = false;
};

} // namespace zorvan::internal
