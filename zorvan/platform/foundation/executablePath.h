#pragma once

#include <string>

namespace zorvan {

/// The path of the running executable. When its file was replaced or removed since the program
/// started, as an update does, the path it had; empty when the system does not tell.
std::string executablePath();

} // namespace zorvan
