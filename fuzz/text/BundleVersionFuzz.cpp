// A version is written as what is read again.

#include <fuzz/Fuzzing.h>
#include <zorvan/text/BundleVersion.h>

using zorvan::BundleVersion;

void tryOut(std::span<const std::uint8_t> input) {
    const auto version = BundleVersion::make(textOf(input));
    require(version && BundleVersion::make(version->rawValue()) == version);
}
