#include <zorvan/interface/internal/ItemButton.h>

#include <zorvan/interface/internal/drawing.h>

namespace zorvan {

namespace {

constexpr double indicatorWidth = 12;

} // namespace

std::shared_ptr<ItemButton> ItemButton::create(std::function<void()> pressed) {
    const auto button = std::make_shared<ItemButton>(Key{}, CGRect());
    button->setUp();
    button->setBezelStyle(NSBezelStyle::texturedRounded);
    button->setAction(Selector("press", std::move(pressed)));
    return button;
}

void ItemButton::show(const std::string& title, const std::shared_ptr<NSImage>& image,
                      bool enabled) {
    if (this->title() != title)
        setTitle(title);
    if (this->image() != image)
        setImage(image);
    setEnabled(enabled);
}

void ItemButton::setShowsIndicator(bool shows) {
    if (shows == showsIndicator_)
        return;
    showsIndicator_ = shows;
    setNeedsDisplay(true);
}

CGSize ItemButton::intrinsicContentSize() const {
    const CGSize own = NSButton::intrinsicContentSize();
    return {own.width + (showsIndicator_ ? indicatorWidth : 0), own.height};
}

void ItemButton::draw(Canvas& canvas) const {
    if (!showsIndicator_)
        return NSButton::draw(canvas);
    const Drawing drawing(canvas);
    const CGRect all = bounds();
    const auto shown = buttonCell();
    shown->drawBezel(all, *this);
    shown->drawInterior({all.minX(), all.minY(), all.width() - indicatorWidth, all.height()},
                        *this);
    const CGPoint tip(all.maxX() - indicatorWidth + 1, all.minY() + all.height() / 2 - 2);
    drawLine({{tip.x - 3.5, tip.y + 3.5}, tip, {tip.x + 3.5, tip.y + 3.5}}, 1.5,
             isEnabled() ? Palette::label : Palette::faintLabel);
}

} // namespace zorvan
