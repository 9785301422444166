#include <zorvan/interface/NSSplitView.h>

#include <zorvan/interface/internal/drawing.h>
#include <zorvan/media/CGRect.h>
#include <zorvan/media/NSGraphicsContext.h>

#include <algorithm>
#include <cmath>

namespace zorvan {

std::shared_ptr<NSSplitView> NSSplitView::create(const CGRect& frame) {
    return std::make_shared<NSSplitView>(Key{}, frame);
}

void NSSplitView::setVertical(bool vertical) {
    isVertical_ = vertical;
    setNeedsLayout(true);
    setNeedsDisplay(true);
}

std::int64_t NSSplitView::numberOfDividers() const noexcept {
    return std::max<std::int64_t>(static_cast<std::int64_t>(subviews().size()) - 1, 0);
}

double NSSplitView::length() const { return isVertical_ ? bounds().width() : bounds().height(); }

/// New dividers part the room of the last subview evenly; those of subviews that have gone are
/// dropped.
void NSSplitView::bringUpToDate() {
    const auto count = static_cast<std::size_t>(numberOfDividers());
    positions_.resize(std::min(positions_.size(), count));
    while (positions_.size() < count) {
        const double start = positions_.empty() ? 0 : positions_.back() + dividerThickness();
        const auto parts = static_cast<double>(count - positions_.size() + 1);
        positions_.push_back(start + std::max(length() - start, 0.0) / parts);
    }
}

std::optional<double> NSSplitView::position(std::int64_t ofDividerAt) const {
    if (ofDividerAt < 0 || ofDividerAt >= static_cast<std::int64_t>(positions_.size()))
        return std::nullopt;
    return places()[static_cast<std::size_t>(ofDividerAt)];
}

/// That of one that has been collapsed is nothing.
double NSSplitView::leastLength(std::size_t ofSubviewAt) const {
    const double start = ofSubviewAt > 0 ? positions_[ofSubviewAt - 1] + dividerThickness() : 0;
    const double end = ofSubviewAt < positions_.size() ? positions_[ofSubviewAt] : length();
    const Limits own = limits(static_cast<std::int64_t>(ofSubviewAt));
    return own.isCollapsible && end <= start ? 0 : own.minimum;
}

/// Where the dividers are, in the room that there is.
std::vector<double> NSSplitView::places() const {
    std::vector<double> places = positions_;
    double end = length();
    for (std::size_t i = places.size(); i-- > 0; end = places[i])
        places[i] = std::min(places[i], end - leastLength(i + 1) - dividerThickness());
    double start = 0;
    for (std::size_t i = 0; i < places.size(); ++i) {
        places[i] = std::max(places[i], std::min(positions_[i], start + leastLength(i)));
        start = places[i] + dividerThickness();
    }
    return places;
}

void NSSplitView::setPosition(double position, std::int64_t ofDividerAt) {
    bringUpToDate();
    if (!this->position(ofDividerAt) || !std::isfinite(position))
        return;
    const double least =
        this->position(ofDividerAt - 1).value_or(-dividerThickness()) + dividerThickness();
    const double most = this->position(ofDividerAt + 1).value_or(length()) - dividerThickness();
    positions_[static_cast<std::size_t>(ofDividerAt)] = held(position, ofDividerAt, least, most);
    setNeedsLayout(true);
    setNeedsDisplay(true);
}

double NSSplitView::held(double position, std::int64_t divider, double least, double most) const {
    const Limits before = limits(divider), after = limits(divider + 1);
    if (before.isCollapsible && position < least + before.minimum / 2)
        return least;
    if (after.isCollapsible && position > most - after.minimum / 2)
        return std::max(least, most);
    const double upper = std::min(position, most - after.minimum);
    return std::max(least, std::max(least + before.minimum, upper));
}

NSSplitView::Limits NSSplitView::limits(std::int64_t subview) const {
    const bool isSet = subview >= 0 && subview < static_cast<std::int64_t>(limits_.size());
    return isSet ? limits_[static_cast<std::size_t>(subview)] : Limits();
}

void NSSplitView::setLimits(Limits limits, std::int64_t subview) {
    if (subview < 0 || subview >= static_cast<std::int64_t>(subviews().size()))
        return;
    limits_.resize(std::max(limits_.size(), static_cast<std::size_t>(subview) + 1));
    limits_[static_cast<std::size_t>(subview)] = limits;
    setNeedsDisplay(true);
}

double NSSplitView::minimumLength(std::int64_t ofSubviewAt) const {
    return limits(ofSubviewAt).minimum;
}

void NSSplitView::setMinimumLength(double length, std::int64_t ofSubviewAt) {
    const double least = std::isfinite(length) ? std::max(length, 0.0) : 0;
    setLimits({least, isCollapsible(ofSubviewAt)}, ofSubviewAt);
}

bool NSSplitView::isCollapsible(std::int64_t subviewAt) const {
    return limits(subviewAt).isCollapsible;
}

void NSSplitView::setCollapsible(bool collapsible, std::int64_t subviewAt) {
    setLimits({minimumLength(subviewAt), collapsible}, subviewAt);
}

/// All across, from there along the length.
CGRect NSSplitView::stretch(double start, double extent) const {
    const CGRect all = bounds();
    return isVertical_ ? CGRect(all.minX() + start, all.minY(), extent, all.height())
                       : CGRect(all.minX(), all.maxY() - start - extent, all.width(), extent);
}

void NSSplitView::layout() {
    bringUpToDate();
    double start = 0;
    const auto views = subviews();
    const std::vector<double> ends = places();
    for (std::size_t i = 0; i < views.size(); ++i) {
        const double end = i < ends.size() ? std::min(ends[i], length()) : length();
        views[i]->setFrame(stretch(start, std::max(end - start, 0.0)));
        start = end + dividerThickness();
    }
}

double NSSplitView::along(CGPoint point) const {
    return isVertical_ ? point.x - bounds().minX() : bounds().maxY() - point.y;
}

std::optional<std::int64_t> NSSplitView::dividerNear(CGPoint point) const {
    constexpr double reach = 3;
    const std::vector<double> starts = places();
    for (std::size_t i = 0; i < starts.size(); ++i)
        if (std::abs(along(point) - starts[i] - dividerThickness() / 2) <= reach)
            return static_cast<std::int64_t>(i);
    return std::nullopt;
}

std::shared_ptr<NSView> NSSplitView::hitTest(CGPoint point) {
    const auto hit = NSView::hitTest(point);
    const CGPoint inside(bounds().minX() + point.x - frame().minX(),
                         bounds().minY() + point.y - frame().minY());
    return hit && dividerNear(inside) ? shared_from_this() : hit;
}

void NSSplitView::mouseDown(const NSEvent& with) {
    held_ = dividerNear(convertFromBase(with.locationInWindow));
    if (!held_)
        NSView::mouseDown(with);
}

void NSSplitView::mouseDragged(const NSEvent& with) {
    if (held_)
        setPosition(along(convertFromBase(with.locationInWindow)), *held_);
    else
        NSView::mouseDragged(with);
}

void NSSplitView::mouseUp(const NSEvent& with) {
    if (!std::exchange(held_, std::nullopt))
        NSView::mouseUp(with);
}

void NSSplitView::draw(Canvas& canvas) const {
    NSGraphicsContext::use(NSGraphicsContext::create(canvas), [this] {
        for (const double position : places())
            fill(stretch(position, dividerThickness()), Palette::separator);
    });
}

} // namespace zorvan
