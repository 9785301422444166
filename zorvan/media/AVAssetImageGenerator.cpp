#include <zorvan/media/AVAssetImageGenerator.h>

#include <zorvan/platform/avfoundation/grabFrame.h>

#include <new>
#include <utility>

namespace zorvan {

AVAssetImageGenerator::Image AVAssetImageGenerator::copyCGImage(const CMTime& at) const {
    const Image none{nullptr, kCMTimeInvalid};
    const auto& url = asset.value ? asset.value->url() : std::nullopt;
    if (!url || !url->isFileURL())
        return none;
    const bool isQuick = requestedTimeToleranceBefore == kCMTimePositiveInfinity &&
                         requestedTimeToleranceAfter == kCMTimePositiveInfinity;
    try {
        auto frame =
            avfoundation::grabFrame(url->path(), {.seconds = at.seconds(),
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
