#include <zorvan/platform/imageio/internal/FormatReader.h>

#include <zorvan/platform/imageio/internal/ExifBlock.h>

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

template <class Operation>
auto FormatReader::at(std::int64_t index, Operation operation)
    -> std::optional<decltype(operation())> {
    return guarded([&] {
        if (index < 0 || index >= readCount())
            throw Failure{reason::noSuchPicture};
        return operation();
    });
}

std::int64_t FormatReader::count() {
    return guarded([&] { return readCount(); }).value_or(0);
}

std::optional<PropertyList::Dictionary> FormatReader::properties(std::int64_t index) {
    return at(index, [&] { return readProperties(index); });
}

std::optional<int> FormatReader::orientation(std::int64_t index) {
    return at(index, [&] { return readOrientation(index); }).value_or(std::nullopt);
}

std::optional<Bitmap> FormatReader::decode(std::int64_t index, const DecodeOptions& options) {
    return at(index, [&] { return readPicture(index, options); });
}

std::optional<Bitmap> FormatReader::embeddedThumbnail(std::int64_t index) {
    return at(index, [&] { return readThumbnail(index); });
}

std::optional<int> FormatReader::readOrientation(std::int64_t) { return exifOrientation(exif()); }

Bitmap FormatReader::readThumbnail(std::int64_t) { return thumbnailInExif(exif()); }

Data wholeFile(ByteSource& source) {
    constexpr std::uint64_t maximumSize = std::uint64_t{256} << 20;
    if (source.size() > maximumSize)
        throw Failure{reason::tooLarge};
    return source.bytes(0, source.size());
}

} // namespace zorvan::imageio
