// What a movie file says of itself. FFmpeg takes the containers apart; that nothing else is opened,
// and that what comes out is plain numbers, is ours.

#include <fuzz/Fuzzing.h>
#include <zorvan/platform/avfoundation/describeMedia.h>

#include <cmath>
#include <sys/mman.h>
#include <unistd.h>

using namespace zorvan::avfoundation;

void tryOut(std::span<const std::uint8_t> input) {
    static const int file = memfd_create("movie", 0);
    static const std::string path = "/proc/self/fd/" + std::to_string(file);
    if (ftruncate(file, 0) != 0 || pwrite(file, input.data(), input.size(), 0) != std::ssize(input))
        return;
    const auto description = describeMedia(path);
    if (!description)
        return;
    for (const MediaTrack& track : description->tracks) {
        require(track.frameRate >= 0 && std::isfinite(track.frameRate));
        require(track.naturalSize.width >= 0 && track.naturalSize.height >= 0);
    }
    const auto& duration = description->duration;
    require(!duration || (duration->value >= 0 && duration->timescale > 0));
}
