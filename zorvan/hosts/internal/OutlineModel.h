#pragma once

#include <zorvan/interface/NSOutlineView.h>

#include <QAbstractItemModel>
#include <memory>
#include <unordered_map>
#include <vector>

namespace zorvan::internal {

/// The items of an outline as the tree that they are. Children are asked for once, when the widget
/// first wants to know how many there are.
class OutlineModel : public QAbstractItemModel {
public:
    explicit OutlineModel(std::shared_ptr<NSOutlineView> outline);
    ~OutlineModel() override;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    bool hasChildren(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    /// The URLs of the items, each once.
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

    void insertColumn(int at);
    void removeColumn(int at);
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
    std::int64_t rowCountOfOutline() const { return static_cast<std::int64_t>(rows_.size()); }

private:
    struct Node;

    Node& node(const QModelIndex& index) const;
    void load(Node& node) const;
    void listRows(Node& node, std::vector<Node*>& rows) const;
    bool areRowsOfOutline(const std::vector<Node*>& rows) const;

    const std::shared_ptr<NSOutlineView> outline_;
    std::unique_ptr<Node> root_;
    std::vector<Node*> rows_;
    std::unordered_map<const Node*, std::int64_t> places_;
    int columnCount_;
};

} // namespace zorvan::internal
