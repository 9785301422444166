#include <zorvan/platform/avfoundation/grabFrame.h>

#include <zorvan/platform/avfoundation/internal/ffmpegMedia.h>

namespace zorvan::avfoundation {

std::optional<GrabbedFrame> grabFrame(const std::string& path, const FrameRequest& request) {
    return callFFmpeg<GrabbedFrame>("zorvanGrabFrame", path, request);
}

} // namespace zorvan::avfoundation
