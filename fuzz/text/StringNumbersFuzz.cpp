#include <zorvan/text/String.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

// The first sixteen bytes hold a range.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zorvan::Range range{0, 0};
    if (size < sizeof range)
        return 0;
    std::memcpy(&range, data, sizeof range);
    const std::string_view text(reinterpret_cast<const char*>(data) + sizeof range,
                                size - sizeof range);
    const zorvan::Range whole{0, zorvan::count(text)};
    (void)zorvan::safeInt(text, range);
    (void)zorvan::safeDouble(text, range);
    const auto number = zorvan::safeInt(text, whole);
    if (number && !zorvan::safeDouble(text, whole))
        __builtin_trap();
    if (number) {
        const std::string printed = std::to_string(*number);
        if (zorvan::safeInt(printed, {0, zorvan::count(printed)}) != number)
            __builtin_trap();
    }
    return 0;
}
