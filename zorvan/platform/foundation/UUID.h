#pragma once

#include <string>

namespace zorvan {

/// A new random universally unique identifier (version 4) as upper-case text,
/// "E621E1F8-C36C-495A-93FC-0C247A3E6E5F". Drawn from the kernel's generator.
std::string makeUUIDString();

} // namespace zorvan
