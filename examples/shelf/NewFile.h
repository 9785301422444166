#pragma once

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/foundation/URL.h>

/// Writes a file that was not there before, and never over another: when `wanted` is taken the name
/// is numbered, also when another process takes it at this very moment. The file appears in one
/// step, with all its bytes. Gives the URL it got; throws `std::system_error`.
zorvan::URL writeNewFile(const zorvan::URL& wanted, const zorvan::Data& bytes);
