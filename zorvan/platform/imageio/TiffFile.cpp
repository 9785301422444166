#include <zorvan/platform/imageio/internal/TiffFile.h>

#include <zorvan/platform/imageio/internal/FormatReader.h>

#include <algorithm>
#include <cstdio>

namespace zorvan::imageio {
namespace {

constexpr std::size_t maximumPages = 10'000;

int silence(TIFF*, void*, const char*, const char*, va_list) { return 1; }

} // namespace

TiffFile::TiffFile(ByteSource& source) : source_(source) {
    constexpr tmsize_t maximumAllocation = tmsize_t{1} << 30;
    TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
    if (!options)
        throw Failure{reason::noMemory};
    TIFFOpenOptionsSetMaxSingleMemAlloc(options, maximumAllocation);
    TIFFOpenOptionsSetErrorHandlerExtR(options, silence, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(options, silence, nullptr);
    // Without a memory map, and with the places of the pixels looked up only when they are needed.
    tiff_ = TIFFClientOpenExt(
        "picture", "rmO", this, read, [](thandle_t, void*, tmsize_t) { return tmsize_t{0}; }, seek,
        [](thandle_t) { return 0; },
        [](thandle_t handle) -> toff_t { return static_cast<TiffFile*>(handle)->source_.size(); },
        nullptr, nullptr, options);
    TIFFOpenOptionsFree(options);
    if (!tiff_)
        throw Failure{reachedEnd_ ? reason::cutShort : reason::damaged};
    try {
        findPages();
    } catch (...) {
        TIFFClose(tiff_);
        throw;
    }
}

TiffFile::~TiffFile() { TIFFClose(tiff_); }

tmsize_t TiffFile::read(thandle_t handle, void* out, tmsize_t size) {
    TiffFile& file = *static_cast<TiffFile*>(handle);
    const std::size_t count =
        file.source_.read(file.position_, out, static_cast<std::size_t>(size));
    if (count < static_cast<std::size_t>(size))
        file.reachedEnd_ = true;
    file.position_ += count;
    return static_cast<tmsize_t>(count);
}

toff_t TiffFile::seek(thandle_t handle, toff_t offset, int whence) {
    TiffFile& file = *static_cast<TiffFile*>(handle);
    const std::uint64_t base = whence == SEEK_SET   ? 0
                               : whence == SEEK_CUR ? file.position_
                                                    : file.source_.size();
    file.position_ = base + offset;
    if (file.position_ > file.source_.size())
        file.reachedEnd_ = true;
    return file.position_;
}

/// A reduced version follows its page in the chain, or hangs below it.
void TiffFile::findPages() {
    do {
        const tdir_t directory = TIFFCurrentDirectory(tiff_);
        const auto kind = fieldOrDefault<std::uint32_t>(TIFFTAG_SUBFILETYPE, 0);
        if ((kind & FILETYPE_MASK) != 0)
            continue;
        if ((kind & FILETYPE_REDUCEDIMAGE) == 0 || pages_.empty())
            pages_.push_back({directory});
        else if (!pages_.back().reducedDirectory)
            pages_.back().reducedDirectory = directory;
    } while (pages_.size() < maximumPages && TIFFReadDirectory(tiff_) == 1);
    if (pages_.empty())
        throw Failure{reason::damaged};
}

void TiffFile::select(tdir_t directory) {
    reachedEnd_ = false;
    if (TIFFSetDirectory(tiff_, directory) != 1)
        fail();
}

void TiffFile::selectAt(std::uint64_t offset) {
    reachedEnd_ = false;
    if (TIFFSetSubDirectory(tiff_, offset) != 1)
        fail();
}

void TiffFile::fail() const { throw Failure{reachedEnd_ ? reason::cutShort : reason::damaged}; }

void TiffFile::checkWithinFile(std::uint32_t strile) const {
    const std::uint64_t offset = TIFFGetStrileOffset(tiff_, strile);
    const std::uint64_t count = TIFFGetStrileByteCount(tiff_, strile);
    if (offset > source_.size() || count > source_.size() - offset)
        throw Failure{reason::cutShort};
}

} // namespace zorvan::imageio
