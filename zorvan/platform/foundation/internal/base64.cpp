#include <zorvan/platform/foundation/internal/base64.h>

#include <algorithm>
#include <array>
#include <cstdint>

namespace zorvan::internal {

namespace {

constexpr char base64Digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::array<std::int8_t, 256> base64Values = [] {
    std::array<std::int8_t, 256> values{};
    values.fill(-1);
    for (std::int8_t i = 0; i < 64; ++i)
        values[static_cast<unsigned char>(base64Digits[i])] = i;
    return values;
}();

} // namespace

std::optional<Data> decodeBase64(std::string_view text) {
    Data bytes;
    bytes.reserve(text.size() / 4 * 3);
    std::uint32_t group = 0;
    std::size_t digits = 0;
    std::size_t padding = 0;
    for (const char c : text) {
        if (c == ' ' || c == '\t' || c == '\n' || c == '\r')
            continue;
        if (c == '=') {
            ++padding;
            continue;
        }
        const int value = base64Values[static_cast<unsigned char>(c)];
        if (value < 0 || padding > 0)
            return std::nullopt;
        group = group << 6 | static_cast<std::uint32_t>(value);
        if (++digits % 4 == 0)
            for (const int shift : {16, 8, 0})
                bytes.push_back(static_cast<std::byte>(group >> shift));
    }
    // Missing padding is common and harmless; a single left-over digit holds no byte.
    const std::size_t rest = digits % 4;
    if (rest == 1 || padding > (4 - rest) % 4)
        return std::nullopt;
    if (rest >= 2)
        bytes.push_back(static_cast<std::byte>(group >> (rest == 2 ? 4 : 10)));
    if (rest == 3)
        bytes.push_back(static_cast<std::byte>(group >> 2));
    return bytes;
}

std::string encodeBase64(std::span<const std::byte> bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::uint32_t group = 0;
        for (std::size_t k = 0; k < 3; ++k)
            group = group << 8 |
                    (i + k < bytes.size() ? std::to_integer<std::uint32_t>(bytes[i + k]) : 0);
        const std::size_t digits = std::min<std::size_t>(bytes.size() - i, 3) + 1;
        for (std::size_t k = 0; k < 4; ++k)
            text += k < digits ? base64Digits[group >> (18 - 6 * k) & 63] : '=';
    }
    return text;
}

} // namespace zorvan::internal
