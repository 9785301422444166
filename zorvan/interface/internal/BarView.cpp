#include <zorvan/interface/internal/BarView.h>

#include <zorvan/interface/NSApplication.h>

#include <algorithm>

namespace zorvan {

void BarView::hold(const Views& views) {
    constexpr double touchBarHeight = 30;
    const Views before = subviews();
    for (const auto& view : before)
        if (std::find(views.begin(), views.end(), view) == views.end())
            view->removeFromSuperview();
    double width = 0, height = 0;
    for (auto place = views.begin(); place != views.end(); ++place) {
        const auto& view = *place;
        if (std::find(views.begin(), place, view) != place)
            continue; // an item that stands there twice
        if (view->superview().get() != this)
            addSubview(view);
        CGSize wanted = view->fittingSize();
        if (kind_ == Kind::touchBar)
            wanted.height = touchBarHeight;
        view->setFrame({CGPoint(width, 0), wanted});
        width += wanted.width;
        height = std::max(height, wanted.height);
    }
    setFrame({frame().origin, CGSize(width, height)});
}

bool isOnDarkGround(const NSView& view) {
    if (NSApplication::shared().isDark())
        return true;
    for (auto holder = view.superview(); holder; holder = holder->superview())
        if (const auto* const bar = dynamic_cast<const BarView*>(holder.get()))
            return bar->kind() == BarView::Kind::touchBar;
    return false;
}

} // namespace zorvan
