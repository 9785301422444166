// Values on disks and in messages from other processes: whatever is accepted must be what would
// have been written.

#include <zorvan/platform/messagebus/internal/WireFormat.h>
#include <zorvan/platform/settingsdatabase/internal/StoredValue.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

using namespace zorvan::internal;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
    const auto bytes = std::as_bytes(std::span(input, size));
    const auto stored = decodeStored(bytes);
    const auto message = decodeNotification(bytes);
    if ((stored && !std::ranges::equal(encodeStored(*stored), bytes)) ||
        (message && !std::ranges::equal(encode(*message), bytes)))
        std::abort();
    return 0;
}
