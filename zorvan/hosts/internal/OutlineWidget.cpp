#include <zorvan/hosts/internal/OutlineWidget.h>

#include <zorvan/hosts/internal/CellDelegate.h>
#include <zorvan/hosts/internal/viewGeometry.h>
#include <zorvan/interface/NSOutlineViewObserver.h>

#include <QHeaderView>

namespace zorvan::internal {

class OutlineWidget::Mirror : public ViewMirror, public NSOutlineViewObserver {
public:
    Mirror(const std::shared_ptr<NSOutlineView>& outline, OutlineWidget& widget)
        : ViewMirror(outline, widget) {}

    void itemExpanded(const NSOutlineView::Item&, bool) override {
        if (own())
            own()->followExpansion();
    }
    void itemCollapsed(const NSOutlineView::Item&) override {
        if (own())
            own()->followExpansion();
    }
    void reloaded() override { reload(); }
    // Rows of an outline are its data source's: changed by themselves they are read anew.
    void rowsInserted(const IndexSet&, NSTableView::AnimationOptions) override { reload(); }
    void rowsRemoved(const IndexSet&, NSTableView::AnimationOptions) override { reload(); }
    void rowsMoved(const IndexSet&, std::int64_t) override { reload(); }
    void rowMoved(std::int64_t, std::int64_t) override { reload(); }
    void cellsReloaded(const IndexSet&, const IndexSet&) override {
        if (!own())
            return;
        own()->viewport()->update();
        own()->showCellsLater();
    }
    void rowHeightsDidChange(const IndexSet&) override {
        if (own())
            own()->scheduleDelayedItemsLayout();
    }
    void columnInserted(std::int64_t at) override {
        if (!own())
            return;
        own()->selectionMirror().forget();
        own()->model_.insertColumn(static_cast<int>(at));
        own()->followColumns();
    }
    void columnRemoved(std::int64_t at) override {
        if (!own())
            return;
        own()->selectionMirror().forget();
        own()->model_.removeColumn(static_cast<int>(at));
        own()->followColumns();
    }
    void columnDidChange(std::int64_t) override {
        if (own())
            own()->followColumns();
    }
    void sortOrderDidChange() override {
        if (own())
            own()->header_.followSortOrder();
    }
    void selectionDidChange() override {
        if (own())
            own()->selectionMirror().mirror();
    }
    void scrolledTo(std::int64_t row) override {
        if (own())
            own()->scrollTo(own()->model_.indexOfRow(row));
    }

private:
    OutlineWidget* own() const { return static_cast<OutlineWidget*>(widget()); }
    void reload() {
        if (own())
            own()->reload();
    }
};

/// Rows are as high as the outline says.
class OutlineWidget::Delegate : public CellDelegate {
public:
    explicit Delegate(OutlineWidget& widget) : CellDelegate(&widget), widget_(widget) {}

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        const NSOutlineView& outline = *widget_.outline_;
        const double height = askSafely([&] {
            return outline.delegate() ? outline.heightOfRow(widget_.model_.rowOf(index))
                                      : outline.rowHeight();
        });
        return {CellDelegate::sizeHint(option, index).width(), wholeLength(height)};
    }

private:
    const OutlineWidget& widget_;
};

OutlineWidget::OutlineWidget(const std::shared_ptr<NSOutlineView>& outline, QWidget* parent)
    : HostedItemView(outline, parent), outline_(outline), model_(outline),
      header_(outline, *header()) {
    setItemDelegate(new Delegate(*this));
    setExpandsOnDoubleClick(false); // it opens
    adopt(model_);
    const auto tell = [this](const QModelIndex& index, bool isExpanded) {
        if (isExpanding_)
            return;
        outline_->setExpanded(isExpanded, model_.item(index));
        followExpansion(); // the outline may know better
    };
    connect(this, &QTreeView::expanded, this,
            [tell](const QModelIndex& index) noexcept { tell(index, true); });
    connect(this, &QTreeView::collapsed, this,
            [tell](const QModelIndex& index) noexcept { tell(index, false); });
    const auto mirror = std::make_shared<Mirror>(outline, *this);
    ViewMirror::attach(mirror);
    outline->addObserver(std::static_pointer_cast<NSOutlineViewObserver>(mirror));
    followColumns();
    followExpansion();
}

OutlineWidget::~OutlineWidget() { leave(); }

void OutlineWidget::reload() {
    const int top = verticalScrollBar()->value();
    const auto current = model_.item(currentIndex());
    model_.reset();
    followExpansion();
    if (const QModelIndex same = model_.indexOfRow(current ? outline_->row(current) : -1);
        same.isValid())
        selectionModel()->setCurrentIndex(same, QItemSelectionModel::NoUpdate);
    verticalScrollBar()->setValue(top);
}

void OutlineWidget::followExpansion() {
    const QScopedValueRollback guard(isExpanding_, true);
    model_.followRows();
    for (std::int64_t row = 0; row < model_.rowCountOfOutline(); ++row) {
        const QModelIndex index = model_.indexOfRow(row);
        const bool isOpen = outline_->isItemExpanded(model_.item(index));
        if (isExpanded(index) != isOpen)
            setExpanded(index, isOpen);
    }
    selectionMirror().mirror();
    showCellsLater();
}

void OutlineWidget::followColumns() {
    header_.follow();
    selectionMirror().mirror();
    showCellsLater();
}

// What the person does

QItemSelection OutlineWidget::toItems(const IndexSet& rows) const {
    QItemSelection items;
    const int last = model_.columnCount() - 1;
    for (const std::int64_t row : rows)
        if (const QModelIndex index = model_.indexOfRow(row); index.isValid() && last >= 0)
            items.push_back(QItemSelectionRange(index, index.siblingAtColumn(last)));
    return items;
}

IndexSet OutlineWidget::fromItems(const QItemSelection& items) const {
    std::vector<std::int64_t> rows;
    for (const QItemSelectionRange& range : items)
        for (int place = range.top(); range.isValid() && place <= range.bottom(); ++place)
            rows.push_back(model_.rowOf(model_.index(place, 0, range.parent())));
    std::erase(rows, -1); // below something that is collapsed
    return IndexSet::of(rows);
}

void OutlineWidget::open(const QModelIndex& index) {
    if (const auto delegate = outline_->delegate())
        delegate->rowOpened(*outline_, model_.rowOf(index));
}

void OutlineWidget::pressed(const QModelIndex& index, QPoint) {
    outline_->setClickedRow(index.isValid() ? model_.rowOf(index) : -1);
}

// Cells

std::vector<QModelIndex> OutlineWidget::indexesInSight() const {
    std::vector<QModelIndex> indexes;
    if (!outline_->delegate())
        return indexes;
    for (QModelIndex index = indexAt({0, 0});
         index.isValid() && visualRect(index).top() < viewport()->height();
         index = indexBelow(index))
        for (int column = 0; column < model_.columnCount(); ++column)
            indexes.push_back(index.siblingAtColumn(column));
    return indexes;
}

std::shared_ptr<NSView> OutlineWidget::cellView(const QModelIndex& index) {
    return outline_->view(index.column(), model_.rowOf(index), true);
}

void OutlineWidget::letGoOfOthers(const std::vector<QModelIndex>& inSight) {
    IndexSet rows;
    for (const QModelIndex& index : inSight)
        if (const std::int64_t row = model_.rowOf(index); row >= 0)
            rows.insert(row);
    outline_->keepCellViews(rows);
}

} // namespace zorvan::internal
