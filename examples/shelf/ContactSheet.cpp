#include "ContactSheet.h"

#include "displayText.h"
#include "report.h"

#include <zorvan/media/CGContext.h>
#include <zorvan/media/CGImageDestination.h>
#include <zorvan/media/ImageKeys.h>
#include <zorvan/media/NSBezierPath.h>
#include <zorvan/media/NSColor.h>
#include <zorvan/platform/graphics/TextDrawing.h>
#include <zorvan/platform/graphics/drawBitmap.h>

#include <algorithm>
#include <cmath>

using namespace zorvan;

namespace {

constexpr std::int64_t margin = 24;
constexpr std::int64_t gap = 20;
constexpr std::int64_t captionHeight = 40;
constexpr std::int64_t lineHeight = 18;
constexpr TextLineColor paper{.red = 250, .green = 249, .blue = 246};
constexpr TextLineColor tile{.red = 238, .green = 236, .blue = 231};
constexpr TextLineColor warning{.red = 176, .green = 42, .blue = 48};
constexpr TextLineColor ink{.red = 34, .green = 34, .blue = 38};
constexpr TextLineColor faint{.red = 120, .green = 118, .blue = 114};

void fillRectangle(Bitmap& bitmap, const TextBox& box, const TextLineColor& color) {
    for (std::int64_t y = box.y; y < box.y + box.height; ++y) {
        std::uint8_t* pixel = bitmap.row(y) + box.x * 4;
        for (std::int64_t x = 0; x < box.width; ++x, pixel += 4) {
            pixel[0] = color.red;
            pixel[1] = color.green;
            pixel[2] = color.blue;
            pixel[3] = 255;
        }
    }
}

std::int64_t squarishColumns(std::size_t count, std::int64_t cell) {
    const double ratio =
        static_cast<double>(cell + captionHeight + gap) / static_cast<double>(cell + gap);
    const double columns = std::ceil(std::sqrt(static_cast<double>(count) * ratio));
    return std::max<std::int64_t>(1, static_cast<std::int64_t>(columns));
}

} // namespace

std::optional<ContactSheet> ContactSheet::make(std::size_t count, const Options& options,
                                               std::string& reason) {
    const auto total = static_cast<std::int64_t>(count);
    const std::int64_t columns =
        std::min(options.columns.value_or(squarishColumns(count, options.cell)), total);
    const std::int64_t rows = (total + columns - 1) / columns;
    const std::int64_t width = 2 * margin + columns * options.cell + (columns - 1) * gap;
    const std::int64_t height =
        2 * margin + rows * (options.cell + captionHeight) + (rows - 1) * gap;
    auto bitmap = Bitmap::make(width, height);
    if (!bitmap) {
        reason = "a sheet of " + std::to_string(width) + " x " + std::to_string(height) +
                 " pixels is too large; make the cells smaller";
        return std::nullopt;
    }
    fillRectangle(*bitmap, {0, 0, width, height}, paper);
    return ContactSheet(std::move(*bitmap), columns, options.cell);
}

ContactSheet::Point ContactSheet::corner(std::size_t position) const {
    const auto place = static_cast<std::int64_t>(position);
    return {margin + place % columns_ * (cell_ + gap),
            margin + place / columns_ * (cell_ + captionHeight + gap)};
}

void ContactSheet::fill(std::size_t position, const std::string& name, const PictureFacts& facts,
                        const CGImage::Pointer& thumbnail) {
    const Point at = corner(position);
    if (thumbnail) {
        drawThumbnail(at, *thumbnail);
        if (facts.movie)
            drawPlaySign(at, *thumbnail);
    } else {
        fillRectangle(bitmap_, {at.x, at.y, cell_, cell_}, tile);
        drawTextLine(bitmap_, "unreadable", {at.x, at.y + cell_ / 2 - 9, cell_, lineHeight},
                     {.color = warning, .alignment = TextLineAlignment::center});
    }
    drawCaption(at, name, facts);
}

void ContactSheet::drawThumbnail(Point at, const CGImage& thumbnail) {
    const std::int64_t x = at.x + (cell_ - thumbnail.width()) / 2;
    const std::int64_t y = at.y + (cell_ - thumbnail.height());
    fillRectangle(bitmap_, {x, y, thumbnail.width(), thumbnail.height()}, tile);
    drawBitmap(thumbnail.bitmap(),
               CGAffineTransform(1, 0, 0, 1, static_cast<double>(x), static_cast<double>(y)),
               bitmap_, Backdrop::arbitrary);
}

void ContactSheet::drawPlaySign(Point at, const CGImage& thumbnail) {
    // Its own pixels are all that it touches: cells next to it may be drawn at the same time.
    constexpr std::int64_t side = 36;
    if (cell_ < side || thumbnail.height() < side || thumbnail.width() < side)
        return;
    const auto context =
        CGContext::create(bitmap_, {at.x + (cell_ - side) / 2,
                                    at.y + cell_ - (thumbnail.height() + side) / 2, side, side});
    context->useTemporaryContext([] {
        setFill(NSColor::black.withAlphaComponent(0.55));
        NSBezierPath::create({.ovalIn = CGRect(0, 0, side, side)})->fill();
        setFill(NSColor::white);
        const auto triangle = NSBezierPath::create();
        triangle->move({13, 9});
        triangle->line({13, 27});
        triangle->line({28, 18});
        triangle->close();
        triangle->fill();
    });
}

void ContactSheet::drawCaption(Point at, const std::string& name, const PictureFacts& facts) {
    const std::size_t slash = name.rfind('/');
    const std::string title = forDisplay(name.substr(slash == std::string::npos ? 0 : slash + 1));
    std::string detail = facts.error.empty() ? sizeText(*facts.uprightSize) : facts.error;
    if (facts.error.empty() && facts.movie && facts.movie->duration)
        detail += ", " + durationText(*facts.movie->duration);
    drawTextLine(bitmap_, title, {at.x, at.y + cell_ + 5, cell_, lineHeight},
                 {.size = 13,
                  .color = ink,
                  .alignment = TextLineAlignment::center,
                  .ellipsis = TextEllipsis::middle});
    drawTextLine(bitmap_, detail, {at.x, at.y + cell_ + 5 + lineHeight, cell_, lineHeight - 2},
                 {.size = 11,
                  .color = facts.error.empty() ? faint : warning,
                  .alignment = TextLineAlignment::center});
}

bool ContactSheet::write(const std::string& path, ImageExportFormat format) {
    PropertyList::Dictionary options;
    if (format == ImageExportFormat::jpg || format == ImageExportFormat::heic)
        options.emplace(kCGImageDestinationLossyCompressionQuality, 0.9);
    const auto destination =
        CGImageDestination::create(URL({.fileURLWithPath = path}), format.cgType(), 1, options);
    if (!destination)
        return false;
    destination->addImage(CGImage::create(std::move(bitmap_)));
    return destination->finalize();
}
