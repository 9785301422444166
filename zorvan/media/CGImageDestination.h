#pragma once

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/foundation/PropertyList.h>
#include <zorvan/platform/foundation/URL.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zorvan {

class CGImage;

/// Writes pictures to a file or to bytes. Not safe to share between threads.
///
/// Options (`ImageKeys.h`): `kCGImageDestinationLossyCompressionQuality`, in the TIFF dictionary
/// the compression code, and the properties that the format stores, such as the orientation. Those
/// of a picture go before those of the file, and those before the ones given at creation.
class CGImageDestination {
public:
    /// Whether pictures of that type can be written. HEIC wants an encoder that is installed apart
    /// from the library on some systems.
    [[nodiscard]] static bool supports(std::string_view type);

    /// A destination for `count` pictures. Empty when the type cannot be written, when `count` is
    /// below 1, or when the URL is not that of a file.
    static std::shared_ptr<CGImageDestination> create(const URL& url, std::string_view type,
                                                      std::int64_t count,
                                                      const PropertyList::Dictionary& options = {});
    /// The same, the bytes to be appended to `data`.
    static std::shared_ptr<CGImageDestination> create(std::shared_ptr<Data> data,
                                                      std::string_view type, std::int64_t count,
                                                      const PropertyList::Dictionary& options = {});

    /// Properties of the whole file.
    void setProperties(const PropertyList::Dictionary& properties);

    /// Adds the next picture. Properties that were read beside a picture which has been turned
    /// upright since go through `CGImage::uprightMetadata`, or it is turned again. An empty one,
    /// and more than were announced, are left out.
    void addImage(std::shared_ptr<const CGImage> image,
                  const PropertyList::Dictionary& options = {});

    /// Encodes and writes what was added; true on success. False when fewer pictures were added
    /// than announced, when the encoder or the file system refuses, and when called again. A file
    /// is put in place in one step: on failure what was there before is still there. What is there
    /// and no regular file (a pipe, a device) is refused.
    [[nodiscard]] bool finalize();

private:
    struct Key {};
    struct Picture {
        std::shared_ptr<const CGImage> image;
        PropertyList::Dictionary options;
    };
    using Write = std::function<bool(const Data& bytes)>;

public:
    /// For `create`.
    CGImageDestination(Key, Write write, std::string_view type, std::int64_t count,
                       PropertyList::Dictionary options);

private:
    static std::shared_ptr<CGImageDestination> create(Write write, std::string_view type,
                                                      std::int64_t count,
                                                      const PropertyList::Dictionary& options);
    std::optional<Data> encoded() const;

    Write write_;
    std::string type_;
    std::int64_t count_;
    PropertyList::Dictionary options_;
    PropertyList::Dictionary properties_;
    std::vector<Picture> pictures_;
    bool isFinal_ = false;
};

} // namespace zorvan
