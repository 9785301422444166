#pragma once

#include <zorvan/media/NSImage.h>
#include <zorvan/platform/bundles/NSBundle.h>

#include <cstdint>

namespace zorvan {

/// The icon of an application, as large as a picture nearest to `size` pixels was installed, shown
/// at `size` points. Empty when the application has none, or one that is no bitmap.
NSImage::Pointer applicationIcon(const NSBundle& bundle, std::int64_t size = 128);

} // namespace zorvan
