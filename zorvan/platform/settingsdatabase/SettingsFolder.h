#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zorvan {

/// The folder of the user's settings: "zorvan" in `$XDG_CONFIG_HOME`, which must be an absolute
/// path, else in ".config" of the home folder. It need not exist. Absent when the user has no home.
std::optional<std::string> settingsFolder();

/// The database of a domain in that folder: the name and ".settings". Bytes that are no ASCII
/// letter, digit, ".", "_" or "-", and a dot in front, are written "%XX". Absent when the name is
/// empty or needs more than 200 bytes, and without a folder.
std::optional<std::string> settingsPath(std::string_view domain);

} // namespace zorvan
