#include <zorvan/platform/imageio/internal/TiffFile.h>

#include <zorvan/platform/imageio/internal/FormatReader.h>

#include <cstdio>
#include <new>

namespace zorvan::imageio {
namespace {

constexpr std::size_t maximumPages = 10'000;

int silence(TIFF*, void*, const char*, const char*, va_list) { return 1; }

} // namespace

Tiff openTiff(const char* mode, thandle_t handle, const TiffAccess& access, tmsize_t mostMemory) {
    const std::unique_ptr<TIFFOpenOptions, Release<TIFFOpenOptionsFree>> options(
        TIFFOpenOptionsAlloc());
    if (!options)
        throw std::bad_alloc();
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), mostMemory);
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), silence, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), silence, nullptr);
    return Tiff(TIFFClientOpenExt(
        "picture", mode, handle, access.read, access.write, access.seek,
        [](thandle_t) { return 0; }, access.size, nullptr, nullptr, options.get()));
}

toff_t soughtPlace(toff_t offset, int whence, std::uint64_t position, std::uint64_t size) noexcept {
    return offset + (whence == SEEK_SET ? 0 : whence == SEEK_CUR ? position : size);
}

TiffFile::TiffFile(ByteSource& source) : source_(source) {
    constexpr tmsize_t maximumAllocation = tmsize_t{1} << 30;
    const TiffAccess access = {
        read, [](thandle_t, void*, tmsize_t) { return tmsize_t{0}; }, seek,
        [](thandle_t handle) -> toff_t { return static_cast<TiffFile*>(handle)->source_.size(); }};
    // Without a memory map, and with the places of the pixels looked up only when they are needed.
    tiff_ = openTiff("rmO", this, access, maximumAllocation);
    if (!tiff_)
        fail();
    findPages();
}

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
    file.position_ = soughtPlace(offset, whence, file.position_, file.source_.size());
    if (file.position_ > file.source_.size())
        file.reachedEnd_ = true;
    return file.position_;
}

/// A reduced version follows its page in the chain, or hangs below it.
void TiffFile::findPages() {
    do {
        const tdir_t directory = TIFFCurrentDirectory(get());
        const auto kind = fieldOrDefault<std::uint32_t>(TIFFTAG_SUBFILETYPE, 0);
        if ((kind & FILETYPE_MASK) != 0)
            continue;
        if ((kind & FILETYPE_REDUCEDIMAGE) == 0 || pages_.empty())
            pages_.push_back({directory});
        else if (!pages_.back().reducedDirectory)
            pages_.back().reducedDirectory = directory;
    } while (pages_.size() < maximumPages && TIFFReadDirectory(get()) == 1);
    if (pages_.empty())
        throw Failure{reason::damaged};
}

void TiffFile::select(tdir_t directory) {
    reachedEnd_ = false;
    if (TIFFSetDirectory(get(), directory) != 1)
        fail();
}

void TiffFile::selectAt(std::uint64_t offset) {
    reachedEnd_ = false;
    if (TIFFSetSubDirectory(get(), offset) != 1)
        fail();
}

void TiffFile::fail() const { throw Failure{reachedEnd_ ? reason::cutShort : reason::damaged}; }

void TiffFile::checkWithinFile(std::uint32_t strile) const {
    const std::uint64_t offset = TIFFGetStrileOffset(get(), strile);
    const std::uint64_t count = TIFFGetStrileByteCount(get(), strile);
    if (offset > source_.size() || count > source_.size() - offset)
        throw Failure{reason::cutShort};
}

} // namespace zorvan::imageio
