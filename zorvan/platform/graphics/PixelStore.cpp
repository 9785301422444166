#include <zorvan/platform/foundation/internal/ForkParticipant.h>
#include <zorvan/platform/graphics/internal/PixelStore.h>

#include <cstdlib>
#include <cstring>
#include <mutex>
#include <utility>

#include <sys/mman.h>

namespace zorvan {
namespace {

constexpr std::size_t hugePage = std::size_t{2} << 20;

// Under the address sanitizer every block comes from the heap, which it watches over.
#if defined(__SANITIZE_ADDRESS__)
#define ZORVAN_HEAP_ONLY 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZORVAN_HEAP_ONLY 1
#endif
#endif
#ifdef ZORVAN_HEAP_ONLY
constexpr bool usesHeapOnly = true;
#else
constexpr bool usesHeapOnly = false;
#endif

bool isMapped(std::size_t byteCount) noexcept { return !usesHeapOnly && byteCount >= 2 * hugePage; }

struct Mapping {
    std::uint8_t* bytes = nullptr;
    std::size_t byteCount = 0;
};

constinit internal::BriefMutex keptMutex;
const internal::ForkParticipant::Joined joined(keptMutex);
Mapping kept;

Mapping exchangeKept(Mapping replacement) noexcept {
    const std::lock_guard lock(keptMutex);
    return std::exchange(kept, replacement);
}

std::size_t roundedUp(std::size_t byteCount) noexcept {
    return (byteCount + hugePage - 1) / hugePage * hugePage;
}

void unmap(Mapping mapping) noexcept {
    if (mapping.bytes)
        munmap(mapping.bytes, mapping.byteCount);
}

std::uint8_t* mapFresh(std::size_t byteCount) noexcept {
    void* block = mmap(nullptr, byteCount + hugePage, PROT_READ | PROT_WRITE,
                       MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (block == MAP_FAILED)
        return nullptr;
    auto* const first = static_cast<std::uint8_t*>(block);
    const std::size_t before =
        (hugePage - reinterpret_cast<std::uintptr_t>(first) % hugePage) % hugePage;
    if (before > 0)
        munmap(first, before);
    munmap(first + before + byteCount, hugePage - before);
    madvise(first + before, byteCount, MADV_HUGEPAGE); // only advice: ordinary pages do as well
    return first + before;
}

/// The kept block when it fits; whatever else was kept is unmapped first, so that keeping a block
/// never raises the peak of a program that goes on to pictures of another size.
std::uint8_t* takeKept(std::size_t byteCount) noexcept {
    const Mapping old = exchangeKept({});
    if (old.byteCount == byteCount)
        return old.bytes;
    unmap(old);
    return nullptr;
}

} // namespace

std::uint8_t* PixelStore::take(std::size_t byteCount) noexcept {
    if (!isMapped(byteCount))
        return static_cast<std::uint8_t*>(std::malloc(byteCount));
    const std::size_t mapped = roundedUp(byteCount);
    std::uint8_t* const again = takeKept(mapped);
    return again ? again : mapFresh(mapped);
}

std::uint8_t* PixelStore::takeZeroed(std::size_t byteCount) noexcept {
    if (!isMapped(byteCount))
        return static_cast<std::uint8_t*>(std::calloc(byteCount, 1));
    const std::size_t mapped = roundedUp(byteCount);
    std::uint8_t* const again = takeKept(mapped);
    return again ? static_cast<std::uint8_t*>(std::memset(again, 0, byteCount)) : mapFresh(mapped);
}

void PixelStore::release(std::uint8_t* bytes, std::size_t byteCount) noexcept {
    if (!isMapped(byteCount))
        return std::free(bytes);
    Mapping given{bytes, roundedUp(byteCount)};
    if (given.byteCount <= maximumKeptByteCount) {
        madvise(given.bytes, given.byteCount, MADV_FREE);
        given = exchangeKept(given);
    }
    unmap(given);
}

} // namespace zorvan
