#pragma once

#include <dlfcn.h>
#include <optional>
#include <string>

// The functions that stand on FFmpeg are in a library of their own, which is loaded when the first
// file is opened: FFmpeg takes a program longer to load than all else together.

namespace zorvan::avfoundation {

/// Gives its result by reference, because functions without a mangled name give none of C++.
template <class Request, class Result>
using FFmpegFunction = void (*)(const std::string& path, const Request& request,
                                std::optional<Result>& result);

/// Calls the function of that name; absent when the library, or one that it needs, is not there.
template <class Result, class Request>
std::optional<Result> callFFmpeg(const char* name, const std::string& path,
                                 const Request& request) {
    static const auto function = [name]() -> FFmpegFunction<Request, Result> {
        // It stands beside the library that this code is in.
        static const char here = 0;
        Dl_info self{};
        if (::dladdr(&here, &self) == 0)
            return nullptr;
        const std::string own = self.dli_fname;
        const std::string file = own.substr(0, own.rfind('/') + 1) + ZORVAN_FFMPEG_MEDIA;
        void* const library = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
        void* const found = library ? ::dlsym(library, name) : nullptr;
        return reinterpret_cast<FFmpegFunction<Request, Result>>(found);
    }();
    std::optional<Result> result;
    if (function)
        function(path, request, result);
    return result;
}

} // namespace zorvan::avfoundation
