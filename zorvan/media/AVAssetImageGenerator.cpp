#include <zorvan/media/AVAssetImageGenerator.h>

#include <zorvan/platform/avfoundation/grabFrame.h>

#include <algorithm>
#include <new>
#include <utility>

namespace zorvan {

AVAssetImageGenerator::Image AVAssetImageGenerator::copyCGImage(const CMTime& at) const {
    const Image none{nullptr, kCMTimeInvalid};
    const auto& url = asset.value ? asset.value->url() : std::nullopt;
    if (!url || !url->isFileURL())
        return none;
    const CMTime duration = asset.value->duration();
    const double seconds =
        duration.isNumeric() ? std::min(at.seconds(), duration.seconds()) : at.seconds();
    const bool isQuick = requestedTimeToleranceBefore == kCMTimePositiveInfinity &&
                         requestedTimeToleranceAfter == kCMTimePositiveInfinity;
    try {
        auto frame =
            avfoundation::grabFrame(url->path(), {.seconds = seconds,
                                                  .isExact = !isQuick,
                                                  .isUpright = appliesPreferredTrackTransform,
                                                  .maximumSize = maximumSize});
        if (!frame)
            return none;
        return {CGImage::create(std::move(frame->bitmap)), CMTime({.seconds = frame->seconds})};
    } catch (const std::bad_alloc&) {
        return none;
    }
}

} // namespace zorvan
