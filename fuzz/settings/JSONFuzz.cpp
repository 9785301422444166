// What was read can be written, and is the same.

#include <fuzz/Fuzzing.h>
#include <zorvan/settings/JSON.h>

using zorvan::JSON;

void tryOut(std::span<const std::uint8_t> input) {
    try {
        const JSON value = JSON::parse(std::as_bytes(input));
        require(JSON::parse(value.text()) == value);
    } catch (const zorvan::JSONError&) {
    }
}
