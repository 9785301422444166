#pragma once

#include <zorvan/hosts/internal/CellModel.h>
#include <zorvan/hosts/internal/RowModel.h>
#include <zorvan/interface/NSCollectionView.h>

namespace zorvan::internal {

/// The items of a collection view in one list, section after section.
class CollectionModel : public CellModel<CollectionModel, NSCollectionView, RowModel> {
public:
    explicit CollectionModel(const std::shared_ptr<NSCollectionView>& view) : CellModel(view) {
        reload();
    }

    int columnCount(const QModelIndex& = {}) const override { return 1; }

    void update(const NSCollectionView::Updates& updates);
    void reload();

    IndexPath path(std::int64_t row) const;
    /// -1 for a path that is none.
    std::int64_t row(IndexPath path) const;
    /// Invalid for a path that is none.
    QModelIndex indexOf(IndexPath path) const { return indexOfRow(row(path)); }

    std::shared_ptr<NSCollectionViewDataSource> source() const { return view_->dataSource(); }
    /// Before all items for one that has gone.
    IndexPath key(const QModelIndex& index) const { return path(rowInSource(index.row())); }
    std::string text(const QModelIndex& index) const;
    std::shared_ptr<NSView> cellView(const QModelIndex& index, bool makesIt) const {
        return view_->view(key(index), makesIt);
    }

private:
    /// How many items there are before each section, and in all.
    std::vector<std::int64_t> starts() const;

    std::vector<std::int64_t> starts_;
};

} // namespace zorvan::internal
