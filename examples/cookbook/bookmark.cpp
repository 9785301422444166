// The last document, also after it was renamed
//
// Link Zorvan::Files, Zorvan::Settings.

#include <zorvan/files/NSFileManager.h>
#include <zorvan/settings/NSUserDefaults.h>
#include <zorvan/settings/PersistentURLUDC.h>

#include <iostream>

using namespace zorvan;

const OptionalUserDefaultsKey<PersistentURLUDC> lastDocument({.name = "LastDocument"});

int main() {
    const auto& manager = *NSFileManager::defaultManager();
    const URL draft({.fileURLWithPath = "draft.txt"});
    const auto store = NSUserDefaults::create({.suiteName = "cookbook"});
    store->setOpt(lastDocument, manager.createAvailableFile(draft));

    const URL folder = manager.createDirectory(URL({.fileURLWithPath = "letters"}));
    manager.moveItemToAvailableURL(draft, folder.appendingPathComponent("final.txt"));

    if (const std::optional<URL> found = store->value(lastDocument))
        std::cout << folder.lastPathComponent() << '/' << found->lastPathComponent() << '\n';
}
