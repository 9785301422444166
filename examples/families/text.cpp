// Text as people read it, versions, and times of a film.
// Link Zorvan::Text.

#include <zorvan/text.h>

#include <iostream>

using namespace zorvan;

int main() {
    // Characters, not bytes.
    std::cout << reducedStringAtMiddle("👩‍👩‍👧‍👦 at the lake.jpg", 15) << '\n';
    std::cout << incremented("File (9)") << '\n';
    const bool isBefore = finderCompare("File 2", "file 10") == ComparisonResult::orderedAscending;
    const bool isNewer = BundleVersion::make("2.10") > BundleVersion::make("2.9.5");
    std::cout << isBefore << ' ' << isNewer << '\n';

    const CMTime tenFrames = CMTimeMake(1001, 30000) * 10; // exactly, not 0.3336 s
    std::cout << tenFrames.value << '/' << tenFrames.timescale << ' '
              << CMTime({.seconds = 3725.5}).hhmmssDesc() << '\n';
}
