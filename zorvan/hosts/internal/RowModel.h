#pragma once

#include <zorvan/interface/internal/RowChange.h>
#include <zorvan/platform/foundation/URL.h>

#include <QAbstractItemModel>
#include <functional>
#include <optional>
#include <vector>

namespace zorvan::internal {

/// A list of rows as Qt wants to be told of its changes. What is shown in the rows is already
/// another when the change is told.
class RowModel : public QAbstractItemModel {
public:
    using QAbstractItemModel::QAbstractItemModel;

    /// More than Qt could place, one below the other, are not shown.
    static constexpr int mostRows = 1 << 24;

    int rowCount(const QModelIndex& parent = {}) const override;
    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex&) const override { return {}; }
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    /// Whether a drag of the row carries anything out of the window.
    bool isDragged(int row) const;
    /// Those that a person may drag to another place.
    IndexSet movable(const IndexSet& rows) const;
    /// The URLs of the rows, each once.
    QMimeData* mimeData(const QModelIndexList& indexes) const override;

    /// What these changes, one after the other, make of the rows: an insertion or a removal when it
    /// is one range, else another layout in which every row that stays keeps its indexes.
    void change(const std::vector<RowChange>& changes, std::int64_t rowCount);
    /// Another layout: `place` gives where a row stands afterwards, -1 for one that has gone.
    void rearrange(const std::function<std::int64_t(std::int64_t)>& place, std::int64_t rowCount);
    void reset(std::int64_t rowCount);

protected:
    /// What a drag of the row carries; absent when it is not dragged. May throw.
    virtual std::optional<URL> draggedURL(int row) const = 0;
    /// Whether a person may drag the row to another place. May throw.
    virtual bool isMovable(int row) const = 0;
    /// Where a row is to be read: in the middle of a change it stands elsewhere already, or, as -1,
    /// has gone.
    std::int64_t source(int row) const;

private:
    int rowCount_ = 0;
    std::function<std::int64_t(std::int64_t)> pending_;
};

} // namespace zorvan::internal
