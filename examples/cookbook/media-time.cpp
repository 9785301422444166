// Times of a film, exactly
//
// As fractions: ten frames at 30000/1001 a second are ten frames, not 0.3336 s.
//
// Link Zorvan::Text.

#include <zorvan/text/CMTime.h>
#include <zorvan/text/CMTimeArithmetic.h>
#include <zorvan/text/CMTimeIterator.h>
#include <zorvan/text/CMTimeRange.h>

#include <iostream>

using namespace zorvan;

int main() {
    const CMTime frame = CMTimeMake(1001, 30000);
    const CMTime tenFrames = frame * 10;
    std::cout << tenFrames.value << '/' << tenFrames.timescale << " s\n";

    const CMTimeRange film({.duration = CMTime({.seconds = 3725.5})});
    std::cout << film.duration.hhmmssDesc() << ", for a file name " << film.duration.hhmmssmsName()
              << '\n';
    for (const CMTime& time : film.split(3)) // where to take three pictures of it
        std::cout << time.hhmmssDesc() << (film.contains(time) ? "\n" : " lies outside\n");

    if (!kCMTimeIndefinite.isNumeric()) // the length of a live stream
        std::cout << kCMTimeIndefinite.safeSeconds() << " s to show\n";
}
