#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace zorvan::internal {

/// The value of an environment variable that holds an absolute path. Absent otherwise, and in a
/// program that runs with more rights than its user has.
std::optional<std::string> pathFromEnvironment(const char* name);

/// The user's own folder for data and for settings: `$XDG_DATA_HOME` and `$XDG_CONFIG_HOME`, or
/// what the desktops agree on below the home folder. Absent without a home folder. They may not be
/// there yet.
std::optional<std::string> dataFolder();
std::optional<std::string> configurationFolder();

/// The same with the folders that all users share (`$XDG_DATA_DIRS`, `$XDG_CONFIG_DIRS`) behind the
/// user's own. Relative ones do not count: they would let the current folder decide.
std::vector<std::filesystem::path> dataFolders();
std::vector<std::filesystem::path> configurationFolders();

} // namespace zorvan::internal
