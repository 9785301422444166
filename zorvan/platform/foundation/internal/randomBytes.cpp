#include <zorvan/platform/foundation/internal/randomBytes.h>

#include <zorvan/platform/foundation/fatalError.h>

#include <sys/random.h>

namespace zorvan::internal {

std::array<unsigned char, 16> randomBytes() {
    std::array<unsigned char, 16> bytes{};
    if (::getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
        fatalError("The kernel gives no random bytes.");
    return bytes;
}

} // namespace zorvan::internal
