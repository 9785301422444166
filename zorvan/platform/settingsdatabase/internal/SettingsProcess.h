#pragma once

#include <zorvan/platform/settingsdatabase/SettingsDatabase.h>

#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace zorvan::internal {

/// The databases of the process by their paths. Never destroyed, since settings may be used while
/// the program ends.
struct OpenDatabases {
    std::mutex mutex; // before all of a database's
    std::map<std::string, std::weak_ptr<SettingsDatabase>, std::less<>> byPath;
    SettingsDatabase::ProblemHandler handler;

    static OpenDatabases& shared();
};

} // namespace zorvan::internal
