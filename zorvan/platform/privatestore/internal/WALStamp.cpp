#include <zorvan/platform/privatestore/internal/WALStamp.h>

#include <atomic>
#include <cstddef>

namespace zorvan::privatestore {

WALStamp readStamp(const void* address) noexcept {
    // The layout of the shared memory is part of the documented file format: the number of commits
    // is at byte 8, the checksum of the header at byte 40.
    auto* bytes = static_cast<std::byte*>(const_cast<void*>(address));
    std::atomic_ref<std::uint32_t> changes(*reinterpret_cast<std::uint32_t*>(bytes + 8));
    std::atomic_ref<std::uint64_t> checksum(*reinterpret_cast<std::uint64_t*>(bytes + 40));
    return {changes.load(std::memory_order_acquire), checksum.load(std::memory_order_acquire)};
}

} // namespace zorvan::privatestore
