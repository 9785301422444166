// One program for each format, which ZORVAN_FUZZ_FORMAT names.

#include "DecodeFuzz.h"

constexpr auto format = zorvan::imageio::FileFormat::ZORVAN_FUZZ_FORMAT;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    zorvan::imageio::decodeEverything(format, {bytes, size});
    return 0;
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* bytes, std::size_t size,
                                               std::size_t maximumSize, unsigned seed) {
    return zorvan::imageio::mutated(format, {bytes, size}, maximumSize, seed);
}
