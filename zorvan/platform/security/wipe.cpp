#include <zorvan/platform/security/wipe.h>

#include <sodium.h>

namespace zorvan {

void wipe(Data& secret) noexcept {
    sodium_memzero(secret.data(), secret.size());
    secret.clear();
}

void wipe(std::string& secret) noexcept {
    sodium_memzero(secret.data(), secret.size());
    secret.clear();
}

} // namespace zorvan
