#include <zorvan/media/NSImage.h>

#include <zorvan/media/CGContext.h>
#include <zorvan/media/CGImageSource.h>
#include <zorvan/media/ImageThumbailer.h>
#include <zorvan/platform/graphics/VectorPicture.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace zorvan {

namespace {

/// Of a drawing, or of a picture with the focus.
constexpr double maximumSide = 32768;

/// Farther apart, pixels are not told from their neighbours.
constexpr double farthest = 1e9;

double wholePixels(double side) noexcept {
    return side > 0 ? std::clamp(std::ceil(side - 1e-6), 0.0, farthest) : 0;
}

std::int64_t pixelCount(double side) noexcept {
    return static_cast<std::int64_t>(std::min(wholePixels(side), maximumSide));
}

/// How many pixels the sides of a rectangle have in a context.
CGSize pixelsOf(const CGRect& rect, const CGContext* context) noexcept {
    const CGAffineTransform t = context ? context->ctm() : CGAffineTransform();
    return {rect.width() * std::hypot(t.a, t.b), rect.height() * std::hypot(t.c, t.d)};
}

CGRect allOf(CGSize pixels) noexcept { return {CGPoint(), pixels}; }

/// A part of a picture of so many pixels, y upward, as its rows are counted.
PixelRect rowsOf(const CGRect& part, CGSize pixels) noexcept {
    return {static_cast<std::int64_t>(part.minX()),
            static_cast<std::int64_t>(pixels.height - part.maxY()),
            static_cast<std::int64_t>(part.width()), static_cast<std::int64_t>(part.height())};
}

/// Where the part stands when all of the picture stands at `whole`.
CGRect placeOf(const CGRect& part, CGSize pixels, const CGRect& whole) noexcept {
    const double x = whole.width() / pixels.width, y = whole.height() / pixels.height;
    return {whole.minX() + part.minX() * x, whole.minY() + part.minY() * y, part.width() * x,
            part.height() * y};
}

/// The pixels that a drawing has at `whole` in the context, and those of them that show there, with
/// the neighbours that are mixed in at the edge. Empty when none does.
struct Raster {
    CGSize pixels;
    CGRect part;
};

Raster rasterOf(const CGRect& whole, const CGContext& context) noexcept {
    const CGSize exact = pixelsOf(whole, &context);
    const CGSize pixels(wholePixels(exact.width), wholePixels(exact.height));
    const CGRect seen = whole.intersection(context.boundingBoxOfClipPath());
    if (seen.isEmpty() || !(pixels.width > 0 && pixels.height > 0))
        return {pixels, CGRect()};
    constexpr double margin = 2;
    const double x = pixels.width / whole.width(), y = pixels.height / whole.height();
    const double left = std::floor((seen.minX() - whole.minX()) * x) - margin;
    const double bottom = std::floor((seen.minY() - whole.minY()) * y) - margin;
    const double right = std::ceil((seen.maxX() - whole.minX()) * x) + margin;
    const double top = std::ceil((seen.maxY() - whole.minY()) * y) + margin;
    return {pixels, CGRect(left, bottom, right - left, top - bottom).intersection(allOf(pixels))};
}

/// The part of a picture of so many pixels for each point, y upward; all of it when the part has an
/// edge between pixels.
CGRect partOf(const CGRect& points, CGSize pixels, CGSize size) noexcept {
    const double x = pixels.width / size.width, y = pixels.height / size.height;
    const CGRect part(std::round(points.minX() * x), std::round(points.minY() * y),
                      std::round(points.width() * x), std::round(points.height() * y));
    const auto isNear = [](double a, double b) { return std::abs(a - b) < 1e-6; };
    const bool isWhole =
        isNear(part.minX(), points.minX() * x) && isNear(part.minY(), points.minY() * y) &&
        isNear(part.width(), points.width() * x) && isNear(part.height(), points.height() * y);
    return isWhole ? part : allOf(pixels);
}

CGImage::Pointer cropped(CGImage::Pointer image, const CGRect& part) {
    if (part == image->rect())
        return image;
    std::optional<Bitmap> cut = cropped(image->bitmap(), rowsOf(part, image->size()));
    return cut ? CGImage::create(std::move(*cut)) : nullptr;
}

bool covers(const CGImage& image, CGSize pixels) noexcept {
    constexpr double rounding = 0.5;
    return image.size().width + rounding >= pixels.width &&
           image.size().height + rounding >= pixels.height;
}

CGImage::Pointer upright(const CGImageSource& source) {
    ImageThumbailer whole;
    whole.maximumPixelSize = std::numeric_limits<double>::infinity();
    return whole.thumbnail(source);
}

/// Drawn anew at each size, with as many pixels as it has in the context.
NSImage::Pointer imageOf(const std::shared_ptr<const VectorPicture>& picture) {
    if (!picture)
        return nullptr;
    return NSImage::create(picture->size(), false, [picture](const CGRect& rect) {
        const auto context = CGContext::current();
        const auto [pixels, part] = rasterOf(rect, *context);
        auto bitmap = picture->drawn(pixels, rowsOf(part, pixels));
        if (bitmap)
            context->draw(*CGImage::create(std::move(*bitmap)), placeOf(part, pixels, rect));
    });
}

} // namespace

