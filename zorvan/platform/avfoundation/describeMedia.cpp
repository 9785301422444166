#include <zorvan/platform/avfoundation/describeMedia.h>

#include <zorvan/platform/avfoundation/internal/ffmpegMedia.h>

namespace zorvan::avfoundation {

std::optional<MediaDescription> describeMedia(const std::string& path,
                                              const MediaReadingOptions& options) {
    static const auto function = ZORVAN_FUNCTION(ZORVAN_FFMPEG_MEDIA, zorvanDescribeMedia);
    return callFFmpeg(function, path, options);
}

} // namespace zorvan::avfoundation
