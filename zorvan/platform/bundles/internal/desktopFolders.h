#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace zorvan::desktop {

/// The parts between separators, those that are empty left out.
std::vector<std::string> split(std::string_view text, char separator);

/// The folders for shared data and for settings, the user's own first, after `$XDG_DATA_HOME`,
/// `$XDG_CONFIG_HOME` and the like. Relative ones do not count.
std::vector<std::filesystem::path> dataFolders();
std::vector<std::filesystem::path> configurationFolders();

/// Where icons and themes of icons are.
std::vector<std::filesystem::path> iconFolders();

} // namespace zorvan::desktop
