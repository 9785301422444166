#include <zorvan/interface/internal/SegmentsView.h>

#include <zorvan/interface/internal/drawing.h>
#include <zorvan/interface/internal/symbolDrawing.h>

#include <algorithm>

namespace zorvan {

namespace {

constexpr double height = 28, padding = 11, radius = 7;

double widthOf(const NSToolbarItem& item) {
    const double content = item.image() ? shownSize(*item.image()).width
                                        : labelSize(item.title(), LabelStyle::plain).width;
    return content + 2 * padding;
}

} // namespace

std::shared_ptr<SegmentsView>
SegmentsView::create(const std::shared_ptr<NSToolbarItemGroup>& group) {
    auto view = std::make_shared<SegmentsView>(Key{}, CGRect());
    view->group_ = group;
    return view;
}

std::vector<SegmentsView::Segment> SegmentsView::segments() const {
    std::vector<Segment> segments;
    const auto group = group_.lock();
    if (!group)
        return segments;
    using Representation = NSToolbarItemGroup::ControlRepresentation;
    const bool isCollapsed = group->controlRepresentation() == Representation::collapsed;
    const auto& items = group->subitems();
    double left = 0;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const auto index = static_cast<std::int64_t>(i);
        if (isCollapsed && index != std::max<std::int64_t>(group->selectedIndex(), 0))
            continue;
        segments.push_back({index, left, widthOf(*items[i])});
        left += segments.back().width;
    }
    return segments;
}

CGSize SegmentsView::intrinsicContentSize() const {
    const auto all = segments();
    return {all.empty() ? 0 : all.back().left + all.back().width, height};
}

void SegmentsView::draw(Canvas& canvas) const {
    const auto group = group_.lock();
    if (!group)
        return;
    const Drawing drawing(canvas);
    fillRounded(bounds(), radius, Palette::grey(0, 0.055));
    for (const Segment& segment : segments())
        drawSegment(*group, segment);
    outlineRounded(bounds(), radius, Palette::grey(0, 0.09));
}

void SegmentsView::drawSegment(const NSToolbarItemGroup& group, const Segment& segment) const {
    const auto& item = group.subitems()[static_cast<std::size_t>(segment.index)];
    const CGRect frame(bounds().minX() + segment.left, bounds().minY(), segment.width,
                       bounds().height());
    if (group.isSelected(segment.index)) {
        const CGRect pill = frame.shrunkBy({.dx = 2, .dy = 2});
        fillRounded(pill, radius - 2, Palette::field);
        outlineRounded(pill, radius - 2, Palette::outline);
    } else if (segment.index > 0 && !group.isSelected(segment.index - 1)) {
        fillRect({frame.minX(), frame.minY() + 7, 1, frame.height() - 14}, Palette::separator);
    }
    const bool isEnabled = group.isEnabled() && item->isEnabled();
    const NSColor ink = isEnabled ? Palette::label : Palette::faintLabel;
    if (item->image())
        drawCentred(*item->image(), frame, ink, isEnabled);
    else
        drawLabel(item->title(), frame, LabelStyle::plain, ink);
}

void SegmentsView::mouseDown(const NSEvent& with) {
    const auto group = group_.lock();
    if (!group || !group->isEnabled())
        return;
    const double x = convertFromBase(with.locationInWindow).x - bounds().minX();
    for (const Segment& segment : segments())
        if (x >= segment.left && x < segment.left + segment.width)
            return group->press(segment.index);
}

} // namespace zorvan
