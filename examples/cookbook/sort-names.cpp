// Names in the order in which people read them
//
// Case and accents aside, digits as numbers, by the alphabet of the user's language.
//
// Link Zorvan::Collections, Zorvan::Text.

#include <zorvan/collections/FinderOrder.h>
#include <zorvan/text/String.h>

#include <iostream>

using namespace zorvan;

struct Track {
    int number;
    std::string title;
};

int main() {
    for (const std::string& name : finderSorted(
             std::vector<std::string>{"Image 10.png", "image 9.png", "Été.png", "Image 1.png"}))
        std::cout << name << '\n';

    // Anything that has a name; equal names keep their order.
    std::vector<Track> tracks = {{1, "Zürich"}, {2, "aarau"}, {3, "Basel"}};
    finderSort(tracks, &Track::title);
    for (const Track& track : tracks)
        std::cout << track.number << ' ' << track.title << '\n';

    if (finderCompare("file2", "File10") == ComparisonResult::orderedAscending)
        std::cout << "file2 comes before File10\n";
}
