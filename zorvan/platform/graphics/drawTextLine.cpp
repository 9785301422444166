#include <zorvan/platform/graphics/internal/cairoDrawingFunctions.h>

#include <zorvan/platform/graphics/internal/CairoDrawing.h>
#include <zorvan/platform/graphics/internal/TextParagraphs.h>

#include <algorithm>
#include <array>

namespace zorvan {

namespace {

// A longer text fills no line of pixels that a bitmap may have.
constexpr std::size_t maximumLength = 65536;

TextLayout makeLayout(cairo_t* cairo, std::string_view text, const TextBox& box,
                      const TextLineStyle& style) {
    const TextFontDescription font(pango_font_description_new());
    pango_font_description_set_family_static(font.get(), "sans-serif");
    pango_font_description_set_weight(font.get(),
                                      style.isBold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
    pango_font_description_set_absolute_size(font.get(), style.size * PANGO_SCALE);

    text = text.substr(0, maximumLength);
    const std::unique_ptr<char, Release<g_free>> valid(
        g_utf8_make_valid(text.data(), static_cast<gssize>(text.size())));
    TextLayout layout(pango_cairo_create_layout(cairo));
    pango_layout_set_font_description(layout.get(), font.get());
    pango_layout_set_text(layout.get(), valid.get(), -1);
    pango_layout_set_single_paragraph_mode(layout.get(), TRUE);
    pango_layout_set_width(layout.get(), static_cast<int>(box.width) * PANGO_SCALE);
    pango_layout_set_ellipsize(layout.get(), style.ellipsis == TextEllipsis::middle
                                                 ? PANGO_ELLIPSIZE_MIDDLE
                                                 : PANGO_ELLIPSIZE_END);
    // The side that the caller names, whatever the direction of the script.
    pango_layout_set_auto_dir(layout.get(), FALSE);
    pango_layout_set_alignment(layout.get(),
                               style.alignment == TextLineAlignment::left     ? PANGO_ALIGN_LEFT
                               : style.alignment == TextLineAlignment::center ? PANGO_ALIGN_CENTER
                                                                              : PANGO_ALIGN_RIGHT);
    return layout;
}

/// How much of each pixel of the box the text covers.
CairoSurface coverage(std::string_view text, const TextBox& box, const TextLineStyle& style) {
    CairoSurface surface(cairo_image_surface_create(CAIRO_FORMAT_A8, static_cast<int>(box.width),
                                                    static_cast<int>(box.height)));
    const Cairo cairo(cairo_create(surface.get()));
    if (cairo_status(cairo.get()) != CAIRO_STATUS_SUCCESS)
        return nullptr;
    const TextLayout layout = makeLayout(cairo.get(), text, box, style);
    pango_cairo_show_layout(cairo.get(), layout.get());
    cairo_surface_flush(surface.get());
    return surface;
}

using Premultiplied = std::array<std::uint8_t, 4>;

Premultiplied premultiplied(const TextLineColor& color, BitmapLayout layout) {
    const auto scaled = [&](std::uint8_t component) {
        return static_cast<std::uint8_t>((component * color.alpha + 127) / 255);
    };
    const std::uint8_t red = scaled(color.red), green = scaled(color.green),
                       blue = scaled(color.blue);
    if (layout == BitmapLayout::argb)
        return {color.alpha, red, green, blue};
    return {red, green, blue, color.alpha};
}

void paint(std::uint8_t* pixel, const Premultiplied& color, std::uint8_t alpha, int covered) {
    const int kept = 255 * 255 - alpha * covered;
    for (const std::uint8_t component : color) {
        *pixel = static_cast<std::uint8_t>((component * covered * 255 + *pixel * kept + 32512) /
                                           (255 * 255));
        ++pixel;
    }
}

} // namespace

extern "C" void zorvanDrawTextLine(Bitmap& bitmap, std::string_view text, const TextBox& box,
                                   const TextLineStyle& style) {
    constexpr std::int64_t maximumSide = 32767; // of a Cairo surface
    const bool isDrawable =
        box.width > 0 && box.height > 0 && style.size >= 1 && style.size <= 1024 &&
        box.width <= maximumSide && box.height <= maximumSide && box.x > -maximumSide &&
        box.y > -maximumSide && box.x < bitmap.width() && box.y < bitmap.height();
    if (!isDrawable || text.empty() || !hasFonts())
        return;
    const CairoSurface surface = coverage(text, box, style);
    if (!surface)
        return;
    const unsigned char* mask = cairo_image_surface_get_data(surface.get());
    const int stride = cairo_image_surface_get_stride(surface.get());
    const Premultiplied color = premultiplied(style.color, bitmap.layout());
    const std::int64_t left = std::max<std::int64_t>(0, -box.x);
    const std::int64_t right = std::min(box.width, bitmap.width() - box.x);
    const std::int64_t bottom = std::min(box.height, bitmap.height() - box.y);
    for (std::int64_t y = std::max<std::int64_t>(0, -box.y); y < bottom; ++y)
        for (std::int64_t x = left; x < right; ++x)
            if (const unsigned char covered = mask[y * stride + x])
                paint(bitmap.row(box.y + y) + (box.x + x) * 4, color, style.color.alpha, covered);
}

} // namespace zorvan
