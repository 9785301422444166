// The pictures of a folder, by what they are, and names that nobody else has.
// Link Zorvan::Files.

#include <zorvan/files.h>

#include <iostream>

using namespace zorvan;

int main() {
    const auto files = FileIterator::create({URL({.fileURLWithPath = "samples/travel"})});
    files->setAllowedTypes({{UTIType::image()}}); // JPEG, HEIC, raw, whatever is a picture
    std::int64_t kilobytes = 0;
    for (const URL& photo : *files)
        kilobytes += NSFileManager::defaultManager()->sizeInMoOfItem(photo).value_or(0);
    std::cout << (kilobytes > 0 ? "pictures" : "nothing") << '\n';

    const URL wanted({.fileURLWithPath = "lake.txt"});
    for (int i = 0; i < 2; ++i) // at once in ten processes, each gets a name of its own
        std::cout
            << NSFileManager::defaultManager()->createAvailableFile(wanted).lastPathComponent()
            << '\n';
}
