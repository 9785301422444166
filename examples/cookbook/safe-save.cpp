// A document saved so that no crash loses the old one
//
// Link Zorvan::Files.

#include <zorvan/files/NSFileManager.h>

#include <filesystem>
#include <fstream>
#include <iostream>

using namespace zorvan;

/// False, and the document as it was, when it cannot be saved.
bool save(const std::string& text, const URL& document) try {
    const auto& manager = *NSFileManager::defaultManager();
    const URL fresh = manager.createAvailableFile(manager.temporaryURL({.for_ = document}),
                                                  std::as_bytes(std::span(text)));
    // Keeps the permissions of the old one, which goes only when the new one is on the disk.
    manager.overwritingCopy(fresh, document);
    return std::filesystem::remove(fresh.path());
} catch (const std::filesystem::filesystem_error& error) {
    std::cout << "not saved: " << error.code().message() << '\n';
    return false;
}

int main() {
    const URL document({.fileURLWithPath = "letter.txt"});
    for (const char* text : {"Dear Ada", "Dear Ada, dear Blaise"})
        if (save(text, document))
            std::cout << std::ifstream(document.path()).rdbuf() << '\n';
    save("Dear Ada", URL({.fileURLWithPath = "no such folder/letter.txt"}));
}
