#include <zorvan/platform/imageio/internal/TiffFile.h>

#include <zorvan/platform/imageio/internal/FormatReader.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <new>
#include <unordered_set>

namespace zorvan::imageio {
namespace {

constexpr std::size_t maximumPages = 10'000;

int silence(TIFF*, void*, const char*, const char*, va_list) { return 1; }

/// Looks at the directories before libtiff does, whose time grows with the square of a directory's
/// entries, and which reads the values of all that it does not know, however often they are the
/// same bytes.
class DirectoryCheck {
public:
    DirectoryCheck(ByteSource& source, const TiffForm& form) : source_(source), form_(form) {}

    /// Where those of the file's chain are that may be read. One that may not hides none behind it.
    std::vector<std::uint64_t> readableInChain() {
        constexpr std::size_t longestChain = 1 << 16;
        std::vector<std::uint64_t> readable;
        std::unordered_set<std::uint64_t> seen; // a chain may run into itself
        std::uint64_t at = number(form_.wide ? 8 : 4, placeWidth());
        while (at != 0 && seen.size() < longestChain && seen.insert(at).second) {
            if (isReadable(at))
                readable.push_back(at);
            at = placeAfter(at);
        }
        return readable;
    }

    bool isReadable(std::uint64_t at) {
        constexpr std::uint64_t mostEntries = 1000;
        const std::uint64_t count = number(at, countWidth());
        // Directories that lie in each other would be read again and again.
        if (count > mostEntries || sizeFor(count) > left_)
            return false;
        left_ -= sizeFor(count);
        const std::uint64_t read =
            valueSizes(source_.bytes(at + countWidth(), count * entrySize()));
        if (read > valuesLeft_)
            return false;
        valuesLeft_ -= read;
        return true;
    }

private:
    std::uint64_t valueSizes(const Data& entries) const {
        std::uint64_t sum = 0;
        for (Bytes rest(entries); rest.size() >= entrySize(); rest = rest.subspan(entrySize()))
            sum += valueSize(rest.first(entrySize()));
        return sum;
    }

    /// What libtiff reads for that entry. Of a value that the file ends in it reads what is there,
    /// and drops it; those of types that it does not know it skips.
    std::uint64_t valueSize(Bytes entry) const {
        constexpr std::uint64_t lastType = 18;
        const auto part = [&](std::size_t offset, std::size_t width) {
            return numberAt(entry, offset, width, form_.bigEndian);
        };
        const std::uint64_t type = part(2, 2);
        const std::uint64_t width = type > TiffEntry::ieeeDouble ? 8 : sizeOfType(type);
        const std::uint64_t count = part(4, placeWidth());
        if (type > lastType || width == 0 || count <= placeWidth() / width) // it stands in place
            return 0;
        const std::uint64_t place = part(4 + placeWidth(), placeWidth());
        const std::uint64_t there = source_.size() - std::min(place, source_.size());
        return count > there / width ? there : count * width;
    }

    /// 0 when there is none.
    std::uint64_t placeAfter(std::uint64_t at) const {
        const std::uint64_t count = number(at, countWidth());
        constexpr std::uint64_t largestCount = 0xFFFF; // for which libtiff follows the chain
        return count > largestCount ? 0 : number(at + sizeFor(count) - placeWidth(), placeWidth());
    }

    std::size_t countWidth() const { return form_.wide ? 8 : 2; }
    std::size_t placeWidth() const { return form_.wide ? 8 : 4; }
    std::size_t entrySize() const { return form_.wide ? 20 : 12; }
    std::uint64_t sizeFor(std::uint64_t count) const {
        return countWidth() + count * entrySize() + placeWidth();
    }

    /// 0 past the end of the file, where libtiff finds that it is cut short.
    std::uint64_t number(std::uint64_t at, std::size_t width) const {
        std::array<std::byte, 8> bytes = {};
        const bool isThere = source_.fill(at, std::span(bytes).first(width));
        return isThere ? numberAt(bytes, 0, width, form_.bigEndian) : 0;
    }

    ByteSource& source_;
    TiffForm form_;
    // For all directories together. Some tags may stand for the same bytes, or for more than there
    // are; not hundreds for the same megabyte.
    std::uint64_t left_ = source_.size();
    std::uint64_t valuesLeft_ = (std::uint64_t{64} << 20) + 10 * source_.size();
};

std::vector<std::uint64_t> readableDirectories(ByteSource& source) {
    std::array<std::byte, 4> head = {};
    source.fill(0, head);
    const bool bigEndian = head[0] == std::byte{'M'};
    const bool wide = numberAt(head, 2, 2, bigEndian) == 43;
    return DirectoryCheck(source, {.bigEndian = bigEndian, .wide = wide}).readableInChain();
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
    const std::vector<std::uint64_t> directories = readableDirectories(source_);
    constexpr tmsize_t maximumAllocation = tmsize_t{1} << 30;
    const TiffAccess access = {
        read, [](thandle_t, void*, tmsize_t) { return tmsize_t{0}; }, seek,
        [](thandle_t handle) -> toff_t { return static_cast<TiffFile*>(handle)->source_.size(); }};
    // Without a memory map, with the places of the pixels looked up only when they are needed, and
    // with no directory read yet, as the first may be one that may not.
    tiff_ = openTiff("rmOh", this, access, maximumAllocation);
    if (!tiff_)
        fail();
    findPages(directories);
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
void TiffFile::findPages(const std::vector<std::uint64_t>& directories) {
    for (const std::uint64_t directory : directories) {
        if (pages_.size() == maximumPages)
            return;
        if (!makeCurrent(directory))
            continue;
        const auto kind = fieldOrDefault<std::uint32_t>(TIFFTAG_SUBFILETYPE, 0);
        if ((kind & FILETYPE_MASK) != 0)
            continue;
        if ((kind & FILETYPE_REDUCEDIMAGE) == 0 || pages_.empty())
            pages_.push_back({directory});
        else if (!pages_.back().reducedDirectory)
            pages_.back().reducedDirectory = directory;
    }
    if (pages_.empty())
        fail();
}

bool TiffFile::makeCurrent(std::uint64_t directory) {
    reachedEnd_ = false;
    return TIFFSetSubDirectory(get(), directory) == 1;
}

void TiffFile::select(std::uint64_t directory) {
    if (!makeCurrent(directory))
        fail();
}

void TiffFile::selectAt(std::uint64_t offset) {
    if (!DirectoryCheck(source_, form()).isReadable(offset))
        throw Failure{reason::damaged};
    select(offset);
}

void TiffFile::fail() const { throw Failure{reachedEnd_ ? reason::cutShort : reason::damaged}; }

void TiffFile::checkWithinFile(std::uint32_t strile) const {
    const std::uint64_t offset = TIFFGetStrileOffset(get(), strile);
    const std::uint64_t count = TIFFGetStrileByteCount(get(), strile);
    if (offset > source_.size() || count > source_.size() - offset)
        throw Failure{reason::cutShort};
}

} // namespace zorvan::imageio
