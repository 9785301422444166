// What a movie file says of itself. FFmpeg takes the containers apart; that nothing else is opened,
// and that what comes out is plain numbers, is ours.

#include <zorvan/platform/avfoundation/describeMedia.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

using namespace zorvan::avfoundation;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static const int file = memfd_create("movie", 0);
    static const std::string path = "/proc/self/fd/" + std::to_string(file);
    if (ftruncate(file, 0) != 0 || pwrite(file, bytes, size, 0) != static_cast<ssize_t>(size))
        return 0;
    const auto description = describeMedia(path);
    if (!description)
        return 0;
    for (const MediaTrack& track : description->tracks) {
        const bool isSize = track.naturalSize.width >= 0 && track.naturalSize.height >= 0;
        if (!(track.frameRate >= 0) || !std::isfinite(track.frameRate) || !isSize)
            std::abort();
    }
    if (description->duration &&
        (description->duration->value < 0 || description->duration->timescale <= 0))
        std::abort();
    return 0;
}
