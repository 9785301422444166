// The first sixteen bytes hold a range.

#include <fuzz/Fuzzing.h>
#include <zorvan/text/String.h>

#include <cstring>

void tryOut(std::span<const std::uint8_t> input) {
    zorvan::Range range{0, 0};
    if (input.size() < sizeof range)
        return;
    std::memcpy(&range, input.data(), sizeof range);
    const std::string_view text = textOf(input.subspan(sizeof range));
    const zorvan::Range whole{0, zorvan::count(text)};
    (void)zorvan::safeInt(text, range);
    (void)zorvan::safeDouble(text, range);
    const auto number = zorvan::safeInt(text, whole);
    if (!number)
        return;
    require(zorvan::safeDouble(text, whole).has_value());
    const std::string printed = std::to_string(*number);
    require(zorvan::safeInt(printed, {0, zorvan::count(printed)}) == number);
}
