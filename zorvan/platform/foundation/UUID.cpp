#include <zorvan/platform/foundation/UUID.h>

#include <zorvan/platform/foundation/internal/ascii.h>
#include <zorvan/platform/foundation/internal/randomBytes.h>

namespace zorvan {

std::string makeUUIDString() {
    auto bytes = internal::randomBytes();
    bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0F) | 0x40); // version 4
    bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3F) | 0x80); // RFC 4122 variant

    std::string text;
    text.reserve(36);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10)
            text += '-';
        text += internal::hexDigitOf(bytes[i] >> 4u);
        text += internal::hexDigitOf(bytes[i]);
    }
    return text;
}

} // namespace zorvan
