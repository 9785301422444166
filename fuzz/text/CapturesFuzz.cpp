#include <zorvan/text/String.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

// The first byte holds options, the rest up to a NUL is the pattern, and what follows the text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    const std::string_view input(reinterpret_cast<const char*>(data) + 1, size - 1);
    const std::size_t split = std::min(input.find('\0'), input.size());
    const std::string_view text = input.substr(std::min(split + 1, input.size()));
    const auto matches = zorvan::captureMatches(text, input.substr(0, split), {data[0]});
    for (const auto& groups : matches)
        for (const auto& group : groups)
            if (!group.empty() && text.find(group) == std::string_view::npos)
                __builtin_trap();
    return 0;
}
