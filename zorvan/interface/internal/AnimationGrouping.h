#pragma once

#include <zorvan/platform/appkit/NSAnimationContext.h>

namespace zorvan::internal {

/// A grouping of animations for as long as it lives.
class AnimationGrouping {
public:
    AnimationGrouping() { NSAnimationContext::beginGrouping(); }
    ~AnimationGrouping() { NSAnimationContext::endGrouping(); }
    AnimationGrouping(const AnimationGrouping&) = delete;
    AnimationGrouping& operator=(const AnimationGrouping&) = delete;
};

} // namespace zorvan::internal
