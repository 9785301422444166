// One program for each format, which ZORVAN_FUZZ_FORMAT names.

#include "DecodeFuzz.h"

#include <fuzz/Fuzzing.h>

constexpr auto format = zorvan::imageio::FileFormat::ZORVAN_FUZZ_FORMAT;

void tryOut(std::span<const std::uint8_t> input) {
    zorvan::imageio::decodeEverything(format, input);
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* bytes, std::size_t size,
                                               std::size_t maximumSize, unsigned seed) {
    return zorvan::imageio::mutated(format, {bytes, size}, maximumSize, seed);
}
