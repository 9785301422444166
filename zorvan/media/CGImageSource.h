#pragma once

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/foundation/PropertyList.h>
#include <zorvan/platform/foundation/URL.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace zorvan {

class CGImage;

/// The pictures of a file or of bytes, known by their contents whatever the name. Reads the head
/// once; decodes only when asked for pixels. Safe to call from several threads, one at a time.
class CGImageSource {
public:
    /// Empty when the URL is not that of a file. A file that cannot be read or understood gives a
    /// source all of whose operations give nothing, and whose `error` says why.
    /// @{
    static std::shared_ptr<CGImageSource> create(const URL& url,
                                                 const PropertyList::Dictionary& options = {});
    static std::shared_ptr<CGImageSource> create(Data data,
                                                 const PropertyList::Dictionary& options = {});
    /// @}

    /// Sources are let go of as such.
    virtual ~CGImageSource() = default;

    /// The type identifier of the file, "public.jpeg" and so on; absent when it is no picture.
    virtual std::optional<std::string> type() const = 0;
    /// How many pictures there are; 0 when it is no picture.
    virtual std::int64_t count() const = 0;
    /// Why the last operation gave nothing, as a short phrase for people; empty when none failed.
    virtual std::string error() const = 0;

    /// A picture at its stored size and in its stored orientation; empty when it cannot be read.
    virtual std::shared_ptr<const CGImage>
    image(std::int64_t index, const PropertyList::Dictionary& options = {}) const = 0;

    /// The small picture that the file carries beside the picture, or one made by decoding the
    /// picture at a reduced size. Options, all absent at first:
    /// - `kCGImageSourceCreateThumbnailFromImageAlways`: make one in any case;
    /// - `kCGImageSourceCreateThumbnailFromImageIfAbsent`: make one when the file carries none;
    ///   with neither, such a file has no thumbnail;
    /// - `kCGImageSourceThumbnailMaxPixelSize`: the longest side it may have, rounded down but at
    ///   least 1; a larger one is shrunk, nothing is ever enlarged. Absent: no limit. A number that
    ///   is not above 0: no thumbnail;
    /// - `kCGImageSourceCreateThumbnailWithTransform`: turn it by the picture's orientation.
    virtual std::shared_ptr<const CGImage>
    thumbnail(std::int64_t index, const PropertyList::Dictionary& options = {}) const = 0;

    /// The properties of a picture (`ImageKeys.h`), without decoding it.
    virtual std::optional<PropertyList::Dictionary>
    properties(std::int64_t index, const PropertyList::Dictionary& options = {}) const = 0;
};

} // namespace zorvan
