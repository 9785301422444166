#include <zorvan/interface/NSTableView.h>

#include <zorvan/interface/NSTableViewObserver.h>
#include <zorvan/interface/internal/RowChange.h>
#include <zorvan/interface/internal/updateRows.h>
#include <zorvan/platform/dispatch/NSNotificationCenter.h>
#include <zorvan/platform/foundation/fatalError.h>

#include <algorithm>
#include <utility>

namespace zorvan {

std::shared_ptr<NSTableView> NSTableView::create(const CGRect& frame) {
    return std::make_shared<NSTableView>(Key{}, frame);
}

using internal::RowChange;
using Observer = NSTableViewObserver;
using Range = IndexSet::Range;

std::string NSTableViewDataSource::text(const NSTableView&, std::int64_t, std::int64_t) const {
    return {};
}

std::optional<URL> NSTableViewDataSource::draggedURL(const NSTableView&, std::int64_t) const {
    return std::nullopt;
}

bool NSTableViewDataSource::isMovable(const NSTableView&, std::int64_t) const { return false; }

void NSTableViewDataSource::rowsDragged(NSTableView&, const IndexSet&, std::int64_t) {}

bool NSTableViewDataSource::acceptsDrop(const NSTableView&, const std::vector<URL>&) const {
    return false;
}

void NSTableViewDataSource::urlsDropped(NSTableView&, const std::vector<URL>&, std::int64_t) {}

void NSTableViewDataSource::sortOrderDidChange(NSTableView&) {}

std::shared_ptr<NSView> NSTableViewDelegate::view(NSTableView&, std::int64_t, std::int64_t) {
    return nullptr;
}

double NSTableViewDelegate::heightOfRow(const NSTableView& table, std::int64_t) const {
    return table.rowHeight();
}

void NSTableViewDelegate::rowOpened(NSTableView&, std::int64_t) {}

void NSTableViewObserver::rowsInserted(const IndexSet&, NSTableView::AnimationOptions) {}
void NSTableViewObserver::rowsRemoved(const IndexSet&, NSTableView::AnimationOptions) {}
void NSTableViewObserver::rowMoved(std::int64_t, std::int64_t) {}

void NSTableViewObserver::rowsMoved(const IndexSet& from, std::int64_t to) {
    std::int64_t fromBefore = 0, fromAfter = 0;
    for (const std::int64_t row : from) {
        if (row < to)
            rowMoved(row - fromBefore++, to - 1);
        else
            rowMoved(row, to + fromAfter++);
    }
}

void NSTableViewObserver::cellsReloaded(const IndexSet&, const IndexSet&) {}
void NSTableViewObserver::rowHeightsDidChange(const IndexSet&) {}
void NSTableViewObserver::columnInserted(std::int64_t) {}
void NSTableViewObserver::columnRemoved(std::int64_t) {}
void NSTableViewObserver::columnDidChange(std::int64_t) {}
void NSTableViewObserver::scrolledTo(std::int64_t) {}

/// Null for a table on the stack, and for one that is just being made.
std::shared_ptr<NSTableView> NSTableView::self() noexcept {
    return std::static_pointer_cast<NSTableView>(weak_from_this().lock());
}

void NSTableView::setDataSource(const std::shared_ptr<NSTableViewDataSource>& source) {
    dataSource_ = source;
    reloadData();
}

void NSTableView::setDelegate(const std::shared_ptr<NSTableViewDelegate>& delegate) {
    delegate_ = delegate;
    reloadData();
}

// Columns

std::shared_ptr<NSTableColumn> NSTableColumn::create(std::string title) {
    return std::make_shared<NSTableColumn>(Key{}, std::move(title));
}

void NSTableColumn::didChange() const {
    if (const auto table = tableView())
        table->columnDidChange(*this);
}

void NSTableView::addTableColumn(std::shared_ptr<NSTableColumn> column) {
    columns_.push_back(column);
    column->tableView_ = self();
    forgetCellViews();
    layOut();
    observers_.tell(&Observer::columnInserted, numberOfColumns() - 1);
}

void NSTableView::removeTableColumn(const std::shared_ptr<NSTableColumn>& column) {
    const auto found = std::find(columns_.begin(), columns_.end(), column);
    if (found == columns_.end())
        return;
    const std::int64_t at = found - columns_.begin();
    const std::shared_ptr<NSTableColumn> removed = *found;
    columns_.erase(found);
    removed->tableView_.reset();
    forgetCellViews();
    layOut();
    observers_.tell(&Observer::columnRemoved, at);
    if (sortOrder_ && sortOrder_->column == removed)
        setSortOrder(std::nullopt);
}

void NSTableView::columnDidChange(const NSTableColumn& column) {
    const auto found = std::find_if(columns_.begin(), columns_.end(),
                                    [&column](const auto& one) { return one.get() == &column; });
    layOut();
    observers_.tell(&Observer::columnDidChange, found - columns_.begin());
}

void NSTableView::setSortOrder(std::optional<SortOrder> order) {
    if (order && std::find(columns_.begin(), columns_.end(), order->column) == columns_.end())
        order.reset();
    if (order == sortOrder_)
        return;
    sortOrder_ = std::move(order);
    observers_.tell(&Observer::sortOrderDidChange);
    if (const auto source = dataSource())
        source->sortOrderDidChange(*this);
}

void NSTableView::setNumberOfColumns(std::int64_t to) {
    while (numberOfColumns() > std::max<std::int64_t>(to, 0))
        removeTableColumn(columns_.back());
    while (numberOfColumns() < to)
        addTableColumn(NSTableColumn::create());
}

void NSTableView::expandFirstColumnWidth() {
    if (columns_.empty())
        return;
    const auto scrollView = enclosingScrollView(*this);
    columns_.front()->setWidth(scrollView ? scrollView->frame().width() : 100);
}

// Rows

std::int64_t NSTableView::sourceRowCount() {
    const auto source = dataSource();
    return source ? source->numberOfRows(*this) : 0;
}

void NSTableView::checkRows(const IndexSet& rows) const {
    if (rows.last().value_or(-1) >= rowCount_)
        fatalError("A row lies outside the table view.");
}

void NSTableView::setRowCount(std::int64_t count) noexcept {
    rowCount_ = count;
    rowTops_.clear(); // whoever is told before the rows are laid out may ask where they are
}

void NSTableView::setRowHeight(double height) {
    rowHeight_ = height > 0 ? height : 0;
    noteHeightOfAllRowsChanged();
}

void NSTableView::beginUpdates() {
    ++updateDepth_;
    observers_.tell(&Observer::updatesDidBegin);
}

void NSTableView::endUpdates() {
    if (updateDepth_ == 0)
        fatalError("A table view ends updates that have not begun.");
    --updateDepth_;
    const std::int64_t expected = updateDepth_ > 0 ? rowCount_ : sourceRowCount();
    if (expected != rowCount_)
        fatalError("After its updates a table view has " + std::to_string(rowCount_) +
                   " rows, but its data source has " + std::to_string(expected) + ".");
    layOut();
    observers_.tell(&Observer::updatesDidEnd);
}

void NSTableView::abandonUpdates(std::int64_t depth) {
    updateDepth_ = depth;
    try {
        reloadData();
    } catch (...) { // what cut the updates short is thrown on
    }
    observers_.tell(&Observer::updatesDidEnd);
}

// The rows are taken by value: they may be the selection, which changes before they are told of.

void NSTableView::insertRows(IndexSet at, AnimationOptions withAnimation) {
    if (at.last().value_or(-1) >= rowCount_ + at.count())
        fatalError("A row lies outside the table view.");
    changeRows(RowChange::inserting(at),
               [&] { observers_.tell(&Observer::rowsInserted, at, withAnimation); });
}

void NSTableView::removeRows(IndexSet at, AnimationOptions withAnimation) {
    checkRows(at);
    changeRows(RowChange::removing(at),
               [&] { observers_.tell(&Observer::rowsRemoved, at, withAnimation); });
}

void NSTableView::moveRow(std::int64_t at, std::int64_t to) {
    checkRows({at, to});
    changeRows(RowChange::moving({at}, to > at ? to + 1 : to),
               [&] { observers_.tell(&Observer::rowMoved, at, to); });
}

void NSTableView::moveRows(IndexSet at, std::int64_t to) {
    if (at.isEmpty())
        return;
    checkRows(at);
    if (to < 0 || to > rowCount_)
        fatalError("A row lies outside the table view.");
    changeRows(RowChange::moving(at, to), [&] { observers_.tell(&Observer::rowsMoved, at, to); });
}

void NSTableView::changeRows(const RowChange& change, const std::function<void()>& tell) {
    IndexSet selection = change.places(selection_);
    CellViews gone, kept;
    while (!cells_.empty()) {
        CellViews::node_type cell = cells_.extract(cells_.begin());
        const std::int64_t now = change.place(cell.key());
        if (now >= 0)
            cell.key() = now;
        (now < 0 ? gone : kept).insert(std::move(cell));
    }
    cells_ = std::move(kept);
    setRowCount(rowCount_ + change.growth());
    const IndexSet before = std::exchange(selection_, std::move(selection));
    layOut();
    takeOut(gone);
    tell();
    if (selection_ != before)
        announceSelection();
}

void NSTableView::takeOut(const CellViews& cells) {
    for (const auto& [row, views] : cells)
        for (const auto& view : views)
            if (view)
                view->removeFromSuperview();
}

void NSTableView::forgetCellViews() { takeOut(std::exchange(cells_, {})); }

void NSTableView::keepCellViews(const IndexSet& ofRows) {
    CellViews gone;
    for (auto cell = cells_.begin(); cell != cells_.end();) {
        const auto next = std::next(cell);
        if (!ofRows.contains(cell->first))
            gone.insert(cells_.extract(cell));
        cell = next;
    }
    takeOut(gone);
}

void NSTableView::reloadData() {
    setRowCount(std::max<std::int64_t>(sourceRowCount(), 0));
    const IndexSet before = std::exchange(selection_, selection_.intersection(allRows()));
    forgetCellViews();
    layOut();
    observers_.tell(&Observer::reloaded);
    if (selection_ != before)
        announceSelection();
}

void NSTableView::reloadData(const RowsAndColumns& cells) {
    const IndexSet& rows = cells.forRowIndexes;
    const IndexSet& columns = cells.columnIndexes;
    CellViews gone;
    for (auto& [row, views] : cells_) {
        if (!rows.contains(row))
            continue;
        for (const std::int64_t column : columns.intersection(allColumns()))
            gone[row].push_back(std::move(views[static_cast<std::size_t>(column)]));
    }
    takeOut(gone);
    observers_.tell(&Observer::cellsReloaded, rows, columns);
}

void NSTableView::reloadFirstColumnData() {
    if (!columns_.empty())
        reloadData(Columns{IndexSet({0})});
}

void NSTableView::reloadLastColumnData() {
    if (!columns_.empty())
        reloadData(Columns{IndexSet({numberOfColumns() - 1})});
}

void NSTableView::reloadFirstAndLastColumnData() {
    if (!columns_.empty())
        reloadData(Columns{IndexSet({0, numberOfColumns() - 1})});
}

void NSTableView::reloadEditedData(const SelectableArrayEdition& edition,
                                   AnimationOptions animation) {
    const auto keptAlive = weak_from_this().lock(); // whoever is told may let it go
    using Edition = SelectableArrayEdition;
    if (const auto* insert = edition.as<Edition::Insert>()) {
        internal::updateRows(*this, [&] {
            insertRows(IndexSet({.loc = insert->at, .len = insert->count}), animation);
        });
    } else if (const auto* replace = edition.as<Edition::Replace>()) {
        reloadData(Rows{IndexSet({replace->at})});
    } else if (const auto* remove = edition.as<Edition::Remove>()) {
        internal::updateRows(*this, [&] { removeRows(remove->at, animation); });
    } else if (const auto* move = edition.as<Edition::Move>()) {
        internal::updateRows(*this, [&] { moveRows(move->from, move->to); });
    } else if (const auto* select = edition.as<Edition::Select>()) {
        selectOnlyRows(select->selection);
    } else if (const auto* reload = edition.as<Edition::Reload>()) {
        reloadData();
        selectOnlyRows(reload->selection);
    }
}

// Selection

void NSTableView::setSelection(IndexSet selection) {
    if (selection == selection_)
        return;
    selection_ = std::move(selection);
    announceSelection();
}

void NSTableView::announceSelection() {
    setNeedsDisplay(true);
    observers_.tell(&Observer::selectionDidChange);
    if (const auto sender = self())
        NSNotificationCenter::defaultCenter()->post(
            NSNotificationName(selectionDidChangeNotification), sender);
}

void NSTableView::selectRowIndexes(const IndexSet& indexes, bool byExtendingSelection) {
    IndexSet existing = indexes.intersection(allRows());
    setSelection(byExtendingSelection ? selection_.union_(existing) : std::move(existing));
}

void NSTableView::mouseDown(const NSEvent& with) {
    using Flags = NSEvent::ModifierFlags;
    const Flags held = with.modifierFlags;
    const std::int64_t clicked = row(convertFromBase(with.locationInWindow).y);
    clickedRow_ = clicked;
    if (clicked < 0)
        return selectOnlyRows({});
    if (held.contains(Flags::control) || held.contains(Flags::command))
        return setSelection(selection_.toggling(clicked));
    const auto above = selection_.integerLessThanOrEqualTo(clicked);
    const auto anchor = above ? above : selection_.integerGreaterThan(clicked);
    if (held.contains(Flags::shift) && anchor)
        selectOnlyRows(IndexSet(IndexSet::Ends{.i1 = *anchor, .i2 = clicked}));
    else
        selectOnlyRow(clicked);
    if (with.clickCount == 2)
        if (const auto opener = delegate())
            opener->rowOpened(*this, clicked);
}

IndexSet NSTableView::clickedRowIndexes() const {
    if (clickedRow_ < 0)
        return {};
    return selection_.contains(clickedRow_) ? selection_ : IndexSet({clickedRow_});
}

} // namespace zorvan
