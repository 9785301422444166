#include <zorvan/interface/NSTableView.h>

#include <zorvan/numbers-geometry/RealNumber.h>
#include <zorvan/platform/appkit/NSAnimationContext.h>
#include <zorvan/platform/dispatch/NSNotificationCenter.h>
#include <zorvan/platform/foundation/fatalError.h>

#include <algorithm>
#include <cmath>

namespace zorvan {

using Range = IndexSet::Range;

std::string NSTableViewDataSource::text(const NSTableView&, std::int64_t, std::int64_t) const {
    return {};
}

std::shared_ptr<NSView> NSTableViewDelegate::view(NSTableView&, std::int64_t, std::int64_t) {
    return nullptr;
}

double NSTableViewDelegate::heightOfRow(const NSTableView& table, std::int64_t) const {
    return table.rowHeight();
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

std::int64_t NSTableView::numberOfColumns() const noexcept {
    return static_cast<std::int64_t>(columns_.size());
}

IndexSet NSTableView::allColumns() const { return IndexSet(Range{0, numberOfColumns()}); }

void NSTableView::addTableColumn(const std::shared_ptr<NSTableColumn>& column) {
    columns_.push_back(column);
    renumberCells([](std::int64_t) { return -1; });
    layOut();
    note("addTableColumn", column->title());
}

void NSTableView::removeTableColumn(const std::shared_ptr<NSTableColumn>& column) {
    const std::shared_ptr<NSTableColumn> keptAlive = column;
    std::erase(columns_, keptAlive);
    renumberCells([](std::int64_t) { return -1; });
    layOut();
    note("removeTableColumn", keptAlive->title());
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
    layOut();
}

// Rows

IndexSet NSTableView::allRows() const { return IndexSet(Range{0, rowCount_}); }

std::int64_t NSTableView::sourceRowCount() {
    const auto source = dataSource();
    return source ? source->numberOfRows(*this) : 0;
}

void NSTableView::checkRows(const IndexSet& rows) const {
    if (rows.last().value_or(-1) >= rowCount_)
        fatalError("A row lies outside the table view.");
}

void NSTableView::setRowHeight(double height) {
    rowHeight_ = height > 0 ? height : 0;
    layOut();
}

void NSTableView::beginUpdates() {
    ++updateDepth_;
    note("beginUpdates");
}

void NSTableView::endUpdates() {
    if (updateDepth_ == 0)
        fatalError("A table view ends updates that have not begun.");
    --updateDepth_;
    note("endUpdates");
    if (updateDepth_ > 0)
        return;
    const std::int64_t expected = sourceRowCount();
    if (expected != rowCount_)
        fatalError("After its updates a table view has " + std::to_string(rowCount_) +
                   " rows, but its data source has " + std::to_string(expected) + ".");
}

void NSTableView::insertRows(const IndexSet& at, AnimationOptions withAnimation) {
    if (at.last().value_or(-1) >= rowCount_ + at.count())
        fatalError("A row lies outside the table view.");
    takeInRows(at);
    note("insertRows", at.description() + ", " + std::to_string(withAnimation.rawValue));
}

void NSTableView::removeRows(const IndexSet& at, AnimationOptions withAnimation) {
    checkRows(at);
    dropRows(at);
    note("removeRows", at.description() + ", " + std::to_string(withAnimation.rawValue));
}

void NSTableView::takeInRows(const IndexSet& at) {
    rowCount_ += at.count();
    // Each new range opens its gap where it will stand, so they are opened from the top.
    IndexSet selection = selection_;
    for (const Range range : at.ranges())
        selection.shift(range.lower, range.count());
    renumberCells([&at](std::int64_t row) {
        for (const Range range : at.ranges())
            row += range.lower <= row ? range.count() : 0;
        return row;
    });
    layOut();
    setSelection(std::move(selection));
}

void NSTableView::dropRows(const IndexSet& at) {
    rowCount_ -= at.count();
    renumberCells([&at](std::int64_t row) {
        return at.contains(row) ? -1 : row - at.count(Range{0, row});
    });
    layOut();
    setSelection(selection_.afterRemoving(at));
}

void NSTableView::moveRow(std::int64_t at, std::int64_t to) {
    checkRows({at, to});
    const std::int64_t before = to > at ? to + 1 : to;
    renumberCells([at, before](std::int64_t row) {
        return *IndexSet({row}).afterMoving({at}, before).first();
    });
    layOut();
    note("moveRow", std::to_string(at) + ", " + std::to_string(to));
    setSelection(selection_.afterMoving({at}, before));
}

void NSTableView::moveRows(const IndexSet& at, std::int64_t to) {
    std::int64_t fromBefore = 0, fromAfter = 0;
    for (const std::int64_t row : at) {
        if (row < to)
            moveRow(row - fromBefore++, to - 1);
        else
            moveRow(row, to + fromAfter++);
    }
}

template <class Place>
void NSTableView::renumberCells(Place place) {
    std::map<std::int64_t, std::vector<std::shared_ptr<NSView>>> renumbered;
    for (auto& [row, views] : cells_) {
        const std::int64_t now = place(row);
        if (now >= 0) {
            renumbered.emplace(now, std::move(views));
            continue;
        }
        for (const auto& view : views)
            if (view)
                view->removeFromSuperview();
    }
    cells_ = std::move(renumbered);
}

void NSTableView::reloadData() {
    rowCount_ = std::max<std::int64_t>(sourceRowCount(), 0);
    renumberCells([](std::int64_t) { return -1; });
    layOut();
    note("reloadData");
    setSelection(selection_.intersection(allRows()));
}

void NSTableView::reloadData(const RowsAndColumns& cells) {
    const IndexSet& rows = cells.forRowIndexes;
    const IndexSet& columns = cells.columnIndexes;
    for (auto& [row, views] : cells_) {
        if (!rows.contains(row))
            continue;
        for (const std::int64_t column : columns.intersection(allColumns())) {
            auto& view = views[static_cast<std::size_t>(column)];
            if (view)
                view->removeFromSuperview();
            view.reset();
        }
    }
    note("reloadData", rows.description() + ", " + columns.description());
}

void NSTableView::reloadData(const Rows& rows) {
    reloadData(RowsAndColumns{rows.forRowIndexes, allColumns()});
}

void NSTableView::reloadData(const Columns& columns) {
    reloadData(RowsAndColumns{allRows(), columns.forColumnsIndexes});
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
    using Edition = SelectableArrayEdition;
    if (const auto* insert = edition.as<Edition::Insert>()) {
        beginUpdates();
        insertRows(IndexSet({.loc = insert->at, .len = insert->count}), animation);
        endUpdates();
    } else if (const auto* replace = edition.as<Edition::Replace>()) {
        reloadData(Rows{IndexSet({replace->at})});
    } else if (const auto* remove = edition.as<Edition::Remove>()) {
        beginUpdates();
        removeRows(remove->at, animation);
        endUpdates();
    } else if (const auto* move = edition.as<Edition::Move>()) {
        beginUpdates();
        moveRows(move->from, move->to);
        endUpdates();
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
    // A table on the stack, or one still being made, has no one to be announced to.
    if (const std::shared_ptr<NSView> self = weak_from_this().lock())
        NSNotificationCenter::defaultCenter()->post(
            NSNotificationName(selectionDidChangeNotification), self);
}

void NSTableView::selectRowIndexes(const IndexSet& indexes, bool byExtendingSelection) {
    const IndexSet existing = indexes.intersection(allRows());
    note("selectRowIndexes",
         indexes.description() + (byExtendingSelection ? ", extending" : ", not extending"));
    setSelection(byExtendingSelection ? selection_.union_(existing) : existing);
}

IndexSet NSTableView::clickedRowIndexes() const {
    if (clickedRow_ < 0)
        return {};
    return selection_.contains(clickedRow_) ? selection_ : IndexSet({clickedRow_});
}

// Geometry

void NSTableView::layOut() {
    rowTops_.clear();
    double width = 0;
    for (const auto& column : columns_)
        width += column->width();
    if (std::dynamic_pointer_cast<NSClipView>(superview()))
        setFrame({frame().origin, CGSize(width, top(rowCount_))});
}

/// Empty when every row has the table's height.
const std::vector<double>& NSTableView::rowTops() const {
    const auto giver = delegate();
    if (!rowTops_.empty() || !giver)
        return rowTops_;
    rowTops_.reserve(static_cast<std::size_t>(rowCount_) + 1);
    double top = 0;
    for (std::int64_t row = 0; row < rowCount_; ++row) {
        rowTops_.push_back(top);
        const double height = giver->heightOfRow(*this, row);
        top += height > 0 ? height : 0;
    }
    rowTops_.push_back(top);
    return rowTops_;
}

double NSTableView::top(std::int64_t row) const {
    const std::vector<double>& tops = rowTops();
    return tops.empty() ? static_cast<double>(row) * rowHeight_
                        : tops[static_cast<std::size_t>(row)];
}

CGRect NSTableView::frameOfCell(std::int64_t atColumn, std::int64_t row) const {
    if (atColumn < 0 || atColumn >= numberOfColumns() || row < 0 || row >= rowCount_)
        return {};
    double x = 0;
    for (std::int64_t column = 0; column < atColumn; ++column)
        x += columns_[static_cast<std::size_t>(column)]->width();
    return {x, top(row), columns_[static_cast<std::size_t>(atColumn)]->width(),
            top(row + 1) - top(row)};
}

std::int64_t NSTableView::row(double atY) const {
    if (!(atY >= 0 && atY < top(rowCount_)))
        return -1;
    const std::vector<double>& tops = rowTops();
    if (tops.empty())
        return floorInt(atY / rowHeight_);
    return std::upper_bound(tops.begin(), tops.end(), atY) - tops.begin() - 1;
}

void NSTableView::noteHeightOfRows(const IndexSet& withIndexesChanged) {
    layOut();
    note("noteHeightOfRows", withIndexesChanged.description());
}

void NSTableView::noteHeightOfAllRowsChanged() { noteHeightOfRows(allRows()); }

void NSTableView::resizeRowHeights() {
    NSAnimationContext::beginGrouping();
    NSAnimationContext::currentContext().setAllowsImplicitAnimation(false);
    NSAnimationContext::currentContext().setDuration(0);
    noteHeightOfAllRowsChanged();
    NSAnimationContext::endGrouping();
}

void NSTableView::scrollRowToVisible(std::int64_t row) {
    note("scrollRowToVisible", std::to_string(row));
    if (row < 0 || row >= rowCount_)
        return;
    // No wider than a line, so that it does not scroll sideways.
    scrollToVisible(*this, {visibleRect(*this).x(), top(row), 0, top(row + 1) - top(row)});
}

void NSTableView::scrollToFirstSelectedRow() {
    if (const auto row = selection_.first())
        scrollRowToVisible(*row);
}

void NSTableView::scrollToLastSelectedRow() {
    if (const auto row = selection_.last())
        scrollRowToVisible(*row);
}

/// Puts the row at the top, or lower by that share of the space left in the scroll view.
void NSTableView::scroll(std::int64_t row, double share, bool animated) {
    const auto scrollView = enclosingScrollView(*this);
    if (!scrollView)
        return;
    const CGRect cell = frameOfCell(0, row);
    const CGPoint origin(0, cell.minY() + (cell.height() - scrollView->frame().height()) * share);
    if (animated)
        scrollView->contentView()->animator().setBoundsOrigin(origin);
    else
        scrollView->contentView()->setBoundsOrigin(origin);
}

void NSTableView::centreRow(std::int64_t row, bool animated) { scroll(row, 0.5, animated); }

void NSTableView::scrollTopRow(std::int64_t row, bool animated) { scroll(row, 0, animated); }

// Cells

std::shared_ptr<NSView> NSTableView::view(std::int64_t atColumn, std::int64_t row,
                                          bool makeIfNecessary) {
    if (atColumn < 0 || atColumn >= numberOfColumns() || row < 0 || row >= rowCount_)
        return nullptr;
    const auto column = static_cast<std::size_t>(atColumn);
    const auto made = cells_.find(row);
    if (made != cells_.end() && made->second[column])
        return made->second[column];
    const auto maker = delegate();
    if (!makeIfNecessary || !maker)
        return nullptr;
    const std::shared_ptr<NSView> view = maker->view(*this, atColumn, row);
    if (!view)
        return nullptr;
    view->setFrame(frameOfCell(atColumn, row));
    addSubview(view);
    std::vector<std::shared_ptr<NSView>>& views = cells_[row];
    views.resize(columns_.size());
    views[column] = view;
    return view;
}

std::string NSTableView::cellText(std::int64_t column, std::int64_t row) const {
    const auto source = dataSource();
    return source ? source->text(*this, column, row) : std::string();
}

void NSTableView::draw(Canvas& canvas) const {
    const CGRect& clip = canvas.clip();
    const std::int64_t first = row(std::max(clip.minY(), 0.0));
    for (std::int64_t row = first; row >= 0 && row < rowCount_ && top(row) < clip.maxY(); ++row)
        drawRow(canvas, row);
}

void NSTableView::drawRow(Canvas& canvas, std::int64_t row) const {
    constexpr Canvas::Colour plain{255, 255, 255}, striped{244, 245, 245}, selected{0, 99, 225};
    const double height = top(row + 1) - top(row);
    const CGRect wholeRow(canvas.clip().minX(), top(row), canvas.clip().width(), height);
    const bool isSelected = selection_.contains(row);
    canvas.fill(wholeRow, isSelected ? selected : row % 2 ? striped : plain);
    for (std::int64_t column = 0; column < numberOfColumns(); ++column) {
        const CGRect cell = frameOfCell(column, row).shrunkBy({.dx = 4, .dy = 0});
        const Canvas::Colour ink =
            isSelected ? Canvas::Colour{255, 255, 255} : Canvas::Colour{36, 36, 36};
        canvas.drawText(cellText(column, row), cell, ink);
    }
}

} // namespace zorvan
