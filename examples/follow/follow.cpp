// A setting that follows. Start it without arguments in one terminal, and in another, as often as
// you like, with a number by which the volume changes:
//
//   follow            shows the volume, and each change that another process makes
//   follow -5         changes it

#include <zorvan/platform/dispatch/MainQueue.h>
#include <zorvan/settings/NSUserDefaults.h>
#include <zorvan/settings/NumberCoders.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>

using namespace zorvan;

namespace {

const EvaluedUserDefaultsKey<IntUDC> volume({.name = "Volume", .value = 50});

int change(NSUserDefaults& store, std::int64_t step) {
    const bool isStored = store.modify(volume, [step](std::int64_t& value) {
        value = std::clamp<std::int64_t>(value + step, 0, 100);
    });
    return isStored ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int main(int count, char** arguments) {
    const auto store = NSUserDefaults::create({.suiteName = "follow-example"});
    if (count > 1)
        return change(*store, std::clamp(std::atoi(arguments[1]), -100, 100));
    const auto observation = store->observe(volume, [](std::int64_t before, std::int64_t after) {
        std::cout << "volume: " << before << " -> " << after << std::endl;
    });
    std::cout << "volume: " << store->value(volume) << std::endl;
    MainQueue::run();
}
