#include "DecodeFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    zorvan::imageio::decodeEverything(zorvan::imageio::FileFormat::png, {bytes, size});
    return 0;
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* bytes, std::size_t size,
                                               std::size_t maximumSize, unsigned seed) {
    return zorvan::imageio::mutated(zorvan::imageio::FileFormat::png, {bytes, size}, maximumSize,
                                    seed);
}
