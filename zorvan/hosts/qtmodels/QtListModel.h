#pragma once

#include <zorvan/hosts/qtmodels/QtColumn.h>
#include <zorvan/hosts/qtmodels/QtRowModel.h>
#include <zorvan/hosts/rows/rowsOf.h>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace zorvan {

/// A model of Qt over a `ManagedList` or a `SelectableArray`, for widgets and for QML:
///
///     auto* model = new QtListModel<Photo>(
///         list, {{Qt::DisplayRole, [](const Photo& photo) { return photo.title; }}}, window);
///     view->setModel(model);
///     view->setSelectionModel(model->selectionModel());
///
/// The rows are what the list shows. The model keeps the list alive and puts itself before the
/// edition handler of an array, which is therefore to be set first. See `QtRowModel` for how
/// changes are told. No list stops the program.
template <class Item>
class QtListModel : public QtRowModel {
public:
    /// What the model is made of.
    /// @{
    using Column = QtColumn<Item>;
    using Roles = typename Column::Roles;
    /// @}

    /// With one column.
    template <class List>
    QtListModel(const std::shared_ptr<List>& list, Roles roles, QObject* parent = nullptr)
        : QtListModel(list, std::vector<Column>{{.roles = std::move(roles)}}, parent) {}
    /// With a column for each of these, as tables have them.
    template <class List>
    QtListModel(const std::shared_ptr<List>& list, std::vector<Column> columns,
                QObject* parent = nullptr)
        : QtRowModel(static_cast<int>(columns.size()), parent), columns_(std::move(columns)),
          cells_(columns_.begin(), columns_.end()), rows_(detail::rowsOf(list, follower())),
          items_(rows_->items()) {
        show(*rows_);
    }

    /// The item of a row, which there must be.
    const Item& item(int row) const { return items_.at(static_cast<std::size_t>(positionOf(row))); }

    /// What the column says of the item for the role, or whether the row is selected. Nothing for a
    /// role that the column has not, nor for an item that is gone from the list.
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override {
        if (!index.isValid())
            return {};
        if (role == selectedRole)
            return isSelected(index.row());
        const Cells& column = cells_[static_cast<std::size_t>(index.column())];
        for (std::size_t i = 0; i < column.roles.size(); ++i) {
            if (column.roles[i] != role)
                continue;
            const Item* item = itemOf(index.row());
            return item ? column.readers[i](*item) : QVariant();
        }
        return {};
    }
    /// Sets a role that the column has a setter for, or whether the row is selected.
    bool setData(const QModelIndex& index, const QVariant& value,
                 int role = Qt::EditRole) override {
        const Item* item = index.isValid() ? itemOf(index.row()) : nullptr;
        if (!item)
            return false;
        if (role == selectedRole) {
            setSelected(index.row(), value.toBool());
            return true;
        }
        const auto& setters = columns_[static_cast<std::size_t>(index.column())].setters;
        const auto setter = setters.find(role);
        if (setter == setters.end())
            return false;
        const QPersistentModelIndex cell(index); // a setter may have the list filtered or sorted
        Item changed = *item;
        if (!setter->second(changed, value))
            return false;
        const Item* const now = cell.isValid() ? itemOf(cell.row()) : nullptr;
        if (now && !rows_->replace(std::move(changed), now - items_.data()))
            itemsDidChange({now - items_.data()});
        return true;
    }
    /// The column's title; without one, and for rows, what Qt says of itself.
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override {
        const Column* column = orientation == Qt::Horizontal ? columnOf(section) : nullptr;
        if (column && role == Qt::DisplayRole && !column->title.isEmpty())
            return column->title;
        return QtRowModel::headerData(section, orientation, role);
    }
    /// With setters for them, cells can be edited or ticked, too.
    Qt::ItemFlags flags(const QModelIndex& index) const override {
        return index.isValid() ? cells_[static_cast<std::size_t>(index.column())].flags
                               : QtRowModel::flags(index);
    }
    /// Sorts the list itself by the column's order; nothing for a column without one.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override {
        const Column* by = columnOf(column);
        if (!by || !by->order)
            return;
        if (order == Qt::AscendingOrder)
            rows_->sort(by->order);
        else
            rows_->sort(
                [before = by->order](const Item& a, const Item& b) { return before(b, a); });
    }

private:
    /// What a column answers views, its roles side by side: they ask for ten a cell, mostly for
    /// ones that there are not.
    struct Cells {
        explicit Cells(const Column& column) {
            for (const auto& [role, reader] : column.roles) {
                roles.push_back(role);
                readers.push_back(reader);
            }
            flags.setFlag(Qt::ItemIsEditable, column.setters.contains(Qt::EditRole));
            flags.setFlag(Qt::ItemIsUserCheckable, column.setters.contains(Qt::CheckStateRole));
        }

        std::vector<int> roles;
        std::vector<std::function<QVariant(const Item&)>> readers;
        Qt::ItemFlags flags = cellFlags;
    };
    /// Null when it is gone from the list.
    const Item* itemOf(int row) const {
        const auto position = static_cast<std::size_t>(positionOf(row));
        return position < items_.size() ? &items_[position] : nullptr;
    }
    const Column* columnOf(int section) const {
        return section >= 0 && section < columnCount()
                   ? &columns_[static_cast<std::size_t>(section)]
                   : nullptr;
    }

    const std::vector<Column> columns_;
    const std::vector<Cells> cells_;
    const std::unique_ptr<ItemList<Item>> rows_;
    const std::vector<Item>& items_;
};

} // namespace zorvan
