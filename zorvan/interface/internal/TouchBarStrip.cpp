#include <zorvan/interface/internal/TouchBarStrip.h>

#include <zorvan/interface/NSApplication.h>
#include <zorvan/interface/internal/drawing.h>
#include <zorvan/interface/internal/spreadItems.h>

#include <algorithm>
#include <vector>

namespace zorvan {

namespace {

constexpr double margin = 12, gap = 8, controlHeight = 30;

double spaceWidth(const NSTouchBarItemIdentifier& identifier) {
    if (identifier == NSTouchBarItemIdentifierFixedSpaceLarge)
        return 32;
    return identifier == NSTouchBarItemIdentifierFixedSpaceSmall ? 8 : 0;
}

} // namespace

std::shared_ptr<TouchBarStrip> TouchBarStrip::create(const std::shared_ptr<NSTouchBar>& touchBar) {
    auto strip = std::make_shared<TouchBarStrip>(Key{}, CGRect());
    strip->touchBar_ = touchBar;
    return strip;
}

void TouchBarStrip::layout() {
    const auto touchBar = touchBar_.lock();
    if (!touchBar)
        return;
    const auto items = touchBar->items();
    std::vector<std::shared_ptr<NSView>> views;
    std::vector<BarLength> bar;
    for (const auto& item : items) {
        const auto view = item->view();
        views.push_back(view);
        const bool isFlexible = item->identifier() == NSTouchBarItemIdentifierFlexibleSpace;
        bar.push_back({.width = view ? view->fittingSize().width : spaceWidth(item->identifier()),
                       .isFlexible = isFlexible && !view});
    }
    const auto shown = subviews();
    for (const auto& view : shown)
        if (std::find(views.begin(), views.end(), view) == views.end())
            view->removeFromSuperview();
    const auto places = spreadItems(bar, bounds().width(), margin, gap);
    for (std::size_t i = 0; i < views.size(); ++i) {
        if (!views[i])
            continue;
        if (views[i]->superview().get() != this)
            addSubview(views[i]);
        views[i]->setFrame(
            {places[i].left, (height - controlHeight) / 2, places[i].width, controlHeight});
    }
}

void TouchBarStrip::draw(Canvas& canvas) const {
    const Drawing drawing(canvas);
    fillRect(bounds(), Palette::touchBar);
}

bool isOnDarkGround(const NSView& view) {
    if (NSApplication::shared().isDark())
        return true;
    for (auto holder = view.superview(); holder; holder = holder->superview())
        if (std::dynamic_pointer_cast<TouchBarStrip>(holder))
            return true;
    return false;
}

} // namespace zorvan
