#pragma once

namespace zorvan::avfoundation {

/// Keeps FFmpeg from writing to standard error about every broken file. A program that has set a
/// level of its own keeps it.
void quietFFmpeg() noexcept;

} // namespace zorvan::avfoundation
