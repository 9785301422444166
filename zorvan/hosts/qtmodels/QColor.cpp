#include <zorvan/hosts/qtmodels/QColor.h>

#include <QRgba64>

namespace zorvan {

QColor toQColor(const RGBA& colour) { return toQColor(NSColor(colour)); } // which clamps

QColor toQColor(const NSColor& colour) {
    const RGBA c = colour.rgba();
    return QColor::fromRgbF(static_cast<float>(c.r), static_cast<float>(c.g),
                            static_cast<float>(c.b), static_cast<float>(c.a));
}

std::optional<RGBA> toRGBA(const QColor& colour) {
    if (!colour.isValid())
        return std::nullopt;
    if (colour.spec() == QColor::ExtendedRgb)
        return RGBA(colour.redF(), colour.greenF(), colour.blueF(), colour.alphaF());
    const QRgba64 c = colour.rgba64();
    constexpr double full = 65535;
    return RGBA(c.red() / full, c.green() / full, c.blue() / full, c.alpha() / full);
}

std::optional<NSColor> toNSColor(const QColor& colour) {
    const std::optional<RGBA> rgba = toRGBA(colour);
    return rgba ? std::optional(NSColor(*rgba)) : std::nullopt;
}

} // namespace zorvan
