// Photos imported without overwriting any
//
// Twice, so that the second import finds every name taken.
//
// Link Zorvan::Files.

#include <zorvan/files/FileIterator.h>
#include <zorvan/files/NSFileManager.h>

#include <filesystem>
#include <iostream>

using namespace zorvan;

/// Copies the pictures of a folder into another one, each under the first name that is free.
void importPictures(const URL& card, const URL& album) {
    const auto& manager = *NSFileManager::defaultManager();
    const URL incoming =
        manager.createAvailableDirectory(album.appendingPathComponent(".incoming"));
    const auto photos = FileIterator::create({card});
    photos->setAllowedTypes({{UTIType::image()}});
    for (const URL& photo : *photos) {
        // Where nobody looks first, so that the photo appears whole and in one step.
        const URL copy = incoming.appendingPathComponent(photo.lastPathComponent());
        manager.overwritingCopy(photo, copy);
        const URL wanted = album.appendingPathComponent(photo.lastPathComponent());
        std::cout << manager.moveItemToAvailableURL(copy, wanted).lastPathComponent() << '\n';
    }
    std::filesystem::remove(incoming.path());
}

int main() {
    const URL card({.fileURLWithPath = "samples/travel"});
    const URL album({.fileURLWithPath = "album"});
    NSFileManager::defaultManager()->createDirectory(album);
    importPictures(card, album);
    importPictures(card, album);
}
