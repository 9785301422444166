#include <zorvan/hosts/internal/OutlineModel.h>

#include <zorvan/hosts/internal/RowModel.h>
#include <zorvan/hosts/internal/askSafely.h>
#include <zorvan/hosts/internal/dragging.h>
#include <zorvan/hosts/internal/viewGeometry.h>

#include <algorithm>
#include <utility>

namespace zorvan::internal {

struct OutlineModel::Node {
    NSOutlineView::Item item;
    Node* holder;
    int place;
    bool isLoaded = false;
    std::vector<std::unique_ptr<Node>> children = {};
};

OutlineModel::OutlineModel(std::shared_ptr<NSOutlineView> outline)
    : outline_(std::move(outline)), root_(new Node{nullptr, nullptr, 0}),
      columnCount_(static_cast<int>(outline_->numberOfColumns())) {
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
    const auto source = outline_->outlineDataSource();
    if (!source)
        return;
    const std::int64_t count = std::min<std::int64_t>(
        askSafely([&] { return source->numberOfChildren(*outline_, node.item); }),
        RowModel::mostRows);
    for (std::int64_t i = 0; i < count; ++i)
        node.children.emplace_back(
            new Node{askSafely([&] { return source->child(*outline_, i, node.item); }), &node,
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
    const auto source = outline_->outlineDataSource();
    return source && askSafely([&] { return source->isExpandable(*outline_, holder.item); });
}

int OutlineModel::columnCount(const QModelIndex&) const { return columnCount_; }

QVariant OutlineModel::data(const QModelIndex& index, int role) const {
    const auto source = outline_->outlineDataSource();
    if (!index.isValid() || role != Qt::DisplayRole || !source)
        return {};
    const std::string text =
        askSafely([&] { return source->text(*outline_, index.column(), item(index)); });
    if (!text.empty())
        return toQString(text);
    const auto view = outline_->view(index.column(), rowOf(index), false);
    return view ? toQString(view->accessibilityLabel()) : QString();
}

Qt::ItemFlags OutlineModel::flags(const QModelIndex& index) const {
    const Qt::ItemFlags usual = QAbstractItemModel::flags(index);
    return index.isValid() ? usual | Qt::ItemIsDragEnabled : usual;
}

QMimeData* OutlineModel::mimeData(const QModelIndexList& indexes) const {
    std::vector<URL> urls;
    const auto source = outline_->outlineDataSource();
    for (const QModelIndex& index : indexes)
        if (source && index.column() == 0)
            if (auto url = askSafely([&] { return source->draggedURL(*outline_, item(index)); }))
                urls.push_back(std::move(*url));
    return toMimeData(urls).release();
}

QVariant OutlineModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 ||
        section >= outline_->numberOfColumns())
        return {};
    return toQString(outline_->tableColumns()[static_cast<std::size_t>(section)]->title());
}

void OutlineModel::insertColumn(int at) {
    beginInsertColumns({}, at, at);
    ++columnCount_;
    endInsertColumns();
}

void OutlineModel::removeColumn(int at) {
    beginRemoveColumns({}, at, at);
    --columnCount_;
    endRemoveColumns();
}

void OutlineModel::reset() {
    beginResetModel();
    root_.reset(new Node{nullptr, nullptr, 0});
    rows_.clear();
    listRows(*root_, rows_);
    endResetModel();
    places_.clear();
    for (std::size_t row = 0; row < rows_.size(); ++row)
        places_[rows_[row]] = static_cast<std::int64_t>(row);
}

void OutlineModel::followRows() {
    std::vector<Node*> rows;
    listRows(*root_, rows);
    if (!areRowsOfOutline(rows))
        return reset();
    rows_ = std::move(rows);
    places_.clear();
    for (std::size_t row = 0; row < rows_.size(); ++row)
        places_[rows_[row]] = static_cast<std::int64_t>(row);
}

void OutlineModel::listRows(Node& node, std::vector<Node*>& rows) const {
    load(node);
    for (const auto& child : node.children) {
        if (static_cast<std::int64_t>(rows.size()) > outline_->numberOfRows())
            return; // the data source has become another since it was asked
        rows.push_back(child.get());
        if (outline_->isItemExpanded(child->item))
            listRows(*child, rows);
    }
}

bool OutlineModel::areRowsOfOutline(const std::vector<Node*>& rows) const {
    bool areSame = static_cast<std::int64_t>(rows.size()) == outline_->numberOfRows();
    for (std::size_t row = 0; areSame && row < rows.size(); ++row)
        areSame = rows[row]->item == outline_->item(static_cast<std::int64_t>(row));
    return areSame;
}

QModelIndex OutlineModel::indexOfRow(std::int64_t row) const {
    if (row < 0 || row >= rowCountOfOutline())
        return {};
    Node* const found = rows_[static_cast<std::size_t>(row)];
    return createIndex(found->place, 0, found);
}

std::int64_t OutlineModel::rowOf(const QModelIndex& index) const {
    const auto place = places_.find(&node(index));
    return place == places_.end() ? -1 : place->second;
}

} // namespace zorvan::internal
