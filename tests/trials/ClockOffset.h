#pragma once

#include <chrono>

/// Sets the clock that this program, with its libraries, reads: so much ahead of the real one.
void setClockOffset(std::chrono::seconds offset) noexcept;
