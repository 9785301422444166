#pragma once

#include <zorvan/platform/bundles/NSBundle.h>

#include <memory>
#include <string>

namespace zorvan {

/// Names the description of a view among the resources of a bundle. Views keep it under an
/// identifier; nothing is read from the bundle.
struct NSNib {
    /// Of the resource.
    std::string name;
    /// Null for the main bundle.
    std::shared_ptr<const NSBundle> bundle;

    friend bool operator==(const NSNib&, const NSNib&) = default;
};

} // namespace zorvan
