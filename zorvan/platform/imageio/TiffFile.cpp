#include <zorvan/platform/imageio/internal/TiffFile.h>

#include <zorvan/platform/imageio/internal/FormatReader.h>

#include <array>
#include <cstdio>
#include <new>

namespace zorvan::imageio {
namespace {

constexpr std::size_t maximumPages = 10'000;

int silence(TIFF*, void*, const char*, const char*, va_list) { return 1; }

/// Looks at the directories before libtiff does, whose time grows with the square of a directory's
/// entries, and which reads the values of all that it does not know, however often they are the
/// same bytes. Throws Failure.
class DirectoryCheck {
public:
    DirectoryCheck(ByteSource& source, const TiffForm& form) : source_(source), form_(form) {}

    /// How many of the file's are sound, one after the other. Throws when not even the first is.
    int countChain() {
        int count = 0;
        for (std::uint64_t at = number(form_.wide ? 8 : 4, placeWidth()); at != 0; ++count)
            try {
                at = check(at);
            } catch (const Failure&) {
                if (count == 0)
                    throw;
                break;
            }
        return count;
    }

    /// The one at that place; gives the place of the next, 0 when there is none.
    std::uint64_t check(std::uint64_t at) {
        constexpr std::uint64_t mostEntries = 1000;
        const std::size_t countWidth = form_.wide ? 8 : 2;
        const std::uint64_t count = number(at, countWidth);
        const std::uint64_t size = countWidth + count * entrySize() + placeWidth();
        // Directories that lie in each other would be read again and again.
        if (count > mostEntries || size > left_)
            throw Failure{reason::damaged};
        left_ -= size;
        checkValues(source_.bytes(at + countWidth, count * entrySize()));
        return number(at + countWidth + count * entrySize(), placeWidth());
    }

private:
    void checkValues(const Data& entries) const {
        std::uint64_t left = source_.size();
        for (std::size_t at = 0; at < entries.size(); at += entrySize()) {
            const std::uint64_t type = numberAt(entries, at + 2, 2, form_.bigEndian);
            const std::uint64_t count = numberAt(entries, at + 4, placeWidth(), form_.bigEndian);
            const std::uint64_t width = type > TiffEntry::ieeeDouble ? 8 : sizeOfType(type);
            if (width > 0 && count > left / width)
                throw Failure{count > source_.size() / width ? reason::cutShort : reason::damaged};
            left -= count * width;
        }
    }

    std::size_t placeWidth() const { return form_.wide ? 8 : 4; }
    std::size_t entrySize() const { return form_.wide ? 20 : 12; }

    /// 0 past the end of the file, where libtiff finds that it is cut short.
    std::uint64_t number(std::uint64_t at, std::size_t width) const {
        std::array<std::byte, 8> bytes = {};
        const bool isThere = source_.fill(at, std::span(bytes).first(width));
        return isThere ? numberAt(bytes, 0, width, form_.bigEndian) : 0;
    }

    ByteSource& source_;
    TiffForm form_;
    std::uint64_t left_ = source_.size(); // for all directories together
};

int countDirectories(ByteSource& source) {
    std::array<std::byte, 4> head = {};
    source.fill(0, head);
    const bool bigEndian = head[0] == std::byte{'M'};
    const bool wide = numberAt(head, 2, 2, bigEndian) == 43;
    return DirectoryCheck(source, {.bigEndian = bigEndian, .wide = wide}).countChain();
}

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
    const int directoryCount = countDirectories(source_);
    constexpr tmsize_t maximumAllocation = tmsize_t{1} << 30;
    const TiffAccess access = {
        read, [](thandle_t, void*, tmsize_t) { return tmsize_t{0}; }, seek,
        [](thandle_t handle) -> toff_t { return static_cast<TiffFile*>(handle)->source_.size(); }};
    // Without a memory map, and with the places of the pixels looked up only when they are needed.
    tiff_ = openTiff("rmO", this, access, maximumAllocation);
    if (!tiff_)
        fail();
    findPages(directoryCount);
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
void TiffFile::findPages(int directoryCount) {
    int next = 0;
    do {
        const tdir_t directory = TIFFCurrentDirectory(get());
        const auto kind = fieldOrDefault<std::uint32_t>(TIFFTAG_SUBFILETYPE, 0);
        if ((kind & FILETYPE_MASK) != 0)
            continue;
        if ((kind & FILETYPE_REDUCEDIMAGE) == 0 || pages_.empty())
            pages_.push_back({directory});
        else if (!pages_.back().reducedDirectory)
            pages_.back().reducedDirectory = directory;
    } while (++next < directoryCount && pages_.size() < maximumPages &&
             TIFFReadDirectory(get()) == 1);
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
    DirectoryCheck(source_, form()).check(offset);
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
