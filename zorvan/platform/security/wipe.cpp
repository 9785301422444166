#include <zorvan/platform/security/wipe.h>

#include <sodium.h>

namespace zorvan {

namespace {

template <class Bytes>
void overwriteAndEmpty(Bytes& secret) noexcept {
    if (!secret.empty()) // a masked store of nothing to a null pointer takes long
        sodium_memzero(secret.data(), secret.size());
    secret.clear();
}

} // namespace

void wipe(Data& secret) noexcept { overwriteAndEmpty(secret); }

void wipe(std::string& secret) noexcept { overwriteAndEmpty(secret); }

} // namespace zorvan
