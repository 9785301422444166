#include "MemoryFailure.h"

#include <cerrno>
#include <cstdlib>
#include <dlfcn.h>
#include <new>

namespace {

constexpr std::size_t never = ~std::size_t{0};

// Not to be allocated itself.
[[gnu::tls_model("initial-exec")]] thread_local std::size_t left = never;
[[gnu::tls_model("initial-exec")]] thread_local bool hasFailed = false;

/// Whether this is the one.
bool fails() noexcept {
    if (left == never || left-- > 0)
        return false;
    left = never;
    hasFailed = true;
    errno = ENOMEM;
    return true;
}

} // namespace

MemoryFailure::MemoryFailure(std::size_t after) noexcept {
    left = after;
    hasFailed = false;
}
MemoryFailure::~MemoryFailure() { left = never; }

bool MemoryFailure::hasCome() noexcept { return hasFailed; }

#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
#endif

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || defined(__clang__)

void* operator new(std::size_t size) {
    void* const memory = fails() ? nullptr : std::malloc(size ? size : 1);
    return memory ? memory : throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return fails() ? nullptr : std::malloc(size ? size : 1);
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

#else

namespace {

bool isForTheCLibrary(void* caller) noexcept {
    static Dl_info ours{}, callers{};
    if (left == never)
        return false;
    return ::dladdr(reinterpret_cast<void*>(&::abort), &ours) != 0 &&
           ::dladdr(caller, &callers) != 0 && ours.dli_fbase == callers.dli_fbase;
}

} // namespace

extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);

void* malloc(std::size_t size) { return fails() ? nullptr : __libc_malloc(size); }
void* calloc(std::size_t count, std::size_t size) {
    // The C library ends the program when it cannot note what a thread is to destroy.
    return !isForTheCLibrary(__builtin_return_address(0)) && fails() ? nullptr
                                                                     : __libc_calloc(count, size);
}
void* realloc(void* memory, std::size_t size) {
    return fails() ? nullptr : __libc_realloc(memory, size);
}
void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return fails() ? nullptr : __libc_memalign(alignment, size);
}
int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
    void* const made = fails() ? nullptr : __libc_memalign(alignment, size);
    if (made)
        *memory = made;
    return made ? 0 : ENOMEM;
}
}

#endif
