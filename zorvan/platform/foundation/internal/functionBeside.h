#pragma once

#include <zorvan/platform/foundation/LibraryLog.h>

#include <dlfcn.h>
#include <string>

namespace zorvan::internal {

/// A function of a library of ours that stands beside the one this is compiled into, and that is
/// loaded by its first use, because what it needs takes long to load. Null when it, or what it
/// needs, is not there, which goes to the log; null for an empty name, of one that was not built.
///
/// Functions found so have no mangled name, so they give their results by reference.
static inline void* functionBeside(const char* library, const char* name) {
    static const char here = 0;
    Dl_info self{};
    if (*library == '\0' || ::dladdr(&here, &self) == 0)
        return nullptr;
    const std::string own = self.dli_fname;
    const std::string file = own.substr(0, own.rfind('/') + 1) + library;
    void* const opened = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (opened)
        return ::dlsym(opened, name);
    LibraryLog::write({LibraryLog::Level::warning, "libraries", ::dlerror()});
    return nullptr;
}

/// Keeps compilers from saying that a function which is linked is never null.
template <class Function>
inline Function* itself(Function* function) noexcept {
    return function;
}

} // namespace zorvan::internal

/// The function, by that way; in a program that holds all of the library, itself.
#ifdef ZORVAN_STATIC
#define ZORVAN_FUNCTION_BESIDE(library, function) zorvan::internal::itself(function)
#else
#define ZORVAN_FUNCTION_BESIDE(library, function)                                                  \
    reinterpret_cast<decltype(&(function))>(zorvan::internal::functionBeside(library, #function))
#endif
