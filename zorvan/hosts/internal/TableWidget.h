#pragma once

#include <zorvan/hosts/internal/HostedTable.h>
#include <zorvan/hosts/internal/TableModel.h>
#include <zorvan/interface/NSTableViewObserver.h>

namespace zorvan::internal {

/// Shows a table that is no outline.
class TableWidget : public HostedTable<QTableView, NSTableView, TableModel, NSTableViewObserver> {
public:
    TableWidget(const std::shared_ptr<NSTableView>& table, QWidget* parent);
    ~TableWidget() override { leave(); }

protected:
    using QTableView::rowsInserted;

    void updatesDidBegin() override;
    void updatesDidEnd() override;
    void rowsInserted(const IndexSet& at, NSTableView::AnimationOptions) override;
    void rowsRemoved(const IndexSet& at, NSTableView::AnimationOptions) override;
    void rowMoved(std::int64_t from, std::int64_t to) override;
    void rowsMoved(const IndexSet& from, std::int64_t to) override;
    void cellsReloaded(const IndexSet& rows, const IndexSet& columns) override;
    void reloaded() override;
    void rowHeightsDidChange(const IndexSet& rows) override { followHeights(rows); }
    void selectionDidChange() override;
    void scrolledTo(std::int64_t row) override;

    /// What is typed is looked for in the first column.
    void keyboardSearch(const QString& text) override;
    /// Home and End go through the rows.
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;

    QRect dropMark(QPoint at) const override;
    void selectionDropped(QPoint at) override;
    void urlsDropped(const std::vector<URL>& urls, QPoint at) override;
    std::vector<QModelIndex> indexesInSight() const override;

private:
    void change(RowChange change);
    void applyChanges();
    void scrollToWantedRow();
    IndexSet allRows() const { return IndexSet(IndexSet::Range{0, model_.rowCount()}); }
    void followHeights(const IndexSet& ofRows);
    /// Before which row something dropped there goes.
    int dropRow(QPoint at) const;

    /// Of updates that have begun and not ended.
    std::vector<RowChange> changes_;
    /// To be scrolled to once they have ended; -1 for none.
    std::int64_t wantedRow_ = -1;
    int updateDepth_ = 0;
    bool hasOwnHeights_ = false;
};

} // namespace zorvan::internal
