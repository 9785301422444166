#include <zorvan/collections/Array.h>

namespace zorvan::detail {

namespace {

[[noreturn]] void failOutside(std::int64_t position, std::int64_t count) {
    fatalError("The position " + std::to_string(position) + " lies outside the list, which has " +
               std::to_string(count) + " elements.");
}

} // namespace

void checkPositions(std::int64_t count, const IndexSet& indexes) {
    if (indexes.last().value_or(-1) >= count)
        failOutside(*indexes.last(), count);
}

void checkInsertion(std::int64_t count, std::int64_t at) {
    if (at < 0 || at > count)
        failOutside(at, count);
}

} // namespace zorvan::detail
