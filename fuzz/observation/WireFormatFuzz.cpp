// Messages from other processes: whatever is accepted must be what would have been sent.

#include <zorvan/platform/messagebus/internal/WireFormat.h>

#include <algorithm>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto bytes = std::as_bytes(std::span(data, size));
    if (const auto read = zorvan::internal::decodeNotification(bytes)) {
        if (!std::ranges::equal(zorvan::internal::encode(*read), bytes))
            std::abort();
    }
    return 0;
}
