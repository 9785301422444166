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

/// What a table and an outline have in common: rows of cells, and columns with a header. The model
/// knows the row of each index.
template <class ItemView, class Table, class Model>
class HostedTable : public HostedItemView<ItemView> {
public:
    HostedTable(const std::shared_ptr<Table>& table, QWidget* parent)
        : HostedItemView<ItemView>(table, parent), table_(table), model_(table),
          header_(table, headerOf(*this)) {}

protected:
    /// Follows the columns.
    template <class Widget, class Observer>
    class Mirror : public ViewMirror, public Observer {
    public:
        Mirror(const std::shared_ptr<Table>& table, Widget& widget) : ViewMirror(table, widget) {}

        void columnInserted(std::int64_t at) override {
            if (!own())
                return;
            own()->selectionMirror().forget();
            own()->model_.insertColumn(static_cast<int>(at));
            own()->followColumns();
        }
        void columnRemoved(std::int64_t at) override {
            if (!own())
                return;
            own()->selectionMirror().forget();
            own()->model_.removeColumn(static_cast<int>(at));
            own()->followColumns();
        }
        void columnDidChange(std::int64_t) override {
            if (own())
                own()->followColumns();
        }
        void sortOrderDidChange() override {
            if (own())
                own()->header_.followSortOrder();
        }

    protected:
        /// Null once it is on its way out.
        Widget* own() const { return static_cast<Widget*>(this->widget()); }
    };

    void followColumns() {
        header_.follow();
        this->selectionMirror().mirror();
        this->showCellsLater();
    }

    IndexSet selection() const override { return table_->selectedRowIndexes(); }
    void select(const IndexSet& rows) override { table_->selectRowIndexes(rows, false); }

    void open(const QModelIndex& index) override {
        if (const auto delegate = table_->delegate())
            delegate->rowOpened(*table_, model_.rowOf(index));
    }
    void pressed(const QModelIndex& index, QPoint) override {
        table_->setClickedRow(model_.rowOf(index));
    }

    std::shared_ptr<NSView> cellView(const QModelIndex& index) override {
        return table_->view(index.column(), model_.rowOf(index), true);
    }
    void letGoOfOthers(const std::vector<QModelIndex>& inSight) override {
        std::vector<std::int64_t> rows;
        for (const QModelIndex& index : inSight)
            rows.push_back(model_.rowOf(index));
        std::erase(rows, -1);
        table_->keepCellViews(IndexSet::of(rows));
    }

    const std::shared_ptr<Table> table_;
    Model model_;
    TableHeader header_;
};

} // namespace zorvan::internal
