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

std::int64_t pixelCount(double side) noexcept {
    return static_cast<std::int64_t>(std::clamp(std::ceil(side - 1e-6), 0.0, maximumSide));
}

/// How many pixels the sides of a rectangle have in a context.
CGSize pixelsOf(const CGRect& rect, const CGContext* context) noexcept {
    const CGAffineTransform t = context ? context->ctm() : CGAffineTransform();
    return {rect.width() * std::hypot(t.a, t.b), rect.height() * std::hypot(t.c, t.d)};
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
        const CGSize pixels = pixelsOf(rect, context.get());
        auto bitmap = picture->drawn(pixelCount(pixels.width), pixelCount(pixels.height));
        if (bitmap)
            context->draw(*CGImage::create(std::move(*bitmap)), rect);
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

CGImage::Pointer NSImage::drawn(CGSize pixels) const {
    const auto context = CGContext::rgba(pixelCount(pixels.width), pixelCount(pixels.height));
    if (!context || !(size_.width > 0 && size_.height > 0))
        return nullptr;
    if (isDrawingFlipped_)
        context->concatenate({1, 0, 0, -1, 0, static_cast<double>(context->height())});
    context->scaleBy(static_cast<double>(context->width()) / size_.width,
                     static_cast<double>(context->height()) / size_.height);
    NSGraphicsContext::use(NSGraphicsContext::create(context, isDrawingFlipped_),
                           [&] { drawing_(rect()); });
    return std::move(*context).makeImage();
}

CGImage::Pointer NSImage::imageFor(CGSize pixels) const {
    if (drawing_)
        return drawn(pixels);
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
    const bool turns = options.respectFlipped && current->isFlipped();
    const double fromBottom = turns ? size_.height - from.maxY() : from.minY();
    const CGRect whole(in.minX() - from.minX() * x, in.minY() - fromBottom * y, size_.width * x,
                       size_.height * y);
    const CGImage::Pointer image = imageFor(pixelsOf(whole, &context));
    if (!image)
        return;
    context.useTemporaryGState([&] {
        context.setAlpha(context.alpha() * options.fraction);
        context.setCompositingOperation(options.operation);
        if (from != rect())
            context.clip(in);
        if (turns)
            context.concatenate({1, 0, 0, -1, 0, whole.minY() + whole.maxY()});
        context.draw(*image, whole);
    });
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
