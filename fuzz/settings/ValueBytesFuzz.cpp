// Values on disks and in messages from other processes: whatever is accepted must be what would
// have been written.

#include <fuzz/Fuzzing.h>
#include <zorvan/platform/messagebus/internal/WireFormat.h>
#include <zorvan/platform/settingsdatabase/internal/StoredValue.h>

using namespace zorvan::internal;

void tryOut(std::span<const std::uint8_t> input) {
    const auto bytes = std::as_bytes(input);
    const auto stored = decodeStored(bytes);
    const auto message = decodeNotification(bytes);
    require(!stored || std::ranges::equal(encodeStored(*stored), bytes));
    require(!message || std::ranges::equal(encode(*message), bytes));
}
