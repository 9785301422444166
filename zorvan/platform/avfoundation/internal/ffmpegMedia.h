#pragma once

#include <zorvan/platform/foundation/internal/functionBeside.h>

#include <optional>
#include <string>

// The functions that stand on FFmpeg are in a library of their own: FFmpeg takes a program longer to
// load than all else together.

namespace zorvan::avfoundation {

template <class Request, class Result>
using FFmpegFunction = void (*)(const std::string& path, const Request& request,
                                std::optional<Result>& result);

/// Calls the function of that name; absent when the library, or one that it needs, is not there.
template <class Result, class Request>
std::optional<Result> callFFmpeg(const char* name, const std::string& path,
                                 const Request& request) {
    static const auto function = reinterpret_cast<FFmpegFunction<Request, Result>>(
        internal::functionBeside(ZORVAN_FFMPEG_MEDIA, name));
    std::optional<Result> result;
    if (function)
        function(path, request, result);
    return result;
}

} // namespace zorvan::avfoundation
