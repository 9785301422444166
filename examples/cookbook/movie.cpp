// Where and when a movie was taken
//
// Nothing is decoded: the header of the file tells. Put a movie of yours beside the program as `lake.mov`; the one here
// has two seconds, a place and a date.
//
// Link Zorvan::MediaAssets.

#include <zorvan/media/AVAsset.h>
#include <zorvan/text/CMTimeArithmetic.h>

#include <chrono>
#include <iostream>

using namespace zorvan;

int main() {
    const auto movie = AVAsset::create(URL({.fileURLWithPath = "lake.mov"}));
    if (!movie->isReadable())
        return 1;
    const CGSize size = movie->computeNaturalSize();
    std::cout << size.roundIntDesc() << ", " << movie->computeFrameRate() << " frames a second, "
              << movie->duration().hhmmssDesc() << '\n';
    if (const std::optional<Location> place = movie->parseLocationFromMetadata())
        std::cout << "taken at " << place->latitude << ", " << place->longitude << '\n';
    if (const std::optional<Date> date = movie->parseCreationDate())
        std::cout << std::chrono::floor<std::chrono::seconds>(date->time_since_epoch()).count()
                  << " s after the start of 1970\n";
}
