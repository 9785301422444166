#pragma once

#include <zorvan/hosts/internal/askSafely.h>
#include <zorvan/hosts/internal/dragging.h>
#include <zorvan/hosts/internal/viewGeometry.h>

#include <QAbstractItemModel>
#include <memory>
#include <utility>
#include <vector>

namespace zorvan::internal {

/// What models of tables, outlines and collections ask the data source of their view. A `Model`
/// says which one that is (`source`, null for none), by what name the source knows what stands at
/// an index (`key`), and what its cell shows (`text`, `cellView`).
template <class Model, class View, class Base>
class CellModel : public Base {
public:
    explicit CellModel(std::shared_ptr<View> view) : view_(std::move(view)) {}

    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override {
        if (!index.isValid() || role != Qt::DisplayRole || !model().source())
            return {};
        const std::string text = askSafely([&] { return model().text(index); });
        if (!text.empty())
            return toQString(text);
        // What is seen in place of a text has a name for those who do not see it.
        const auto view = model().cellView(index, false);
        return view ? toQString(view->accessibilityLabel()) : QString();
    }

    /// The URLs of the rows, each once.
    QMimeData* mimeData(const QModelIndexList& indexes) const override {
        std::vector<URL> urls;
        for (const QModelIndex& index : indexes)
            if (auto url = index.column() == 0 ? draggedURL(index) : std::nullopt)
                urls.push_back(std::move(*url));
        return toMimeData(urls).release();
    }

    /// Whether a drag of the row carries anything out of the window.
    bool isDragged(const QModelIndex& index) const { return draggedURL(index).has_value(); }
    /// Whether a person may drag it to another place.
    bool isMovable(const QModelIndex& index) const {
        const auto source = model().source();
        const auto movable = [&] { return source->isMovable(*view_, model().key(index)); };
        return source && index.isValid() && askSafely(movable);
    }
    bool acceptsDrop(const std::vector<URL>& urls) const {
        const auto source = model().source();
        return source && askSafely([&] { return source->acceptsDrop(*view_, urls); });
    }

protected:
    const std::shared_ptr<View> view_;

private:
    const Model& model() const { return static_cast<const Model&>(*this); }

    std::optional<URL> draggedURL(const QModelIndex& index) const {
        const auto source = model().source();
        const auto carried = [&] { return source->draggedURL(*view_, model().key(index)); };
        return source && index.isValid() ? askSafely(carried) : std::nullopt;
    }
};

/// The same with the columns of a table.
template <class Model, class Table, class Base>
class ColumnModel : public CellModel<Model, Table, Base> {
public:
    explicit ColumnModel(const std::shared_ptr<Table>& table)
        : CellModel<Model, Table, Base>(table),
          columnCount_(static_cast<int>(table->numberOfColumns())) {}

    int columnCount(const QModelIndex& = {}) const override { return columnCount_; }
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override {
        if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 ||
            section >= this->view_->numberOfColumns())
            return {};
        return toQString(this->view_->tableColumns()[static_cast<std::size_t>(section)]->title());
    }

    void insertColumn(int at) {
        this->beginInsertColumns({}, at, at);
        ++columnCount_;
        this->endInsertColumns();
    }
    void removeColumn(int at) {
        this->beginRemoveColumns({}, at, at);
        --columnCount_;
        this->endRemoveColumns();
    }

private:
    int columnCount_;
};

} // namespace zorvan::internal
