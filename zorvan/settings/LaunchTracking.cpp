#include <zorvan/text/LaunchTracking.h>

#include <zorvan/settings/BundleVersionUDC.h>
#include <zorvan/settings/NSUserDefaults.h>
#include <zorvan/settings/NumberCoders.h>
#include <zorvan/settings/ObjectCoders.h>
#include <zorvan/text/NSBundle.h>

#include <chrono>
#include <limits>

namespace zorvan {

// Never destroyed, so that they may be used while the program ends.

const EvaluedUserDefaultsKey<BundleVersionUDC>& UserDefaultsKeys::versionNumber() {
    static const auto& key = *new EvaluedUserDefaultsKey<BundleVersionUDC>(
        {.name = "VersionNumber", .value = BundleVersion::zero});
    return key;
}

const EvaluedUserDefaultsKey<BoolUDC>& UserDefaultsKeys::versionDidUpdate() {
    static const auto& key =
        *new EvaluedUserDefaultsKey<BoolUDC>({.name = "VersionDidUpdate", .value = false});
    return key;
}

const EvaluedUserDefaultsKey<IntUDC>& UserDefaultsKeys::launchesCount() {
    static const auto& key =
        *new EvaluedUserDefaultsKey<IntUDC>({.name = "LaunchesCount", .value = 0});
    return key;
}

const OptionalUserDefaultsKey<DateUDC>& UserDefaultsKeys::firstLaunchDate() {
    static const auto& key = *new OptionalUserDefaultsKey<DateUDC>({.name = "FirstLaunchDate"});
    return key;
}

const OptionalUserDefaultsKey<DateUDC>& UserDefaultsKeys::updateLaunchDate() {
    static const auto& key = *new OptionalUserDefaultsKey<DateUDC>({.name = "UpdateLaunchDate"});
    return key;
}

void updateStatisticsAtLaunch(NSUserDefaults& store) {
    const auto& version = UserDefaultsKeys::versionNumber();
    const auto stored = store.stringForKey(version.name);
    const BundleVersion previous =
        (stored ? BundleVersion::make(*stored) : std::nullopt).value_or(version.value);
    const BundleVersion current = zorvan::version(*NSBundle::mainBundle());
    store.set(version, current);

    const auto& launches = UserDefaultsKeys::launchesCount();
    const std::int64_t count = store.value(launches);
    store.set(launches, count == std::numeric_limits<std::int64_t>::max() ? count : count + 1);
    if (store.value(launches) == 1)
        store.setOpt(UserDefaultsKeys::firstLaunchDate(), std::chrono::system_clock::now());

    const bool isUpdate = previous < current;
    store.set(UserDefaultsKeys::versionDidUpdate(), isUpdate);
    if (isUpdate)
        store.setOpt(UserDefaultsKeys::updateLaunchDate(), std::chrono::system_clock::now());
}

} // namespace zorvan
