#include <zorvan/settings/internal/base64.h>

#include <cstdint>

namespace zorvan::internal {

namespace {

constexpr std::string_view alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

} // namespace

std::string encodedBase64(const Data& bytes) {
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::uint32_t group = 0;
        for (std::size_t j = 0; j < 3; ++j)
            group =
                group << 8 | (i + j < bytes.size() ? static_cast<std::uint32_t>(bytes[i + j]) : 0);
        for (unsigned j = 0; j < 4; ++j)
            text += i + j <= bytes.size() ? alphabet[group >> (18 - 6 * j) & 63] : '=';
    }
    return text;
}

std::optional<Data> decodedBase64(std::string_view text) {
    if (text.size() % 4 != 0)
        return std::nullopt;
    const std::size_t padding = text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
    Data bytes;
    std::uint32_t group = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::size_t digit = i < text.size() - padding ? alphabet.find(text[i]) : 0;
        if (digit == std::string_view::npos)
            return std::nullopt;
        group = group << 6 | static_cast<std::uint32_t>(digit);
        if (i % 4 != 3)
            continue;
        for (const int shift : {16, 8, 0})
            bytes.push_back(static_cast<std::byte>(group >> shift));
        group = 0;
    }
    bytes.resize(bytes.size() - padding);
    return bytes;
}

} // namespace zorvan::internal
