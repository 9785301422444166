#include <zorvan/text/BundleVersion.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    using zorvan::BundleVersion;
    const auto version =
        BundleVersion::make(std::string_view(reinterpret_cast<const char*>(bytes), size));
    if (!version || BundleVersion::make(version->rawValue()) != version)
        std::abort();
    return 0;
}
