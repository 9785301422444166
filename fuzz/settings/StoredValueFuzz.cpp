#include <zorvan/platform/settingsdatabase/internal/SettingsMemory.h>
#include <zorvan/platform/settingsdatabase/internal/StoredValue.h>

#include <cstdint>
#include <cstdlib>
#include <span>

using namespace zorvan::internal;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
    const auto value = decodeStored(std::as_bytes(std::span(input, size)));
    if (!value)
        return 0;
    const auto again = decodeStored(encodeStored(*value));
    if (!again || !isIdentical(*again, *value))
        std::abort();
    return 0;
}
