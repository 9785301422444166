#include <fuzz/Fuzzing.h>
#include <zorvan/platform/textservices/Characters.h>
#include <zorvan/text/String.h>

#include <vector>

using namespace zorvan;

void tryOut(std::span<const std::uint8_t> data) {
    const std::string text(textOf(data));
    const std::size_t size = text.size();
    std::vector<std::size_t> boundaries{0};
    for (const std::string_view character : Characters(text))
        boundaries.push_back(boundaries.back() + character.size());
    const auto last = static_cast<std::int64_t>(boundaries.size()) - 1;
    require(boundaries.back() == size && count(text) == last);
    const std::int64_t middle = size > 0 ? data[0] % (last + 1) : 0;
    require(startIntIndexToStringIndex(text, middle) ==
            boundaries[static_cast<std::size_t>(middle)]);
    require(endIntIndexToStringIndex(text, last - middle) ==
            boundaries[static_cast<std::size_t>(middle)]);
    require(safeSubstring(text, {.to = middle}) + safeSubstring(text, {.from = middle}) == text);
    require(removedSuffix(text, safeSubstring(text, {.from = middle})).size() <= size);
    require(finderCompare(text, text) == ComparisonResult::orderedSame);
    (void)incremented(text);
    (void)isValidLink(text);
    (void)decapitalized(text);
    (void)commonSubsequence({text, text.substr(size / 2)});
}