NSImage::NSImage(Key, CGSize size) noexcept : size_(size) {}

NSImage::~NSImage() = default;

std::vector<NSImage::Representation> NSImage::representations() const { return representations_; }

NSImage::Pointer CGImage::nsImage() const { return NSImage::create(shared_from_this()); }

CGImage::Pointer CGImage::named(std::string_view name) {
    const NSImage::Pointer image = NSImage::named(name);
    return image ? image->cgImageForProposedRect(image->rect()) : nullptr;
}

NSImage::Pointer NSImage::create(CGSize size) { return std::make_shared<NSImage>(Key{}, size); }

NSImage::Pointer NSImage::create(CGImage::Pointer image, CGSize size) {
    if (!image)
        return nullptr;
    const Pointer made = create(size == CGSize() ? image->size() : size);
    made->addRepresentation({std::move(image), made->size()});
    return made;
}

NSImage::Pointer NSImage::create(const URL& contentsOf) {
    const auto source = CGImageSource::create(contentsOf);
    if (!source)
        return nullptr;
    if (source->type() == "public.svg-image")
        return imageOf(VectorPicture::create(contentsOf.path()));
    return create(upright(*source));
}

NSImage::Pointer NSImage::create(Data data) {
    if (const auto picture = VectorPicture::create(data))
        return imageOf(picture);
    return create(upright(*CGImageSource::create(std::move(data))));
}

NSImage::Pointer NSImage::create(CGSize size, bool flipped, Drawing drawing) {
    const Pointer made = create(size);
    made->drawing_ = std::move(drawing);
    made->isDrawingFlipped_ = flipped;
    return made;
}

void NSImage::addRepresentation(Representation representation) {
    if (representation.image)
        representations_.push_back(std::move(representation));
}

/// Of all its pixels only those in the part, y upward.
CGImage::Pointer NSImage::drawn(CGSize pixels, const CGRect& part) const {
    const auto context = CGContext::rgba(pixelCount(part.width()), pixelCount(part.height()));
    if (!context || !(size_.width > 0 && size_.height > 0))
        return nullptr;
    context->translateBy(-part.minX(), -part.minY());
    if (isDrawingFlipped_)
        context->concatenate({1, 0, 0, -1, 0, pixels.height});
    context->scaleBy(pixels.width / size_.width, pixels.height / size_.height);
    NSGraphicsContext::use(NSGraphicsContext::create(context, isDrawingFlipped_),
                           [&] { drawing_(rect()); });
    return std::move(*context).makeImage();
}

