#pragma once

#include <zorvan/hosts/internal/CollectionModel.h>
#include <zorvan/hosts/internal/HostedItemView.h>
#include <zorvan/interface/NSCollectionViewObserver.h>

#include <QAccessible>
#include <QListView>
#include <optional>
#include <utility>

namespace zorvan::internal {

/// Shows a collection view: Qt's list, with its items where the layout of the view places them.
class CollectionWidget : public HostedItemView<QListView, NSCollectionView, CollectionModel>,
                         NSCollectionViewObserver {
public:
    CollectionWidget(const std::shared_ptr<NSCollectionView>& view, QWidget* parent);
    ~CollectionWidget() override { leave(); }

    QRect visualRect(const QModelIndex& index) const override;
    QModelIndex indexAt(const QPoint& point) const override;
    void scrollTo(const QModelIndex& index, ScrollHint hint) override;
    /// The layout of the view has laid them out, and Qt's list need not.
    void doItemsLayout() override { QAbstractItemView::doItemsLayout(); }

protected:
    IndexSet selection() const override;
    void select(const IndexSet& items) override;

    void open(const QModelIndex& index) override;
    CGPoint placeInView(QPoint at, const QModelIndex& index) const override;
    QRect dropMark(QPoint at) const override;
    void selectionDropped(QPoint at) override;
    void urlsDropped(const std::vector<URL>& urls, QPoint at) override;
    std::vector<QModelIndex> indexesInSight() const override;
    void letGoOfOthers(const std::vector<QModelIndex>& inSight) override;

    void updateGeometries() override;
    void resizeEvent(QResizeEvent*) override { updateGeometries(); }
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    /// Where one reads from right to left, items stand and scroll from the right edge.
    int horizontalOffset() const override {
        const int value = horizontalScrollBar()->value();
        return isRightToLeft() ? -value : value;
    }
    int verticalOffset() const override { return verticalScrollBar()->value(); }
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void setSelection(const QRect& rect, QItemSelectionModel::SelectionFlags command) override;
    QRegion visualRegionForSelection(const QItemSelection& items) const override;
    void rowsInserted(const QModelIndex& parent, int start, int end) override {
        QAbstractItemView::rowsInserted(parent, start, end);
    }
    void rowsAboutToBeRemoved(const QModelIndex& parent, int start, int end) override {
        QAbstractItemView::rowsAboutToBeRemoved(parent, start, end);
    }
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void selectionChanged(const QItemSelection& selected,
                          const QItemSelection& deselected) override;

private:
    void itemsUpdated(const NSCollectionView::Updates& updates, bool isAnimated) override;
    void sectionsReloaded(const IndexSet&) override { reloaded(); }
    void reloaded() override;
    void layoutDidChange() override;
    void selectionDidChange() override { selectionMirror().mirror(); }

    /// Qt's list announces items by places that it has not laid out itself.
    void announce(QAccessible::Event event, const QModelIndex& index);

    /// What of the content a part of the viewport shows.
    CGRect contentOf(const QRect& part) const;
    std::vector<QModelIndex> indexesIn(const CGRect& content) const;
    CGRect frameOf(const QModelIndex& index) const;
    /// In the lines above or below, the one nearest to the item; the item itself when there is
    /// none.
    QModelIndex neighbour(const QModelIndex& from, double distance) const;
    double layOut();
    void fitView();
    /// The item beside which something dropped there goes, and whether after it; the last one when
    /// there is none in the line.
    std::pair<QModelIndex, bool> dropNeighbour(QPoint at) const;
    IndexPath dropPath(QPoint at) const;

    /// Where the drag of a rubber band began, in the content.
    std::optional<QPoint> bandStart_;
    QRect band_;
    bool isFitting_ = false;
};

} // namespace zorvan::internal
