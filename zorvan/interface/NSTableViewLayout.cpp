#include <zorvan/interface/NSTableView.h>

#include <zorvan/interface/NSTableViewObserver.h>
#include <zorvan/interface/internal/AnimationGrouping.h>
#include <zorvan/numbers-geometry/RealNumber.h>

#include <algorithm>
#include <utility>

namespace zorvan {

// Geometry

void NSTableView::layOut() {
    rowTops_.clear();
    setNeedsDisplay(true);
    // In the middle of updates the data source may already have other rows.
    if (updateDepth_ > 0)
        return;
    fillClipView();
    placeCellViews();
}

void NSTableView::fillClipView() {
    if (!std::dynamic_pointer_cast<NSClipView>(superview()))
        return;
    double width = 0;
    for (const auto& column : columns_)
        width += column->width();
    setFrame({frame().origin, CGSize(width, top(rowCount_))});
}

void NSTableView::viewDidMoveToSuperview() {
    if (updateDepth_ == 0)
        fillClipView();
}

/// Whoever is told of a frame may change the table, so that a copy is walked.
void NSTableView::placeCellViews() {
    for (const auto& [row, views] : CellViews(cells_)) {
        std::int64_t column = 0;
        for (const auto& placed : views) {
            if (placed && view(column, row, false) == placed)
                placed->setFrame(frameOfCell(column, row));
            ++column;
        }
    }
}

/// Empty when every row has the table's height.
const std::vector<double>& NSTableView::rowTops() const {
    constexpr std::int64_t mostRows = 1 << 24;
    const auto giver = delegate();
    if (!rowTops_.empty() || !giver || rowCount_ > mostRows)
        return rowTops_;
    std::vector<double> tops; // whole, or none when the delegate throws
    tops.reserve(static_cast<std::size_t>(rowCount_) + 1);
    double top = 0;
    for (std::int64_t row = 0; row < rowCount_; ++row) {
        tops.push_back(top);
        const double height = giver->heightOfRow(*this, row);
        top += height > 0 ? height : 0;
    }
    tops.push_back(top);
    return rowTops_ = std::move(tops);
}

double NSTableView::top(std::int64_t row) const {
    const std::vector<double>& tops = rowTops();
    return tops.empty() ? static_cast<double>(row) * rowHeight_
                        : tops[static_cast<std::size_t>(row)];
}

double NSTableView::heightOfRow(std::int64_t row) const {
    return row >= 0 && row < rowCount_ ? top(row + 1) - top(row) : 0;
}

CGRect NSTableView::frameOfCell(std::int64_t atColumn, std::int64_t row) const {
    if (atColumn < 0 || atColumn >= numberOfColumns() || row < 0 || row >= rowCount_)
        return {};
    double x = 0;
    for (std::int64_t column = 0; column < atColumn; ++column)
        x += columns_[static_cast<std::size_t>(column)]->width();
    return {x, top(row), columns_[static_cast<std::size_t>(atColumn)]->width(), heightOfRow(row)};
}

std::int64_t NSTableView::row(double atY) const {
    if (!(atY >= 0 && atY < top(rowCount_)))
        return -1;
    const std::vector<double>& tops = rowTops();
    if (tops.empty())
        return floorInt(atY / rowHeight_);
    return std::upper_bound(tops.begin(), tops.end(), atY) - tops.begin() - 1;
}

void NSTableView::noteHeightOfRows(IndexSet withIndexesChanged) {
    layOut();
    observers_.tell(&NSTableViewObserver::rowHeightsDidChange, withIndexesChanged);
}

void NSTableView::resizeRowHeights() {
    const internal::AnimationGrouping grouping;
    NSAnimationContext::currentContext().setAllowsImplicitAnimation(false);
    NSAnimationContext::currentContext().setDuration(0);
    noteHeightOfAllRowsChanged();
}

void NSTableView::scrollRowToVisible(std::int64_t row) {
    if (row < 0 || row >= rowCount_)
        return;
    // No wider than a line, so that it does not scroll sideways.
    scrollToVisible(*this, {visibleRect(*this).x(), top(row), 0, heightOfRow(row)});
    observers_.tell(&NSTableViewObserver::scrolledTo, row);
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
    if (view)
        view->setFrame(frameOfCell(atColumn, row));
    // The delegate, or who is told of the frame, may have changed the table meanwhile.
    if (!view || atColumn >= numberOfColumns() || row >= rowCount_)
        return nullptr;
    std::vector<std::shared_ptr<NSView>>& views = cells_[row];
    views.resize(columns_.size());
    views[column] = view;
    addSubview(view);
    return view;
}

std::string NSTableView::cellText(std::int64_t column, std::int64_t row) const {
    const auto source = dataSource();
    return source ? source->text(*this, column, row) : std::string();
}

std::string NSTableView::text(std::int64_t column, std::int64_t row) const {
    const bool exists = column >= 0 && column < numberOfColumns() && row >= 0 && row < rowCount_;
    return exists ? cellText(column, row) : std::string();
}

void NSTableView::draw(Canvas& canvas) const {
    const CGRect& clip = canvas.clip();
    const std::int64_t first = row(std::max(clip.minY(), 0.0));
    for (std::int64_t row = first; row >= 0 && row < rowCount_ && top(row) < clip.maxY(); ++row)
        drawRow(canvas, row);
}

void NSTableView::drawRow(Canvas& canvas, std::int64_t row) const {
    constexpr Canvas::Colour plain{255, 255, 255}, striped{244, 245, 245}, selected{0, 99, 225};
    const CGRect wholeRow(canvas.clip().minX(), top(row), canvas.clip().width(), heightOfRow(row));
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
