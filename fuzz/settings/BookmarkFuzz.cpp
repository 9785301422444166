// What is read of a bookmark is written as what is read again.

#include <fuzz/Fuzzing.h>
#include <zorvan/platform/bookmarks/internal/BookmarkRecord.h>

using zorvan::internal::BookmarkRecord;

void tryOut(std::span<const std::uint8_t> input) {
    const auto record = BookmarkRecord::decoded(std::as_bytes(input));
    if (!record)
        return;
    const zorvan::Data bytes = record->encoded();
    const auto again = BookmarkRecord::decoded(bytes);
    require(again && again->encoded() == bytes);
}
