#include <zorvan/interface/internal/ToolbarStrip.h>

#include <zorvan/interface/NSTrackingSeparatorToolbarItem.h>
#include <zorvan/interface/internal/drawing.h>
#include <zorvan/interface/internal/spreadItems.h>

#include <algorithm>

namespace zorvan {

namespace {

constexpr double margin = 12, gap = 8, spaceWidth = 24, labelHeight = 18, barHeight = 46;

bool hasLabels(const NSToolbar& toolbar) {
    return toolbar.displayMode() == NSToolbar::DisplayMode::iconAndLabel ||
           toolbar.displayMode() == NSToolbar::DisplayMode::labelOnly;
}

bool hasIcons(const NSToolbar& toolbar) {
    return toolbar.displayMode() != NSToolbar::DisplayMode::labelOnly;
}

BarLength barLength(NSToolbarItem& item, const NSToolbar& toolbar) {
    if (item.itemIdentifier() == NSToolbarFlexibleSpaceItemIdentifier)
        return {.isFlexible = true};
    if (item.itemIdentifier() == NSToolbarSpaceItemIdentifier)
        return {.width = spaceWidth};
    BarLength bar;
    if (const auto* separator = dynamic_cast<NSTrackingSeparatorToolbarItem*>(&item))
        bar.wantedLeft = separator->dividerPosition().value_or(-1);
    const auto view = item.shownView();
    bar.width = view && hasIcons(toolbar) ? view->fittingSize().width : 0;
    if (hasLabels(toolbar))
        bar.width = std::max(bar.width, labelSize(item.label(), LabelStyle::small).width);
    return bar;
}

} // namespace

double ToolbarStrip::height(const NSToolbar& toolbar) {
    return hasLabels(toolbar) ? barHeight + labelHeight : barHeight;
}

std::shared_ptr<ToolbarStrip> ToolbarStrip::create(const std::shared_ptr<NSToolbar>& toolbar) {
    auto strip = std::make_shared<ToolbarStrip>(Key{}, CGRect());
    strip->toolbar_ = toolbar;
    return strip;
}

void ToolbarStrip::layout() {
    const auto toolbar = toolbar_.lock();
    if (!toolbar)
        return;
    auto items = toolbar->items();
    std::stable_partition(items.begin(), items.end(),
                          [](const auto& item) { return item->isNavigational(); });
    showItems(items);
    std::vector<BarLength> bar;
    for (const auto& item : items)
        bar.push_back(barLength(*item, *toolbar));
    const auto places = spreadItems(bar, bounds().width(), margin, gap);
    places_.clear();
    for (std::size_t i = 0; i < items.size(); ++i) {
        const auto [left, width] = places[i];
        // An item that another bar has taken, or whose view stands elsewhere, is not shown.
        const auto view = items[i]->shownView();
        const bool isSeparator = bar[i].wantedLeft >= 0;
        const bool fits = left + width <= bounds().width() - (isSeparator ? 0 : margin) + 0.5;
        if (fits)
            places_.push_back({items[i], left, width});
        if (!view || view->superview().get() != this)
            continue;
        const double tall =
            isSeparator ? height(*toolbar) : std::min(view->fittingSize().height, barHeight);
        const double middle = bounds().height() - (isSeparator ? tall : barHeight) / 2;
        const double viewWidth = isSeparator ? width : view->fittingSize().width;
        view->setFrame({left + (width - viewWidth) / 2, middle - tall / 2, viewWidth, tall});
        if (fits && hasIcons(*toolbar))
            continue;
        // Out of sight without being hidden, which is the application's to decide.
        view->setFrame({CGPoint(left, -barHeight - tall), view->frame().size});
    }
}

/// Takes in the views of the items, and lets go of others.
void ToolbarStrip::showItems(const std::vector<std::shared_ptr<NSToolbarItem>>& items) {
    std::vector<std::shared_ptr<NSView>> wanted;
    for (const auto& item : items)
        if (auto view = item->shownView())
            wanted.push_back(std::move(view));
    const auto isWanted = [&wanted](const std::shared_ptr<NSView>& view) {
        return std::find(wanted.begin(), wanted.end(), view) != wanted.end();
    };
    const auto shown = subviews();
    for (const auto& view : shown)
        if (!isWanted(view))
            view->removeFromSuperview();
    for (const auto& view : wanted)
        if (view->superview().get() != this)
            addSubview(view);
}

void ToolbarStrip::draw(Canvas& canvas) const {
    const auto toolbar = toolbar_.lock();
    if (!toolbar)
        return;
    const Drawing drawing(canvas);
    fillRect(bounds(), Palette::bar);
    if (toolbar->showsBaselineSeparator())
        fillRect({bounds().minX(), bounds().minY(), bounds().width(), 1}, Palette::separator);
    if (!hasLabels(*toolbar))
        return;
    for (const Place& place : places_)
        drawLabel(place.item->label(), {place.left, 4, place.width, labelHeight}, LabelStyle::small,
                  place.item->isEnabled() ? Palette::label : Palette::faintLabel);
}

} // namespace zorvan
