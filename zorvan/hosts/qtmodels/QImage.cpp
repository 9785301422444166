#include <zorvan/hosts/qtmodels/QImage.h>

#include <zorvan/platform/graphics/ExactTransforms.h>

#include <memory>
#include <utility>

namespace zorvan {

namespace {

constexpr QImage::Format format = QImage::Format_RGBA8888_Premultiplied;

/// An image over the bytes that frees `owner` when it is done with.
template <class Bytes, class Owner>
QImage over(Bytes* bytes, const Bitmap& bitmap, Owner owner) {
    auto kept = std::make_unique<Owner>(std::move(owner));
    const auto release = [](void* context) { delete static_cast<Owner*>(context); };
    const QImage image(bytes, static_cast<int>(bitmap.width()), static_cast<int>(bitmap.height()),
                       static_cast<qsizetype>(bitmap.bytesPerRow()), format, release, kept.get());
    // Qt calls the function for images that it has made, and for no other.
    if (!image.isNull())
        kept.release();
    return image;
}

} // namespace

QImage toQImage(const CGImage::Pointer& image) {
    if (!image)
        return {};
    if (image->bitmap().layout() == BitmapLayout::rgba)
        return over(image->uint8Data(), image->bitmap(), image);
    std::optional<Bitmap> turned = copied(image->bitmap(), BitmapLayout::rgba);
    return turned ? toQImage(*std::move(turned)) : QImage();
}

QImage toQImage(Bitmap bitmap) {
    if (bitmap.layout() != BitmapLayout::rgba) {
        std::optional<Bitmap> turned = copied(bitmap, BitmapLayout::rgba);
        return turned ? toQImage(*std::move(turned)) : QImage();
    }
    auto held = std::make_shared<Bitmap>(std::move(bitmap));
    return over(held->data(), *held, held);
}

CGImage::Pointer toCGImage(const QImage& image) {
    QImage shown = image.convertToFormat(format);
    // Rows of four-byte pixels are padded in a buffer of the caller's at most.
    if (shown.bytesPerLine() != qsizetype{4} * shown.width())
        shown = shown.copy();
    const auto held = std::make_shared<const QImage>(std::move(shown));
    const auto bitmap =
        Bitmap::sharing(held->constBits(), held->width(), held->height(), BitmapLayout::rgba, held);
    return bitmap ? CGImage::create(bitmap) : nullptr;
}

std::optional<Bitmap> toBitmap(const QImage& image) {
    const CGImage::Pointer picture = toCGImage(image);
    return picture ? picture->bitmap().copy() : std::nullopt;
}

} // namespace zorvan
