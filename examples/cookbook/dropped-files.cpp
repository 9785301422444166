// What to do with a file that was dropped or opened
//
// Types conform to others, so one question answers for every format of a kind.
//
// Link Zorvan::Files.

#include <zorvan/files/NSPasteboard.h>
#include <zorvan/files/URL.h>

#include <iostream>

using namespace zorvan;

void open(const URL& file) {
    const std::optional<UTIType> type = utiType(file);
    std::cout << file.lastPathComponent() << ": ";
    if (!type)
        std::cout << "of no known type\n";
    else if (type->conforms(UTIType::image()))
        std::cout << "a picture, " << type->identifier() << '\n';
    else if (conforms(file, {.toOneOf = {UTIType::movie(), UTIType::audio()}}))
        std::cout << "something to play, " << type->identifier() << '\n';
    else
        std::cout << type->localizedDescription().value_or(type->identifier()) << '\n';
}

int main() {
    const auto drop = NSPasteboard::create(); // as a drag would fill it
    for (const char* name : {"lake.heic", "LAKE.JPG", "lake.mov", "notes.txt", "lake.unknown"})
        drop->writeObjects({URL({.fileURLWithPath = name})});
    for (const URL& file : drop->fileURLs())
        open(file);
}
