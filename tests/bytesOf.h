#pragma once

#include <zorvan/platform/foundation/Data.h>

#include <span>
#include <string>
#include <string_view>

/// A text as data, and data as a text.
inline zorvan::Data bytesOf(std::string_view text) {
    const auto bytes = std::as_bytes(std::span(text));
    return zorvan::Data(bytes.begin(), bytes.end());
}
inline std::string textOf(const zorvan::Data& bytes) {
    return std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}
