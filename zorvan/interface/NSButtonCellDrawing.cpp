#include <zorvan/interface/NSButtonCell.h>

#include <zorvan/interface/NSControl.h>
#include <zorvan/interface/internal/BarView.h>
#include <zorvan/interface/internal/drawing.h>
#include <zorvan/media/CGRect.h>
#include <zorvan/media/NSColor.h>
#include <zorvan/media/NSImage.h>

namespace zorvan {

namespace {

constexpr double bezelRadius = 7;

struct Bezel {
    NSColor fill;
    NSColor pressedFill;
    NSColor outline;
};

Bezel bezel(NSBezelStyle style, const std::optional<NSColor>& color, bool isDark) {
    if (color)
        return {*color, color->blended(0.22, NSColor::black), color->blended(0.12, NSColor::black)};
    if (isDark)
        return {Palette::grey(0.24), Palette::grey(0.42), Palette::grey(0.24)};
    if (style == NSBezelStyle::texturedRounded)
        return {Palette::grey(0, 0.055), Palette::grey(0, 0.17), Palette::grey(0, 0.09)};
    return {Palette::field, Palette::grey(0.87), Palette::outline};
}

double luminance(const NSColor& color) {
    return 0.2126 * color.redComponent() + 0.7152 * color.greenComponent() +
           0.0722 * color.blueComponent();
}

NSColor faded(const NSColor& color, double share) {
    return color.withAlphaComponent(color.alphaComponent() * share);
}

} // namespace

void NSButtonCell::draw(const CGRect& withFrame, const NSControl& in) const {
    if (isBordered_)
        drawBezel(withFrame, in);
    drawInterior(withFrame, in);
}

void NSButtonCell::drawBezel(const CGRect& withFrame, const NSControl& in) const {
    const CGRect frame = drawingRect(withFrame);
    if (frame.isEmpty())
        return;
    const Bezel look = bezel(bezelStyle_, bezelColor_, isOnDarkGround(in));
    const double share = isEnabled() ? 1 : 0.5;
    setFill(faded(isHighlighted() ? look.pressedFill : look.fill, share));
    nsRoundedPath(frame, bezelRadius)->fill();
    // A line of one point just inside the edge.
    setStroke(faded(look.outline, share));
    nsRoundedPath(frame.shrunkBy({.dx = 0.5, .dy = 0.5}), bezelRadius - 0.5)->stroke();
}

void NSButtonCell::drawInterior(const CGRect& withFrame, const NSControl& in) const {
    const Placement at = placement(drawingRect(withFrame));
    if (!at.image.isNull())
        drawImage(*image(), at.image, in);
    if (!at.title.isNull())
        drawTitle(attributedTitle(), at.title, in);
}

void NSButtonCell::drawImage(const NSImage& image, const CGRect& withFrame,
                             const NSControl& in) const {
    if (!image.isTemplate())
        return image.draw(withFrame, {.fraction = isEnabled() ? 1 : 0.4});
    // The colour where the picture is opaque; a faint colour stays faint over any ground.
    const auto inked = NSImage::create(image.size(), false, [&](const CGRect& whole) {
        image.draw(whole);
        setFill(labelColor(in));
        fill(whole, NSCompositingOperation::sourceIn);
    });
    inked->draw(withFrame);
}

CGRect NSButtonCell::drawTitle(const NSAttributedString& title, const CGRect& withFrame,
                               const NSControl& in) const {
    return drawText(withDefaults(title, labelColor(in)), withFrame);
}

NSColor NSButtonCell::labelColor(const NSControl& in) const {
    constexpr double darkest = 0.6;
    NSColor color = Palette::label;
    if (contentTintColor_)
        color = *contentTintColor_;
    else if (bezelColor_ ? luminance(*bezelColor_) < darkest : isOnDarkGround(in))
        color = Palette::lightLabel;
    return isEnabled() ? color : faded(color, 0.4);
}

} // namespace zorvan
