// Dates in metadata: what is read lies within the years that a date holds.

#include <zorvan/media/AVMetadataItem.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <string>

using namespace zorvan;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    using namespace std::chrono;
    const std::string text(reinterpret_cast<const char*>(bytes), size);
    const auto date = AVMetadataItem{"udta/%A9day", text}.dateValue();
    if (!date)
        return 0;
    // A zone may move it by a day, no more.
    if (*date < sys_days(1677y / 12 / 31) || *date > sys_days(2262y / 1 / 2))
        std::abort();
    if (AVMetadataItem{"udta/%A9day", " " + text + " "}.dateValue() != date)
        std::abort();
    return 0;
}
