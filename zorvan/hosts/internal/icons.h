#pragma once

#include <zorvan/media/NSImage.h>

#include <QIcon>
#include <memory>

namespace zorvan::internal {

/// An icon that draws the image at each size anew; templates in the colour of the text around them.
/// No icon for null.
QIcon iconOf(const std::shared_ptr<NSImage>& image);

} // namespace zorvan::internal
