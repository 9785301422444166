#include <zorvan/platform/propertylist/PropertyListFile.h>

#include <zorvan/platform/foundation/internal/readRegularFile.h>
#include <zorvan/platform/foundation/internal/writeFile.h>
#include <zorvan/platform/propertylist/internal/Codecs.h>

#include <cerrno>
#include <cstring>
#include <system_error>

namespace zorvan::propertylist {

namespace {

void explain(std::string* reason, std::string text) {
    if (reason)
        *reason = std::move(text);
}

} // namespace

std::optional<PropertyList> decode(std::span<const std::byte> bytes, std::string* reason) {
    constexpr std::size_t magicSize = sizeof binaryMagic - 1;
    const bool isBinary =
        bytes.size() >= magicSize && std::memcmp(bytes.data(), binaryMagic, magicSize) == 0;
    try {
        return isBinary ? readBinary(bytes) : readXML(bytes);
    } catch (const Refusal& refusal) {
        explain(reason, refusal.what());
        return std::nullopt;
    }
}

std::optional<Data> encode(const PropertyList& list, Format format, std::string* reason) {
    try {
        return format == Format::binary ? writeBinary(list) : writeXML(list);
    } catch (const Refusal& refusal) {
        explain(reason, refusal.what());
        return std::nullopt;
    }
}

std::optional<PropertyList> readFile(const std::string& path, std::string* reason) {
    const std::optional<std::string> bytes = internal::readRegularFile(path, maximumFileSize);
    if (bytes)
        return decode(std::as_bytes(std::span(*bytes)), reason);
    explain(reason, errno == EINVAL  ? "it is no regular file"
                    : errno == EFBIG ? "the file is too large"
                                     : std::system_category().message(errno));
    return std::nullopt;
}

bool writeFile(const PropertyList& list, Format format, const std::string& path,
               std::string* reason) {
    const std::optional<Data> bytes = encode(list, format, reason);
    if (!bytes)
        return false;
    const std::error_code error = internal::writeFile(path, *bytes);
    if (error)
        explain(reason, error.message());
    return !error;
}

} // namespace zorvan::propertylist
