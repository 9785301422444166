// makeGolden FOLDER NUMBER: makes that golden database, as FOLDER/zorvan/golden-NUMBER.settings.

#include "Golden.h"

#include <cstdlib>

int main(int count, char** arguments) {
    if (count != 3)
        return 2;
    const std::string number = arguments[2];
    ::setenv("XDG_CONFIG_HOME", arguments[1], 1);
    const auto store = zorvan::NSUserDefaults::create({.suiteName = "golden-" + number});
    for (const auto& [name, write] : zorvan::Golden(std::stoi(number)).writers)
        write(*store);
    store->setObject("gone", "Removed");
    store->removeObjectForKey("Removed");
    return store->synchronize() ? 0 : 1;
}
