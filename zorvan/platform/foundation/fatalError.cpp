#include <zorvan/platform/foundation/fatalError.h>

#include <cstdio>
#include <cstdlib>

namespace zorvan {

void fatalError(std::string_view message) noexcept {
    std::fwrite(message.data(), 1, message.size(), stderr);
    std::fputc('\n', stderr);
    std::abort();
}

} // namespace zorvan
