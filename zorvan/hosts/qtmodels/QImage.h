#pragma once

#include <zorvan/media/CGImage.h>
#include <zorvan/platform/graphics/Bitmap.h>

#include <QImage>

namespace zorvan {

/// The picture for Qt. It shares the pixels and keeps them alive; alpha-first pictures are copied,
/// because Qt has no such order. Writing to it makes Qt copy it first. Null for no picture, for one
/// too wide for Qt (over 67 million pixels), and when there is no memory.
[[nodiscard]] QImage toQImage(const CGImage::Pointer& image);
/// The bitmap handed over to Qt, without a copy unless alpha stands first; Qt may write to it where
/// it stands.
[[nodiscard]] QImage toQImage(Bitmap bitmap);

/// The picture as the library holds it. An image of the format `Format_RGBA8888_Premultiplied` is
/// shared, not copied, and may be changed afterwards, since Qt copies it then; one with padded rows
/// is copied, any other converted once. An image over a buffer of the caller's must be `copy()`ed
/// first unless the buffer outlives the picture unchanged. Empty for a null image, for more pixels
/// than a bitmap may hold, and when there is no memory.
///
/// The device pixel ratio and the colour space of an image are not looked at, in either direction.
[[nodiscard]] CGImage::Pointer toCGImage(const QImage& image);
/// The same pixels in storage of their own, to draw into.
[[nodiscard]] std::optional<Bitmap> toBitmap(const QImage& image);

} // namespace zorvan
