// What reads texts; the first bytes hold a range for what reads numbers.

#include <fuzz/Fuzzing.h>
#include <zorvan/platform/textservices/Characters.h>
#include <zorvan/text/BundleVersion.h>
#include <zorvan/text/String.h>

#include <cstring>
#include <vector>

using namespace zorvan;

namespace {

void readNumbers(std::span<const std::uint8_t> data, const std::string& text, Range whole) {
    Range range{0, 0};
    std::memcpy(&range, data.data(), std::min(data.size(), sizeof range));
    (void)safeInt(text, range);
    (void)safeDouble(text, range);
    if (const auto number = safeInt(text, whole)) {
        require(safeDouble(text, whole).has_value());
        const std::string printed = std::to_string(*number);
        require(safeInt(printed, {0, count(printed)}) == number);
    }
    const auto version = BundleVersion::make(text);
    require(version && BundleVersion::make(version->rawValue()) == version);
}

} // namespace

void tryOut(std::span<const std::uint8_t> data) {
    const std::string text(textOf(data));
    const std::size_t size = text.size();
    std::vector<std::size_t> boundaries{0};
    for (const std::string_view character : Characters(text))
        boundaries.push_back(boundaries.back() + character.size());
    const auto last = static_cast<std::int64_t>(boundaries.size()) - 1;
    require(boundaries.back() == size && count(text) == last);
    const std::int64_t middle = size > 0 ? data[0] % (last + 1) : 0;
    const std::size_t place = boundaries[static_cast<std::size_t>(middle)];
    require(startIntIndexToStringIndex(text, middle) == place);
    require(endIntIndexToStringIndex(text, last - middle) == place);
    require(safeSubstring(text, {.to = middle}) + safeSubstring(text, {.from = middle}) == text);
    require(removedSuffix(text, safeSubstring(text, {.from = middle})).size() <= size);
    require(finderCompare(text, text) == ComparisonResult::orderedSame);
    readNumbers(data, text, {0, last});
    (void)incremented(text);
    (void)isValidLink(text);
    (void)decapitalized(text);
    (void)commonSubsequence({text, text.substr(size / 2)});
}
