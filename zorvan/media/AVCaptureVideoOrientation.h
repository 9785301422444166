#pragma once

#include <cstdint>

namespace zorvan {

/// How a camera was held when it took a picture.
enum class AVCaptureVideoOrientation : std::int64_t {
    portrait = 1,
    portraitUpsideDown = 2,
    landscapeRight = 3,
    landscapeLeft = 4
};

} // namespace zorvan
