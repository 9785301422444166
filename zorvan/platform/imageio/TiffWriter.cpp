#include <zorvan/platform/imageio/internal/FrameWriter.h>
#include <zorvan/platform/imageio/internal/StoredProperties.h>
#include <zorvan/platform/imageio/internal/TiffFile.h>
#include <zorvan/platform/imageio/internal/loadedPictures.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

namespace zorvan::imageio {
namespace {

/// A growing file in memory, for libtiff.
class MemoryFile {
public:
    Data bytes = {};

    static tmsize_t read(thandle_t handle, void* out, tmsize_t size) {
        MemoryFile& file = *static_cast<MemoryFile*>(handle);
        const std::size_t there =
            file.position_ < file.bytes.size() ? file.bytes.size() - file.position_ : 0;
        const std::size_t count = std::min(static_cast<std::size_t>(size), there);
        if (count > 0)
            std::memcpy(out, file.bytes.data() + file.position_, count);
        file.position_ += count;
        return static_cast<tmsize_t>(count);
    }

    static tmsize_t write(thandle_t handle, void* data, tmsize_t size) {
        MemoryFile& file = *static_cast<MemoryFile*>(handle);
        const auto count = static_cast<std::size_t>(size);
        try {
            file.bytes.resize(std::max(file.bytes.size(), file.position_ + count));
        } catch (const std::exception&) {
            return 0;
        }
        std::memcpy(file.bytes.data() + file.position_, data, count);
        file.position_ += count;
        return size;
    }

    static toff_t seek(thandle_t handle, toff_t offset, int whence) {
        MemoryFile& file = *static_cast<MemoryFile*>(handle);
        return file.position_ = soughtPlace(offset, whence, file.position_, file.bytes.size());
    }

    static toff_t size(thandle_t handle) { return static_cast<MemoryFile*>(handle)->bytes.size(); }

private:
    std::size_t position_ = 0;
};

Tiff openForWriting(MemoryFile& file, std::int64_t byteCount) {
    // Little-endian, as our own directories are. Beyond 4 GB the offsets of the classic form do not
    // suffice.
    const char* mode = byteCount > std::int64_t{4'000'000'000} ? "wl8" : "wl";
    return openTiff(mode, &file,
                    {MemoryFile::read, MemoryFile::write, MemoryFile::seek, MemoryFile::size}, 0);
}

bool isKnown(int compression) {
    constexpr std::array<int, 5> known = {COMPRESSION_NONE, COMPRESSION_LZW,
                                          COMPRESSION_ADOBE_DEFLATE, COMPRESSION_DEFLATE,
                                          COMPRESSION_PACKBITS};
    return std::find(known.begin(), known.end(), compression) != known.end();
}

void setProperties(TIFF* tiff, const StoredProperties& properties) {
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, properties.orientation.value_or(ORIENTATION_TOPLEFT));
    for (const TiffEntry& text : properties.texts)
        TIFFSetField(tiff, text.tag, reinterpret_cast<const char*>(text.value.data()));
    if (!properties.dpi)
        return;
    TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    TIFFSetField(tiff, TIFFTAG_XRESOLUTION, properties.dpi->x);
    TIFFSetField(tiff, TIFFTAG_YRESOLUTION, properties.dpi->y);
}

void setLayout(TIFF* tiff, const Bitmap& bitmap, bool opaque, int compression) {
    constexpr std::int64_t stripSize = 256 << 10;
    const std::int64_t rowSize = bitmap.width() * (opaque ? 3 : 4);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(bitmap.width()));
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(bitmap.height()));
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, opaque ? 3 : 4);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, compression);
    if (compression != COMPRESSION_NONE && compression != COMPRESSION_PACKBITS)
        TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
    const std::int64_t rows = std::clamp<std::int64_t>(stripSize / rowSize, 1, bitmap.height());
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, static_cast<std::uint32_t>(rows));
    const std::uint16_t alpha = EXTRASAMPLE_ASSOCALPHA;
    if (!opaque)
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &alpha);
}

bool writeRows(TIFF* tiff, const Bitmap& bitmap, bool opaque) {
    // The codec may turn the row into differences in place.
    std::vector<std::uint8_t> out(static_cast<std::size_t>(bitmap.bytesPerRow()));
    for (std::int64_t y = 0; y < bitmap.height(); ++y) {
        if (opaque)
            dropAlpha(bitmap.row(y), out.data(), bitmap.width());
        else
            std::memcpy(out.data(), bitmap.row(y), out.size());
        if (TIFFWriteScanline(tiff, out.data(), static_cast<std::uint32_t>(y), 0) != 1)
            return false;
    }
    return true;
}

/// Appends a directory that the page is to point to; 0 when it is empty.
std::uint64_t appendDirectory(MemoryFile& file, const std::vector<TiffEntry>& entries, bool wide) {
    if (entries.empty())
        return 0;
    file.bytes.resize(file.bytes.size() + (file.bytes.size() & 1));
    const std::uint64_t place = file.bytes.size();
    appendTiffDirectory(file.bytes, entries, {.wide = wide});
    return place;
}

bool writePage(TIFF* tiff, MemoryFile& file, const Frame& frame, std::size_t pageCount) {
    const int compression = frame.tiffCompression.value_or(COMPRESSION_NONE);
    if (!isKnown(compression))
        return false;
    const bool opaque = isOpaque(*frame.bitmap);
    const StoredProperties properties = storedProperties(frame.properties);
    setLayout(tiff, *frame.bitmap, opaque, compression);
    setProperties(tiff, properties);
    if (pageCount > 1)
        TIFFSetField(tiff, TIFFTAG_SUBFILETYPE, FILETYPE_PAGE);
    if (!writeRows(tiff, *frame.bitmap, opaque) || TIFFFlushData(tiff) != 1)
        return false;
    const bool wide = TIFFIsBigTIFF(tiff) != 0;
    if (const std::uint64_t place = appendDirectory(file, properties.exif, wide))
        TIFFSetField(tiff, TIFFTAG_EXIFIFD, place);
    if (const std::uint64_t place = appendDirectory(file, properties.gps, wide))
        TIFFSetField(tiff, TIFFTAG_GPSIFD, place);
    return TIFFWriteDirectory(tiff) == 1;
}

} // namespace

extern "C" void zorvanEncodeTiff(std::span<const Frame> frames, std::optional<Data>& bytes) {
    constexpr std::size_t maximumPages = 65'000;
    std::int64_t byteCount = 0;
    for (const Frame& frame : frames)
        byteCount += frame.bitmap->byteCount();
    MemoryFile file;
    Tiff tiff = openForWriting(file, byteCount);
    if (!tiff || frames.size() > maximumPages)
        return;
    for (const Frame& frame : frames)
        if (!writePage(tiff.get(), file, frame, frames.size()))
            return;
    tiff.reset();
    bytes = std::move(file.bytes);
}

} // namespace zorvan::imageio
