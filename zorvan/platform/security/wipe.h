#pragma once

#include <zorvan/platform/foundation/Data.h>

#include <string>

namespace zorvan {

/// Overwrites a secret, in a way that no compiler leaves out, and empties it. What was copied from
/// it before stays where it is.
/// @{
void wipe(Data& secret) noexcept;
void wipe(std::string& secret) noexcept;
/// @}

} // namespace zorvan
