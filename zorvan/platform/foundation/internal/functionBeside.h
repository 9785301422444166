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

/// Null, as for a library that cannot be loaded; the log is told what the build was without.
template <class Function>
inline Function* functionLeftOut(const char* wanted) {
    const std::string message = std::string("This needs a build of the library with ") + wanted;
    LibraryLog::write({LibraryLog::Level::warning, "libraries", message});
    return nullptr;
}

/// Keeps compilers from saying that a function which is linked is never null.
template <class Function>
inline Function* itself(Function* function) noexcept {
    return function;
}

} // namespace zorvan::internal

/// A function of the library that `place` stands for, which zorvan_load_by_use defines: found
/// beside this one; itself in a program that holds all of the library; null in a build without.
#define ZORVAN_FUNCTION(place, function) ZORVAN_FUNCTION_OF_KIND(place, function)
#define ZORVAN_FUNCTION_OF_KIND(kind, text, function) ZORVAN_FUNCTION_##kind(text, function)
#define ZORVAN_FUNCTION_BESIDE(library, function)                                                  \
    reinterpret_cast<decltype(&(function))>(zorvan::internal::functionBeside(library, #function))
#define ZORVAN_FUNCTION_LINKED(library, function) zorvan::internal::itself(function)
#define ZORVAN_FUNCTION_LEFT_OUT(wanted, function)                                                 \
    zorvan::internal::functionLeftOut<decltype(function)>(wanted)
