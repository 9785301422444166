// Opening a movie for its size, rate, orientation and date, beside the calls of FFmpeg's libraries
// that ffprobe makes for the same.

#include "MediaBench.h"

#include <zorvan/media/AVAsset.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include <unistd.h>

extern "C" {
#include <libavformat/avformat.h>
}

namespace {

using namespace mediabench;
using namespace zorvan;

struct Movie {
    const char* name;
    const char* options;
};

constexpr Movie movies[] = {
    {"h264.mp4", "-c:v libx264 -preset ultrafast"},
    {"h264-head-first.mp4", "-c:v libx264 -preset ultrafast -movflags +faststart"},
    {"mjpeg.mov", "-c:v mjpeg"},
    {"h264.mkv", "-c:v libx264 -preset ultrafast"},
    {"h264.ts", "-c:v libx264 -preset ultrafast"},
};

/// A minute of 720p with sound.
void makeMovie(const std::string& path, const char* options) {
    const std::string command =
        "ffmpeg -v error -nostdin -y -f lavfi -i testsrc=s=1280x720:r=30:d=60 -f lavfi -i "
        "sine=d=60 "
        "-metadata creation_time=2024-05-31T12:34:56Z -c:a aac -pix_fmt yuvj420p " +
        std::string(options) + " '" + path + "'";
    if (std::system(command.c_str()) != 0)
        std::exit(1);
}

void openOurs(const URL& url) {
    const auto asset = AVAsset::create(url);
    const CGSize size = asset->computeNaturalSize();
    const float rate = asset->computeFrameRate();
    const auto orientation = asset->computeNaturalOrientation();
    const auto date = asset->parseCreationDate();
    if (size.width != 1280 || rate < 29 || !orientation)
        std::exit(1);
    keep(&date);
}

void openAsFFprobe(const std::string& path) {
    AVFormatContext* input = nullptr;
    if (avformat_open_input(&input, path.c_str(), nullptr, nullptr) < 0 ||
        avformat_find_stream_info(input, nullptr) < 0)
        std::exit(1);
    const AVStream* const stream = input->streams[0];
    if (stream->codecpar->width != 1280 || av_q2d(stream->avg_frame_rate) < 29)
        std::exit(1);
    keep(av_stream_get_side_data(stream, AV_PKT_DATA_DISPLAYMATRIX, nullptr));
    keep(av_dict_get(input->metadata, "creation_time", nullptr, 0));
    avformat_close_input(&input);
}

} // namespace

int main() {
    av_log_set_level(AV_LOG_QUIET);
    char folder[] = "/tmp/movies.XXXXXX";
    if (!mkdtemp(folder))
        return 1;
    for (const Movie& movie : movies) {
        const std::string path = std::string(folder) + "/" + movie.name;
        makeMovie(path, movie.options);
        const URL url({.fileURLWithPath = path});
        compare(
            movie.name, [&] { openOurs(url); }, "open and find stream info",
            [&] { openAsFFprobe(path); });
        unlink(path.c_str());
    }
    rmdir(folder);
}
