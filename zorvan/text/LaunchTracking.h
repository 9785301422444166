#pragma once

namespace zorvan {

class NSUserDefaults;

/// Takes note of a launch in the application's settings. Call it once per launch, early, on the
/// main thread; after it, `UserDefaultsKeys` tell the version, whether it is new, the number of
/// launches and the dates. Link `Zorvan::LaunchTracking`.
///
/// In this order, each write followed at once by the notification of its key:
///
/// 1. writes the main bundle's version under "VersionNumber";
/// 2. adds one to "LaunchesCount", which stays at the largest number;
/// 3. when that made it 1, writes the date under "FirstLaunchDate";
/// 4. when the version that ran last, 0.0.0 for none, is below the current one: writes true under
///    "VersionDidUpdate" and the date under "UpdateLaunchDate"; else writes false under
///    "VersionDidUpdate".
void updateStatisticsAtLaunch(NSUserDefaults& store);

} // namespace zorvan
