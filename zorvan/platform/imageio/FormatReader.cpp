#include <zorvan/platform/imageio/internal/FormatReader.h>

#include <exception>
#include <new>

namespace zorvan::imageio {

template <class Operation>
auto FormatReader::guarded(Operation operation) -> std::optional<decltype(operation())> {
    error_.clear();
    try {
        return operation();
    } catch (const Failure& failure) {
        error_ = failure.reason;
    } catch (const std::bad_alloc&) {
        error_ = reason::noMemory;
    } catch (const std::exception&) {
        error_ = reason::damaged;
    }
    return std::nullopt;
}

void FormatReader::checkIndex(std::int64_t index) {
    if (index < 0 || index >= readCount())
        throw Failure{reason::noSuchPicture};
}

std::int64_t FormatReader::count() {
    return guarded([&] { return readCount(); }).value_or(0);
}

std::optional<PropertyList::Dictionary> FormatReader::properties(std::int64_t index) {
    return guarded([&] {
        checkIndex(index);
        return readProperties(index);
    });
}

std::optional<int> FormatReader::orientation(std::int64_t index) {
    return guarded([&] {
               checkIndex(index);
               return readOrientation(index);
           })
        .value_or(std::nullopt);
}

std::optional<Bitmap> FormatReader::decode(std::int64_t index, const DecodeOptions& options) {
    return guarded([&] {
        checkIndex(index);
        return readPicture(index, options);
    });
}

std::optional<Bitmap> FormatReader::embeddedThumbnail(std::int64_t index) {
    return guarded([&] {
        checkIndex(index);
        return readThumbnail(index);
    });
}

Data wholeFile(ByteSource& source) {
    constexpr std::uint64_t maximumSize = std::uint64_t{256} << 20;
    if (source.size() > maximumSize)
        throw Failure{reason::tooLarge};
    return source.bytes(0, source.size());
}

} // namespace zorvan::imageio
