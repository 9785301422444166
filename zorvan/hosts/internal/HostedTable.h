#pragma once

#include <zorvan/hosts/internal/HostedItemView.h>
#include <zorvan/hosts/internal/TableHeader.h>
#include <zorvan/interface/NSTableView.h>

#include <QHeaderView>
#include <QTableView>
#include <QTreeView>
#include <memory>
#include <vector>

namespace zorvan::internal {

inline QHeaderView& headerOf(QTableView& view) { return *view.horizontalHeader(); }
inline QHeaderView& headerOf(QTreeView& view) { return *view.header(); }

/// What a table and an outline have in common: rows of cells, and columns with a header.
template <class ItemView, class Table, class Model, class Observer>
class HostedTable : public HostedItemView<ItemView, Table, Model>, protected Observer {
public:
    HostedTable(const std::shared_ptr<Table>& table, QWidget* parent)
        : HostedItemView<ItemView, Table, Model>(table, parent), header_(table, headerOf(*this)) {}

protected:
    void columnInserted(std::int64_t at) override {
        this->selectionMirror().forget();
        model_.insertColumn(static_cast<int>(at));
        followColumns();
    }
    void columnRemoved(std::int64_t at) override {
        this->selectionMirror().forget();
        model_.removeColumn(static_cast<int>(at));
        followColumns();
    }
    void columnDidChange(std::int64_t) override { followColumns(); }
    void sortOrderDidChange() override { header_.followSortOrder(); }

    void followColumns() {
        header_.follow();
        this->selectionMirror().mirror();
        this->showCellsLater();
    }

    IndexSet selection() const override { return view_->selectedRowIndexes(); }
    void select(const IndexSet& rows) override { view_->selectRowIndexes(rows, false); }

    void open(const QModelIndex& index) override {
        if (const auto delegate = view_->delegate())
            delegate->rowOpened(*view_, model_.rowOf(index));
    }
    void choose(const QModelIndex& index) override { view_->setClickedRow(model_.rowOf(index)); }
    CGPoint placeInView(QPoint at, const QModelIndex& index) const override {
        const double x = at.x() + ItemView::horizontalScrollBar()->value();
        if (index.isValid()) // whose height is a whole number of points to Qt alone
            return {x, view_->frameOfCell(0, model_.rowOf(index)).midY()};
        const bool isInHeader = at.y() < 0;
        return {x, at.y() + (isInHeader ? 0.0 : ItemView::verticalScrollBar()->value())};
    }

    void letGoOfOthers(const std::vector<QModelIndex>& inSight) override {
        std::vector<std::int64_t> rows;
        for (const QModelIndex& index : inSight)
            rows.push_back(model_.rowOf(index));
        std::erase(rows, -1);
        view_->keepCellViews(IndexSet::of(rows));
    }

    using HostedItemView<ItemView, Table, Model>::view_;
    using HostedItemView<ItemView, Table, Model>::model_;
    TableHeader header_;
};

} // namespace zorvan::internal
