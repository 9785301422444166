#pragma once

#include <zorvan/platform/foundation/internal/Release.h>
#include <zorvan/platform/imageio/internal/ByteSource.h>
#include <zorvan/platform/imageio/internal/TiffEntries.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include <tiffio.h>

namespace zorvan::imageio {

using Tiff = std::unique_ptr<TIFF, Release<TIFFClose>>;

/// How libtiff reads and writes what a handle stands for.
struct TiffAccess {
    TIFFReadWriteProc read, write;
    TIFFSeekProc seek;
    TIFFSizeProc size;
};

/// Opens it without a word about what is wrong; null when that fails. Throws when there is no
/// memory. `mostMemory` is what one part of it may take; 0 does not limit that.
Tiff openTiff(const char* mode, thandle_t handle, const TiffAccess& access, tmsize_t mostMemory);

/// The place after a seek.
toff_t soughtPlace(toff_t offset, int whence, std::uint64_t position, std::uint64_t size) noexcept;

/// libtiff reading from a source of ours.
class TiffFile {
public:
    /// Throws Failure when no page can be read.
    explicit TiffFile(ByteSource& source);
    TiffFile(const TiffFile&) = delete;
    TiffFile& operator=(const TiffFile&) = delete;

    TIFF* get() const noexcept { return tiff_.get(); }
    ByteSource& source() const noexcept { return source_; }
    TiffForm form() const noexcept {
        return {.bigEndian = TIFFIsBigEndian(get()) != 0, .wide = TIFFIsBigTIFF(get()) != 0};
    }

    /// Where in the file its directories are.
    struct Page {
        std::uint64_t directory;
        /// A reduced version of the page in the main chain.
        std::optional<std::uint64_t> reducedDirectory = {};
    };
    const std::vector<Page>& pages() const noexcept { return pages_; }

    /// Makes a page's directory the current one. Throws Failure.
    void select(std::uint64_t directory);
    /// The same for one outside the chain of the pages.
    void selectAt(std::uint64_t offset);

    /// Throws what the failure of a call on the current directory comes down to.
    [[noreturn]] void fail() const;
    /// Throws when the pixels of that strip or tile do not lie within the file.
    void checkWithinFile(std::uint32_t strile) const;

    /// A field with one value.
    template <class Value>
    std::optional<Value> field(std::uint32_t tag) const {
        Value value = {};
        return TIFFGetField(get(), tag, &value) == 1 ? std::optional(value) : std::nullopt;
    }
    template <class Value>
    Value fieldOrDefault(std::uint32_t tag, Value otherwise) const {
        Value value = {};
        return TIFFGetFieldDefaulted(get(), tag, &value) == 1 ? value : otherwise;
    }

private:
    static tmsize_t read(thandle_t handle, void* out, tmsize_t size);
    static toff_t seek(thandle_t handle, toff_t offset, int whence);

    void findPages(const std::vector<std::uint64_t>& directories);
    bool makeCurrent(std::uint64_t directory);

    ByteSource& source_;
    std::uint64_t position_ = 0;
    bool reachedEnd_ = false;
    Tiff tiff_;
    std::vector<Page> pages_ = {};
};

} // namespace zorvan::imageio
