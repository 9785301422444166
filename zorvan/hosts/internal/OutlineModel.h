#pragma once

#include <zorvan/hosts/internal/CellModel.h>
#include <zorvan/interface/NSOutlineView.h>

#include <QItemSelection>

namespace zorvan::internal {

/// The items of an outline as the tree that they are. Children are asked for once, when the widget
/// first wants to know how many there are.
class OutlineModel : public ColumnModel<OutlineModel, NSOutlineView, QAbstractItemModel> {
public:
    explicit OutlineModel(const std::shared_ptr<NSOutlineView>& outline);
    ~OutlineModel() override;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    bool hasChildren(const QModelIndex& parent = {}) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    /// Forgets all items that were asked for.
    void reset();
    /// Finds the rows of the outline among the items anew; when the data source has others by now,
    /// that is a reset.
    void followRows();

    NSOutlineView::Item item(const QModelIndex& index) const;
    /// Of a row of the outline; invalid when there is none.
    QModelIndex indexOfRow(std::int64_t row) const;
    /// -1 for an item that is not in sight.
    std::int64_t rowOf(const QModelIndex& index) const;
    std::int64_t rowCountOfOutline() const { return std::ssize(rows_); }
    /// Whole rows as the ranges of a selection, and back.
    QItemSelection toItems(const IndexSet& rows) const;
    IndexSet fromItems(const QItemSelection& items) const;

    std::shared_ptr<NSOutlineViewDataSource> source() const { return view_->outlineDataSource(); }
    NSOutlineView::Item key(const QModelIndex& index) const { return item(index); }
    std::string text(const QModelIndex& index) const {
        return source()->text(*view_, index.column(), item(index));
    }
    std::shared_ptr<NSView> cellView(const QModelIndex& index, bool makesIt) const {
        return view_->view(index.column(), rowOf(index), makesIt);
    }

private:
    struct Node;

    Node& node(const QModelIndex& index) const;
    void load(Node& node) const;
    void listRows(Node& node, std::vector<Node*>& rows) const;
    void takeRows(std::vector<Node*> rows);

    std::unique_ptr<Node> root_;
    std::vector<Node*> rows_;
};

} // namespace zorvan::internal
