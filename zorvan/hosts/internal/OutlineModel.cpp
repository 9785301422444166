#include <zorvan/hosts/internal/OutlineModel.h>

#include <zorvan/hosts/internal/RowModel.h>

#include <algorithm>
#include <utility>

namespace zorvan::internal {

struct OutlineModel::Node {
    NSOutlineView::Item item;
    Node* holder;
    int place;
    std::int64_t row = -1; // of the outline
    bool isLoaded = false;
    std::vector<std::unique_ptr<Node>> children = {};
};

OutlineModel::OutlineModel(const std::shared_ptr<NSOutlineView>& outline)
    : ColumnModel(outline), root_(new Node{nullptr, nullptr, 0}) {
    followRows();
}

OutlineModel::~OutlineModel() = default;

OutlineModel::Node& OutlineModel::node(const QModelIndex& index) const {
    return index.isValid() ? *static_cast<Node*>(index.internalPointer()) : *root_;
}

NSOutlineView::Item OutlineModel::item(const QModelIndex& index) const { return node(index).item; }

/// An item that is given twice below the same one, or a null one, is there as often; an endless
/// tree is asked for no deeper than the widget looks.
void OutlineModel::load(Node& node) const {
    if (std::exchange(node.isLoaded, true))
        return;
    const auto source = view_->outlineDataSource();
    if (!source)
        return;
    const std::int64_t count = std::min<std::int64_t>(
        askSafely([&] { return source->numberOfChildren(*view_, node.item); }), RowModel::mostRows);
    for (std::int64_t i = 0; i < count; ++i)
        node.children.emplace_back(
            new Node{askSafely([&] { return source->child(*view_, i, node.item); }), &node,
                     static_cast<int>(i)});
}

QModelIndex OutlineModel::index(int row, int column, const QModelIndex& parent) const {
    if (!hasIndex(row, column, parent))
        return {};
    return createIndex(row, column, node(parent).children[static_cast<std::size_t>(row)].get());
}

QModelIndex OutlineModel::parent(const QModelIndex& index) const {
    Node* const holder = node(index).holder;
    return holder && holder->holder ? createIndex(holder->place, 0, holder) : QModelIndex();
}

int OutlineModel::rowCount(const QModelIndex& parent) const {
    if (parent.column() > 0)
        return 0;
    Node& holder = node(parent);
    load(holder);
    return static_cast<int>(holder.children.size());
}

bool OutlineModel::hasChildren(const QModelIndex& parent) const {
    const Node& holder = node(parent);
    if (parent.column() > 0 || holder.isLoaded || !parent.isValid())
        return rowCount(parent) > 0;
    const auto source = view_->outlineDataSource();
    return source && askSafely([&] { return source->isExpandable(*view_, holder.item); });
}

Qt::ItemFlags OutlineModel::flags(const QModelIndex& index) const {
    const Qt::ItemFlags usual = QAbstractItemModel::flags(index);
    return index.isValid() ? usual | Qt::ItemIsDragEnabled : usual;
}

void OutlineModel::reset() {
    beginResetModel();
    rows_.clear();
    root_.reset(new Node{nullptr, nullptr, 0});
    std::vector<Node*> rows;
    listRows(*root_, rows);
    takeRows(std::move(rows));
    endResetModel();
}

void OutlineModel::followRows() {
    std::vector<Node*> rows;
    listRows(*root_, rows);
    bool areSame = std::ssize(rows) == view_->numberOfRows();
    for (std::size_t row = 0; areSame && row < rows.size(); ++row)
        areSame = rows[row]->item == view_->item(static_cast<std::int64_t>(row));
    if (!areSame)
        return reset();
    takeRows(std::move(rows));
}

void OutlineModel::takeRows(std::vector<Node*> rows) {
    for (Node* const gone : rows_)
        gone->row = -1;
    rows_ = std::move(rows);
    for (std::size_t row = 0; row < rows_.size(); ++row)
        rows_[row]->row = static_cast<std::int64_t>(row);
}

void OutlineModel::listRows(Node& node, std::vector<Node*>& rows) const {
    load(node);
    for (const auto& child : node.children) {
        if (static_cast<std::int64_t>(rows.size()) > view_->numberOfRows())
            return; // the data source has become another since it was asked
        rows.push_back(child.get());
        if (view_->isItemExpanded(child->item))
            listRows(*child, rows);
    }
}

QModelIndex OutlineModel::indexOfRow(std::int64_t row) const {
    if (row < 0 || row >= rowCountOfOutline())
        return {};
    Node* const found = rows_[static_cast<std::size_t>(row)];
    return createIndex(found->place, 0, found);
}

std::int64_t OutlineModel::rowOf(const QModelIndex& index) const { return node(index).row; }

QItemSelection OutlineModel::toItems(const IndexSet& rows) const {
    QItemSelection items;
    const int last = columnCount() - 1;
    for (const std::int64_t row : rows)
        if (const QModelIndex index = indexOfRow(row); index.isValid() && last >= 0)
            items.push_back(QItemSelectionRange(index, index.siblingAtColumn(last)));
    return items;
}

IndexSet OutlineModel::fromItems(const QItemSelection& items) const {
    std::vector<std::int64_t> rows;
    for (const QItemSelectionRange& range : items)
        for (int place = range.top(); range.isValid() && place <= range.bottom(); ++place)
            rows.push_back(rowOf(index(place, 0, range.parent())));
    std::erase(rows, -1); // below something that is collapsed
    return IndexSet::of(rows);
}

} // namespace zorvan::internal
