#include <zorvan/interface/internal/drawing.h>

#include <zorvan/media/NSAttributedString.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace zorvan {

NSAttributedString withDefaults(const NSAttributedString& text, const NSColor& color) {
    const TextFont font{.family = "sans-serif", .size = 13};
    NSMutableAttributedString complete(text);
    const auto runs = text.runs();
    for (const NSAttributedString::Run& run : runs) {
        if (!run.attributes.contains(AttributeName::font))
            complete.addAttribute(AttributeName::font, font, run.range);
        if (!run.attributes.contains(AttributeName::foregroundColor))
            complete.addAttribute(AttributeName::foregroundColor, TextColor(color.rgba()),
                                  run.range);
    }
    return complete;
}

namespace {

/// Text that differs from another in its colours alone is as large.
NSAttributedString withoutColors(const NSAttributedString& text) {
    NSMutableAttributedString plain(text);
    const NSRange all{0, plain.length()};
    plain.removeAttribute(AttributeName::foregroundColor, all);
    plain.removeAttribute(AttributeName::backgroundColor, all);
    return plain;
}

struct Measured {
    NSAttributedString text;
    CGSize size;
};

} // namespace

/// A title is drawn again and again, as the mouse comes and goes, and changes seldom; to measure it
/// takes longer than to fill its bezel.
CGSize textSize(const NSAttributedString& text) {
    if (text.length() == 0)
        return {};
    constexpr std::size_t kept = 32;
    thread_local std::vector<Measured> known;
    thread_local std::size_t oldest = 0;
    NSAttributedString plain = withoutColors(text);
    for (const Measured& one : known)
        if (one.text == plain)
            return one.size;
    const CGSize exact = size(plain);
    Measured now{std::move(plain), {std::ceil(exact.width), std::ceil(exact.height)}};
    const CGSize whole = now.size;
    if (known.size() < kept)
        known.push_back(std::move(now));
    else
        known[oldest++ % kept] = std::move(now);
    return whole;
}

CGRect drawText(const NSAttributedString& text, const CGRect& in) {
    const CGSize natural = textSize(text);
    const double width = std::min(natural.width, in.width());
    const CGRect box(std::round(in.minX() + (in.width() - width) / 2),
                     std::round(in.minY() + (in.height() - natural.height) / 2), width,
                     natural.height);
    if (width > 0)
        drawTruncated(text, box);
    return box;
}

} // namespace zorvan
