// makeGolden FOLDER: made the golden database, as FOLDER/zorvan/golden.settings.

#include "Golden.h"

#include <cstdlib>

int main(int count, char** arguments) {
    if (count != 2)
        return 2;
    ::setenv("XDG_CONFIG_HOME", arguments[1], 1);
    const auto store = zorvan::NSUserDefaults::create({.suiteName = "golden"});
    for (const auto& [name, write] : zorvan::Golden().writers)
        write(*store);
    store->setObject("gone", "Removed");
    store->removeObjectForKey("Removed");
    return store->synchronize() ? 0 : 1;
}
