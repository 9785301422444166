#pragma once

#include <zorvan/platform/imageio/ImageReader.h>
#include <zorvan/platform/imageio/internal/ByteOrder.h>
#include <zorvan/platform/imageio/internal/ByteSource.h>

#include <memory>
#include <string>
#include <utility>

namespace zorvan::imageio {

/// Thrown inside this service, and caught at its edge, with what `error()` is to say.
struct Failure {
    const char* reason;
};

namespace reason {
inline constexpr const char* cutShort = "the file is cut short";
inline constexpr const char* damaged = "the file is damaged";
inline constexpr const char* tooLarge = "the picture is too large";
inline constexpr const char* noMemory = "there is not enough memory";
inline constexpr const char* noSuchPicture = "the file holds no such picture";
inline constexpr const char* noThumbnail = "the file holds no thumbnail";
inline constexpr const char* noDecoder = "the decoder for this format is not installed";
inline constexpr const char* unsupported = "this variety of the format is not supported";
} // namespace reason

/// No side of a picture may be longer, so that a few rows of it always fit in memory.
inline constexpr std::int64_t maximumSide = 1'000'000;

/// The most bytes of a metadata block that are looked at.
inline constexpr std::uint64_t maximumMetadataSize = std::uint64_t{16} << 20;

/// What the readers of the formats share: the bytes, the error, and the wall that no exception
/// passes.
class FormatReader : public ImageReader {
public:
    FormatReader(FileFormat format, std::unique_ptr<ByteSource> source)
        : source_(std::move(source)), format_(format) {}

    std::string error() const final { return error_; }
    std::optional<FileFormat> format() const noexcept final { return format_; }
    std::int64_t count() final;
    std::optional<PropertyList::Dictionary> properties(std::int64_t index) final;
    std::optional<int> orientation(std::int64_t index) final;
    std::optional<Bitmap> decode(std::int64_t index, const DecodeOptions& options) final;
    std::optional<Bitmap> embeddedThumbnail(std::int64_t index) final;

protected:
    ByteSource& source() noexcept { return *source_; }

private:
    // Each throws Failure; the index has been checked against the count.
    virtual std::int64_t readCount() = 0;
    virtual PropertyList::Dictionary readProperties(std::int64_t index) = 0;
    virtual Bitmap readPicture(std::int64_t index, const DecodeOptions& options) = 0;
    /// The Exif block, where the orientation and the thumbnail stand in the absence of another
    /// place; empty when there is none.
    virtual Bytes exif() { return {}; }
    virtual std::optional<int> readOrientation(std::int64_t index);
    virtual Bitmap readThumbnail(std::int64_t index);

    template <class Operation>
    auto guarded(Operation operation) -> std::optional<decltype(operation())>;
    template <class Operation>
    auto at(std::int64_t index, Operation operation) -> std::optional<decltype(operation())>;

    std::unique_ptr<ByteSource> source_;
    FileFormat format_;
    std::string error_ = {};
};

/// A reader of a format that holds one picture, whose header is read once.
template <class Header>
class HeaderReader : public FormatReader {
public:
    using FormatReader::FormatReader;

protected:
    const Header& header() {
        if (!header_)
            header_ = readHeader();
        return *header_;
    }

private:
    /// Throws Failure, also when the picture has no size.
    virtual Header readHeader() = 0;
    std::int64_t readCount() final {
        header();
        return 1;
    }

    std::optional<Header> header_ = {};
};

/// Makes the reader of a format.
using MakeReader = void(std::unique_ptr<ByteSource> source, FileFormat format,
                        std::unique_ptr<ImageReader>& reader);

MakeReader makeJpegReader, makePngReader, makeBmpReader, makeSvgReader;

bool isBmp(Bytes head) noexcept;

/// The bytes of a file whose codec wants them all at once. Throws Failure for a file too large for
/// that.
Data wholeFile(ByteSource& source);

/// The small JPEG inside an Exif block. Throws Failure when there is none.
Bitmap thumbnailInExif(Bytes exif);

} // namespace zorvan::imageio
