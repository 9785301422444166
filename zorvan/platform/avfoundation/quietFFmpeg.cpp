#include <zorvan/platform/avfoundation/internal/quietFFmpeg.h>

extern "C" {
#include <libavutil/log.h>
}

namespace zorvan::avfoundation {

void quietFFmpeg() noexcept {
    static const bool once = [] {
        if (av_log_get_level() == AV_LOG_INFO) // FFmpeg's own beginning
            av_log_set_level(AV_LOG_QUIET);
        return true;
    }();
    static_cast<void>(once);
}

} // namespace zorvan::avfoundation
