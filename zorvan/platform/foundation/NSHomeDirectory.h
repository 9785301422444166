#pragma once

#include <string>

namespace zorvan {

/// The path of the user's home folder: `$HOME` when it is an absolute path, else what the system
/// has for the user; empty when it has nothing.
[[nodiscard]] std::string NSHomeDirectory();

} // namespace zorvan
