#pragma once

#include <cstdint>

namespace zorvan {

/// What a track holds.
enum class AVMediaType : std::uint8_t { video, audio, text, other };

} // namespace zorvan
