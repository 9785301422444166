#include <zorvan/platform/bookmarks/internal/BookmarkRecord.h>

#include <cstdint>
#include <cstdlib>
#include <span>

using zorvan::internal::BookmarkRecord;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
    const auto record = BookmarkRecord::decoded(std::as_bytes(std::span(input, size)));
    if (!record)
        return 0;
    const zorvan::Data bytes = record->encoded();
    const auto again = BookmarkRecord::decoded(bytes);
    if (!again || again->encoded() != bytes)
        std::abort();
    return 0;
}
