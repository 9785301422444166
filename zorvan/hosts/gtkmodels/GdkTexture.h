#pragma once

#include <zorvan/media/CGImage.h>

/// What GTK's own headers declare, too.
typedef struct _GdkTexture GdkTexture;

namespace zorvan {

/// A new reference to the picture for GTK, which shares the pixels and keeps them alive. Null for
/// no picture.
[[nodiscard]] GdkTexture* toGdkTexture(const CGImage::Pointer& image);

} // namespace zorvan
