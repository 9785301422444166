#include <zorvan/platform/avfoundation/describeMedia.h>

#include <zorvan/platform/avfoundation/internal/ffmpegMedia.h>

namespace zorvan::avfoundation {

std::optional<MediaDescription> describeMedia(const std::string& path,
                                              const MediaReadingOptions& options) {
    return callFFmpeg<MediaDescription>("zorvanDescribeMedia", path, options);
}

} // namespace zorvan::avfoundation
