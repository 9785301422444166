#pragma once

#include <chrono>
#include <cstddef>
#include <vector>

namespace zorvan {

/// Bytes, owned.
using Data = std::vector<std::byte>;

/// A moment in time.
using Date = std::chrono::system_clock::time_point;

} // namespace zorvan