CGImage::Pointer NSImage::imageFor(CGSize pixels) const {
    if (drawing_) {
        const CGSize all(static_cast<double>(pixelCount(pixels.width)),
                         static_cast<double>(pixelCount(pixels.height)));
        return drawn(all, allOf(all));
    }
    CGImage::Pointer best;
    for (const Representation& representation : representations_) {
        const CGImage::Pointer& image = representation.image;
        const bool isSmaller = best && image->size().area() < best->size().area();
        const bool isBetter =
            !best || (covers(*image, pixels) ? isSmaller || !covers(*best, pixels)
                                             : !isSmaller && !covers(*best, pixels));
        if (isBetter)
            best = image;
    }
    return best;
}

CGImage::Pointer NSImage::cgImageForProposedRect(const std::optional<CGRect>& rect,
                                                 const NSGraphicsContext::Pointer& context,
                                                 const PropertyList::Dictionary&) const {
    return imageFor(
        pixelsOf(rect.value_or(this->rect()), context ? context->cgContext().get() : nullptr));
}

void NSImage::draw(const CGRect& in, const Options& options) const {
    const NSGraphicsContext::Pointer current = NSGraphicsContext::current();
    if (!current || in.isEmpty() || rect().isEmpty())
        return;
    CGContext& context = *current->cgContext();
    const CGRect from = options.from.isEmpty() ? rect() : options.from;
    // Where all of the picture would stand, were it not cut off.
    const double x = in.width() / from.width(), y = in.height() / from.height();
    const CGRect whole(in.minX() - from.minX() * x, in.minY() - from.minY() * y, size_.width * x,
                       size_.height * y);
    context.useTemporaryGState([&] {
        context.setAlpha(context.alpha() * options.fraction);
        context.setCompositingOperation(options.operation);
        if (from != rect())
            context.clip(in);
        if (options.respectFlipped && current->isFlipped())
            context.concatenate({1, 0, 0, -1, 0, in.minY() + in.maxY()});
        drawShown(whole, from, context);
    });
}

/// No more of it than shows, so that a part may be enlarged as much as one likes, and nothing
/// around the part is mixed into its edges.
void NSImage::drawShown(const CGRect& whole, const CGRect& from, CGContext& context) const {
    Raster raster;
    CGImage::Pointer image;
    if (drawing_) {
        raster = rasterOf(whole, context);
        image = drawn(raster.pixels, raster.part);
    } else if (const auto best = imageFor(pixelsOf(whole, &context))) {
        const CGRect points = from.intersection(rect());
        raster = {best->size(), partOf(points, best->size(), size_)};
        image = cropped(best, raster.part);
    }
    if (image)
        context.draw(*image, placeOf(raster.part, raster.pixels, whole));
}

void NSImage::lockFocus(double scale) {
    const double x = size_.width * scale, y = size_.height * scale;
    const auto context = CGContext::rgba(pixelCount(x), pixelCount(y));
    focus_.reserve(focus_.size() + 1);
    NSGraphicsContext::saveGraphicsState();
    focus_.push_back(context);
    if (!context)
        return NSGraphicsContext::setCurrent(nullptr);
    context->scaleBy(static_cast<double>(context->width()) / size_.width,
                     static_cast<double>(context->height()) / size_.height);
    try {
        NSGraphicsContext::setCurrent(NSGraphicsContext::create(context, false));
        draw(rect());
    } catch (...) {
        focus_.pop_back();
        NSGraphicsContext::restoreGraphicsState();
        throw;
    }
}

void NSImage::unlockFocus() {
    if (focus_.empty())
        return;
    const std::shared_ptr<CGContext> context = std::move(focus_.back());
    focus_.pop_back();
    NSGraphicsContext::restoreGraphicsState();
    if (!context)
        return;
    drawing_ = nullptr;
    representations_ = {{context->makeImage(), size_}};
}

std::optional<Data> NSImage::data(ImageExportFormat format) const {
    const CGImage::Pointer image = cgImageForProposedRect(rect());
    return image ? image->data(format) : std::nullopt;
}

} // namespace zorvan
