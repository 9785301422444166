#pragma once

// What the main file of every target starts from.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>
#include <string_view>

/// What a target does with an input. It stops the program where something is wrong.
void tryOut(std::span<const std::uint8_t> input);

inline void require(bool holds) {
    if (!holds)
        std::abort();
}

inline std::string_view textOf(std::span<const std::uint8_t> input) {
    return {reinterpret_cast<const char*>(input.data()), input.size()};
}

/// Takes what stands before the next NUL off a text, and the NUL.
inline std::string_view takePart(std::string_view& text) {
    const std::string_view part = text.substr(0, text.find('\0'));
    text.remove_prefix(std::min(part.size() + 1, text.size()));
    return part;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
    tryOut({input, size});
    return 0;
}
