#include <zorvan/settings/JSON.h>

#include <cstdint>
#include <cstdlib>
#include <span>

using zorvan::JSON;
using zorvan::JSONError;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
    try {
        const JSON value = JSON::parse(std::as_bytes(std::span(input, size)));
        if (!(JSON::parse(value.text()) == value)) // what was read can be written, and is the same
            std::abort();
    } catch (const JSONError&) {
        return 0;
    }
    return 0;
}
