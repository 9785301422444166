#pragma once

#include <zorvan/hosts/internal/RowModel.h>
#include <zorvan/interface/NSCollectionView.h>

#include <memory>
#include <vector>

namespace zorvan::internal {

/// The items of a collection view in one list, section after section.
class CollectionModel : public RowModel {
public:
    explicit CollectionModel(std::shared_ptr<NSCollectionView> view);

    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;

    void update(const NSCollectionView::Updates& updates);
    void reload();

    IndexPath path(std::int64_t row) const;
    /// -1 for a path that is none.
    std::int64_t row(IndexPath path) const;

protected:
    std::optional<URL> draggedURL(int row) const override;
    bool isMovable(int row) const override;

private:
    /// How many items there are before each section, and in all.
    std::vector<std::int64_t> starts() const;

    const std::shared_ptr<NSCollectionView> view_;
    std::vector<std::int64_t> starts_;
};

} // namespace zorvan::internal
