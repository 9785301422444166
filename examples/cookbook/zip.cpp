// Files in a zip archive
//
// Folders with all they hold; the archive appears in one step, under a name that is free.
//
// Link Zorvan::Files.

#include <zorvan/files/NSFileManager.h>

#include <iostream>

using namespace zorvan;

int main() {
    const auto& manager = *NSFileManager::defaultManager();
    const std::optional<Data> archive =
        manager.zipItems({URL({.fileURLWithPath = "samples/travel"}),
                          URL({.fileURLWithPath = "samples/plain.heic"})});
    if (!archive) // an item cannot be read
        return 1;
    const URL wanted({.fileURLWithPath = "photos.zip"});
    std::cout << manager.createAvailableFile(wanted, *archive).lastPathComponent() << '\n';
}
