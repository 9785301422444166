#pragma once

#include <zorvan/media/StringValue.h>

namespace zorvan {

/// A way to encode pictures in a movie, by its four-character code. Any text is one; the constants
/// below are the known ones.
class AVVideoCodecType : public StringValue<AVVideoCodecType> {
public:
    using StringValue::StringValue;
};

/// Its four-character code is its raw value.
/// @{
inline constinit const AVVideoCodecType AVVideoCodecTypeHEVC({.literal = "hvc1"});
inline constinit const AVVideoCodecType AVVideoCodecTypeHEVCWithAlpha({.literal = "muxa"});
inline constinit const AVVideoCodecType AVVideoCodecTypeH264({.literal = "avc1"});
inline constinit const AVVideoCodecType AVVideoCodecTypeJPEG({.literal = "jpeg"});
inline constinit const AVVideoCodecType AVVideoCodecTypeAppleProRes4444({.literal = "ap4h"});
inline constinit const AVVideoCodecType AVVideoCodecTypeAppleProRes422({.literal = "apcn"});
inline constinit const AVVideoCodecType AVVideoCodecTypeAppleProRes422HQ({.literal = "apch"});
inline constinit const AVVideoCodecType AVVideoCodecTypeAppleProRes422LT({.literal = "apcs"});
inline constinit const AVVideoCodecType AVVideoCodecTypeAppleProRes422Proxy({.literal = "apco"});
/// @}

} // namespace zorvan
