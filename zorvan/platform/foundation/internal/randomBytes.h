#pragma once

#include <array>

namespace zorvan::internal {

/// Bytes that nobody can guess, from the kernel; stops the program when it has none.
std::array<unsigned char, 16> randomBytes();

} // namespace zorvan::internal
