#pragma once

#include <zorvan/media/NSImage.h>

#include <memory>
#include <optional>
#include <string>

namespace zorvan {

/// The system symbol of that name, or else the named image of the application, at that size when
/// one is given; null when there is neither. The image is the caller's own.
std::shared_ptr<NSImage> resolveImage(const std::string& name, const std::optional<CGSize>& size);

} // namespace zorvan
