#pragma once

#include <zorvan/platform/avfoundation/describeMedia.h>
#include <zorvan/platform/avfoundation/grabFrame.h>
#include <zorvan/platform/foundation/internal/functionBeside.h>

#include <optional>
#include <string>

// The functions that stand on FFmpeg are in a library of their own: FFmpeg takes a program longer
// to load than all else together.

namespace zorvan::avfoundation {

extern "C" void zorvanGrabFrame(const std::string& path, const FrameRequest& request,
                                std::optional<GrabbedFrame>& result);
extern "C" void zorvanDescribeMedia(const std::string& path, const MediaReadingOptions& options,
                                    std::optional<MediaDescription>& result);

/// What the function gives; absent when there is none, since the library, or one that it needs, is
/// not there.
template <class Result, class Request>
std::optional<Result> callFFmpeg(void (*function)(const std::string&, const Request&,
                                                  std::optional<Result>&),
                                 const std::string& path, const Request& request) {
    std::optional<Result> result;
    if (function)
        function(path, request, result);
    return result;
}

} // namespace zorvan::avfoundation
