#include <zorvan/platform/propertylist/PropertyListFile.h>

#include <zorvan/platform/foundation/internal/FileDescriptor.h>
#include <zorvan/platform/foundation/internal/writeFile.h>
#include <zorvan/platform/propertylist/internal/Codecs.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace zorvan::propertylist {

namespace {

void explain(std::string* reason, std::string text) {
    if (reason)
        *reason = std::move(text);
}

void explainSystem(std::string* reason) { explain(reason, std::system_category().message(errno)); }

using File = internal::FileDescriptor;

/// Up to `size` bytes; fewer when the file turns out to be shorter. Absent after an error.
std::optional<Data> readUpTo(const File& file, std::size_t size) {
    Data bytes(size);
    std::size_t filled = 0;
    while (filled < size) {
        const ssize_t count = ::read(file.get(), bytes.data() + filled, size - filled);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return std::nullopt;
        if (count == 0)
            break;
        filled += static_cast<std::size_t>(count);
    }
    bytes.resize(filled);
    return bytes;
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
    // Without O_NONBLOCK a named pipe would hold the caller up before it can be told apart.
    const File file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!file || ::fstat(file.get(), &status) != 0) {
        explainSystem(reason);
        return std::nullopt;
    }
    if (!S_ISREG(status.st_mode)) {
        explain(reason, "it is no regular file");
        return std::nullopt;
    }
    if (status.st_size < 0 || static_cast<std::uintmax_t>(status.st_size) > maximumFileSize) {
        explain(reason, "the file is too large");
        return std::nullopt;
    }
    const std::optional<Data> bytes = readUpTo(file, static_cast<std::size_t>(status.st_size));
    if (!bytes) {
        explainSystem(reason);
        return std::nullopt;
    }
    return decode(*bytes, reason);
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
