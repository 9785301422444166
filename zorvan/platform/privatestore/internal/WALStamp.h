#pragma once

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
WALStamp readStamp(const void* address) noexcept;

} // namespace zorvan::privatestore
