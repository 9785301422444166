// An application at its start. Prints, for each notification, the key and what is stored under it.
// With "late" it uses its settings once more while it ends.

#include <zorvan/platform/dispatch/NSNotificationCenter.h>
#include <zorvan/settings/BundleVersionUDC.h>
#include <zorvan/settings/NSUserDefaults.h>
#include <zorvan/settings/NumberCoders.h>
#include <zorvan/settings/ObjectCoders.h>
#include <zorvan/text/LaunchTracking.h>

#include <cstdio>
#include <cstring>
#include <filesystem>

using namespace zorvan;

namespace {

/// Older than everything that the library makes, so that it ends after it.
struct Older {
    bool isLate = false;
    ~Older() {
        if (!isLate)
            return;
        NSUserDefaults& store = *NSUserDefaults::standardUserDefaults();
        store.setInteger(store.integerForKey("late") + 1, "late");
        store.clearAllData();
        store.setInteger(store.integerForKey("late") + 2, "late");
        std::printf("late %d\n", static_cast<int>(store.integerForKey("late")));
    }
} older;

} // namespace

int main(int argc, char** argv) {
    older.isLate = argc == 2 && std::strcmp(argv[1], "late") == 0;
    if (argc == 2 && std::strcmp(argv[1], "updated") == 0) {
        const std::string file = argv[0], next = file + ".next";
        std::filesystem::copy_file(file, next);
        std::filesystem::rename(next, file);
    }
    const auto store = NSUserDefaults::standardUserDefaults();
    const auto started = std::chrono::system_clock::now();
    NSNotificationCenter::defaultCenter()->addObserver(
        NSUserDefaults::didSetKeyNotification(), store, {}, [&](const Notification& note) {
            const std::string key = NSUserDefaults::editedKeyName(note).value_or("?");
            const auto date = store->date(key);
            const std::string text = date && *date >= started ? "now"
                                     : date                   ? "before"
                                                              : *store->stringForKey(key);
            std::printf("%s=%s\n", key.c_str(), text.c_str());
        });
    for (int i = 1; i + 1 < argc; i += 2)
        store->setObject(argv[i + 1], argv[i]);
    if (argc == 2 && std::strcmp(argv[1], "clear") == 0) {
        store->clearAllData();
        std::printf("%zu left\n", store->persistentDomainForName(store->domainName()).size());
        return 0;
    }
    updateStatisticsAtLaunch(*store);
    return 0;
}
