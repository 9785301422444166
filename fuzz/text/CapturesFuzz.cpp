// The first byte holds options, the rest up to a NUL is the pattern, and what follows the text.

#include <fuzz/Fuzzing.h>
#include <zorvan/text/String.h>

void tryOut(std::span<const std::uint8_t> input) {
    if (input.empty())
        return;
    std::string_view text = textOf(input.subspan(1));
    const std::string_view pattern = takePart(text);
    for (const auto& groups : zorvan::captureMatches(text, pattern, {input[0]}))
        for (const auto& group : groups)
            require(group.empty() || text.find(group) != std::string_view::npos);
}
