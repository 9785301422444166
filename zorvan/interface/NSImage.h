#pragma once

#include <zorvan/colour/NSColor.h>
#include <zorvan/media/NSImage.h>

#include <memory>

namespace zorvan {

/// The picture in one colour: every pixel takes the colour and keeps its opacity. It is `scale`
/// times as large, its alignment rectangle too, and no template. It is drawn anew for each size in
/// pixels, from what the picture shows then.
///
/// A picture whose sides are both 0 is given back as it is.
[[nodiscard]] std::shared_ptr<const NSImage> tintedImage(const NSImage& image, const NSColor& with,
                                                         double scale);

} // namespace zorvan
