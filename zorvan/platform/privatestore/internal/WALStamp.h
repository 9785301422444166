#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace zorvan::privatestore {

/// What the shared memory of a database in WAL mode says of its content: one number that grows with
/// every commit, and a checksum that changes with everything else. Two loads, no lock, no call.
struct WALStamp {
    std::uint32_t changes = 0;
    std::uint64_t checksum = 0;
    friend bool operator==(const WALStamp&, const WALStamp&) = default;
};

/// From where `Database::stampAddress` says.
inline WALStamp readStamp(const void* address) noexcept {
    // The layout of the shared memory is part of the documented file format: the number of commits
    // is at byte 8, the checksum of the header at byte 40.
    auto* bytes = static_cast<std::byte*>(const_cast<void*>(address));
    std::atomic_ref<std::uint32_t> changes(*reinterpret_cast<std::uint32_t*>(bytes + 8));
    std::atomic_ref<std::uint64_t> checksum(*reinterpret_cast<std::uint64_t*>(bytes + 40));
    return {changes.load(std::memory_order_acquire), checksum.load(std::memory_order_acquire)};
}

} // namespace zorvan::privatestore
