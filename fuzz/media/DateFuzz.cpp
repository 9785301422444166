// Dates in metadata: what is read lies within the years that a date holds.

#include <fuzz/Fuzzing.h>
#include <zorvan/media/AVMetadataItem.h>

#include <chrono>

using zorvan::AVMetadataItem;
using namespace std::chrono;

void tryOut(std::span<const std::uint8_t> input) {
    const std::string text(textOf(input));
    const auto date = AVMetadataItem{"udta/%A9day", text}.dateValue();
    if (!date)
        return;
    // A zone may move it by a day, no more.
    require(*date >= sys_days(1677y / 12 / 31) && *date <= sys_days(2262y / 1 / 2));
    require(AVMetadataItem{"udta/%A9day", " " + text + " "}.dateValue() == date);
}
