#pragma once

#include <zorvan/platform/foundation/LibraryLog.h>

#include <dlfcn.h>
#include <string>

namespace zorvan::internal {

/// A function of a library of ours that stands beside the one this is compiled into, and that is
/// loaded by its first use, because what it needs takes long to load. Null when it, or what it
/// needs, is not there, which goes to the log.
///
/// Functions found so have no mangled name, so they give their results by reference.
static inline void* functionBeside(const char* library, const char* name) {
    static const char here = 0;
    Dl_info self{};
    if (::dladdr(&here, &self) == 0)
        return nullptr;
    const std::string own = self.dli_fname;
    const std::string file = own.substr(0, own.rfind('/') + 1) + library;
    void* const opened = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (opened)
        return ::dlsym(opened, name);
    LibraryLog::write({LibraryLog::Level::warning, "libraries", ::dlerror()});
    return nullptr;
}

} // namespace zorvan::internal
