#include <fuzz/Fuzzing.h>
#include <zorvan/platform/propertylist/PropertyListFile.h>

using namespace zorvan;

namespace {

Data encoded(const PropertyList& list) {
    auto bytes = propertylist::encode(list, propertylist::Format::binary);
    require(bytes.has_value()); // whatever can be read can be written
    return std::move(*bytes);
}

void check(std::span<const std::byte> bytes) {
    std::string reason;
    const auto list = propertylist::decode(bytes, &reason);
    require(list.has_value() == reason.empty());
    if (!list)
        return;
    // Dates lose their last digits on the way, but no more of them the second time.
    const Data once = encoded(propertylist::decode(encoded(*list)).value());
    require(encoded(propertylist::decode(once).value()) == once);
}

/// The bytes as the objects and the table of a binary list, with the frame that they need: found by
/// chance, it would take for ever.
Data framed(std::span<const std::byte> content, std::size_t objects) {
    const auto magic = std::as_bytes(std::span("bplist00", 8));
    Data bytes(magic.begin(), magic.end());
    bytes.insert(bytes.end(), content.begin(), content.end());
    const std::size_t table = bytes.size() - std::min(objects, content.size());
    bytes.resize(bytes.size() + 32);
    const std::span<std::byte> trailer = std::span(bytes).last(32);
    trailer[6] = trailer[7] = std::byte{1}; // the sizes of an offset and of a reference
    trailer[15] = static_cast<std::byte>(objects);
    for (std::size_t i = 0; i < 8; ++i)
        trailer[31 - i] = static_cast<std::byte>(table >> (8 * i));
    return bytes;
}

} // namespace

void tryOut(std::span<const std::uint8_t> input) {
    const auto bytes = std::as_bytes(input);
    check(bytes);
    if (!input.empty())
        check(framed(bytes.subspan(1), input[0]));
}
