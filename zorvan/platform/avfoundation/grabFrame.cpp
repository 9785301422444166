#include <zorvan/platform/avfoundation/grabFrame.h>

#include <zorvan/platform/avfoundation/internal/ffmpegMedia.h>

namespace zorvan::avfoundation {

std::optional<GrabbedFrame> grabFrame(const std::string& path, const FrameRequest& request) {
    static const auto function = ZORVAN_FUNCTION(ZORVAN_FFMPEG_MEDIA, zorvanGrabFrame);
    return callFFmpeg(function, path, request);
}

} // namespace zorvan::avfoundation
