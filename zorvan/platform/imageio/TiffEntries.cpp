#include <zorvan/platform/imageio/internal/TiffEntries.h>

#include <zorvan/platform/imageio/internal/ByteOrder.h>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace zorvan::imageio {
namespace {

constexpr std::uint64_t maximumEntries = 1000;
constexpr std::uint64_t maximumValueSize = 16 << 10;

/// The widths of a directory's own numbers.
struct Widths {
    std::size_t entryCount;
    std::size_t position;
    std::size_t entry() const { return 4 + 2 * position; }
};

Widths widthsOf(const TiffForm& form) { return form.wide ? Widths{8, 8} : Widths{2, 4}; }

/// Absent when the value is too long or lies outside the file.
std::optional<TiffEntry> entryFrom(Bytes bytes, const TiffForm& form, ByteSource& source) {
    const std::size_t width = widthsOf(form).position;
    const auto number = [&](std::size_t offset, std::size_t size) {
        return numberAt(bytes, offset, size, form.bigEndian);
    };
    const std::uint64_t type = number(2, 2);
    const std::uint64_t count = number(4, width);
    const std::uint64_t typeSize = sizeOfType(type);
    if (typeSize == 0 || count == 0 || count > maximumValueSize / typeSize)
        return std::nullopt;
    const std::uint64_t size = count * typeSize;
    const Bytes inPlace = bytes.subspan(4 + width);
    TiffEntry entry = {.tag = static_cast<std::uint16_t>(number(0, 2)),
                       .type = static_cast<std::uint16_t>(type),
                       .count = static_cast<std::uint32_t>(count),
                       .value = {}};
    if (size <= width)
        entry.value.assign(inPlace.begin(), inPlace.begin() + static_cast<std::ptrdiff_t>(size));
    else
        entry.value = source.bytes(number(4 + width, width), size);
    return entry.value.size() == size ? std::optional(std::move(entry)) : std::nullopt;
}

std::uint64_t paddedSize(const TiffEntry& entry, std::size_t inPlace) {
    const std::uint64_t size = entry.value.size();
    return size > inPlace ? size + (size & 1) : 0;
}

std::uint64_t directorySize(std::span<const TiffEntry> entries, const TiffForm& form) {
    const Widths widths = widthsOf(form);
    std::uint64_t size = widths.entryCount + entries.size() * widths.entry() + widths.position;
    for (const TiffEntry& entry : entries)
        size += paddedSize(entry, widths.position);
    return size;
}

/// The entry that says where another directory begins.
TiffEntry pointer(std::uint16_t tag, std::uint64_t place, bool bigEndian) {
    TiffEntry entry = {.tag = tag, .type = TiffEntry::longNumber, .count = 1, .value = {}};
    appendNumber(entry.value, place, 4, bigEndian);
    return entry;
}

} // namespace

std::uint64_t sizeOfType(std::uint64_t type) noexcept {
    constexpr std::array<std::uint64_t, 13> sizes = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8};
    return type < sizes.size() ? sizes[type] : 0;
}

std::vector<TiffEntry> readTiffEntries(ByteSource& source, const TiffForm& form,
                                       std::uint64_t directory) {
    const Widths widths = widthsOf(form);
    const Data head = source.bytes(directory, widths.entryCount);
    const std::uint64_t count =
        std::min(numberAt(head, 0, widths.entryCount, form.bigEndian), maximumEntries);
    const Data table = source.bytes(directory + widths.entryCount, count * widths.entry());
    std::vector<TiffEntry> result;
    for (Bytes rest(table); rest.size() >= widths.entry(); rest = rest.subspan(widths.entry()))
        if (auto entry = entryFrom(rest.first(widths.entry()), form, source))
            result.push_back(std::move(*entry));
    return result;
}

void appendNumber(Data& out, std::uint64_t value, std::size_t width, bool bigEndian) {
    internal::appendNumber(out, value, width, bigEndian ? std::endian::big : std::endian::little);
}

void appendTiffDirectory(Data& out, std::span<const TiffEntry> entries, const TiffForm& form) {
    const Widths widths = widthsOf(form);
    std::uint64_t place =
        out.size() + widths.entryCount + entries.size() * widths.entry() + widths.position;
    appendNumber(out, entries.size(), widths.entryCount, form.bigEndian);
    for (const TiffEntry& entry : entries) {
        appendNumber(out, entry.tag, 2, form.bigEndian);
        appendNumber(out, entry.type, 2, form.bigEndian);
        appendNumber(out, entry.count, widths.position, form.bigEndian);
        const std::uint64_t size = paddedSize(entry, widths.position);
        if (size > 0) {
            appendNumber(out, place, widths.position, form.bigEndian);
            place += size;
        } else {
            out.insert(out.end(), entry.value.begin(), entry.value.end());
            out.resize(out.size() + widths.position - entry.value.size());
        }
    }
    appendNumber(out, 0, widths.position, form.bigEndian); // no directory follows
    for (const TiffEntry& entry : entries) {
        const std::uint64_t size = paddedSize(entry, widths.position);
        if (size == 0)
            continue;
        out.insert(out.end(), entry.value.begin(), entry.value.end());
        out.resize(out.size() + static_cast<std::size_t>(size) - entry.value.size());
    }
}

Data exifBlockOf(std::vector<TiffEntry> first, std::span<const TiffEntry> exif,
                 std::span<const TiffEntry> gps, bool bigEndian) {
    constexpr std::uint16_t exifDirectory = 0x8769;
    constexpr std::uint16_t gpsDirectory = 0x8825;
    constexpr std::uint64_t headSize = 8;
    const TiffForm form = {.bigEndian = bigEndian};
    if (!exif.empty())
        first.push_back(pointer(exifDirectory, 0, bigEndian));
    if (!gps.empty())
        first.push_back(pointer(gpsDirectory, 0, bigEndian));
    // Where the other directories begin is known once the size of the first is.
    const std::uint64_t second = headSize + directorySize(first, form);
    for (TiffEntry& entry : first)
        if (entry.tag == exifDirectory)
            entry = pointer(exifDirectory, second, bigEndian);
        else if (entry.tag == gpsDirectory)
            entry = pointer(gpsDirectory, second + (exif.empty() ? 0 : directorySize(exif, form)),
                            bigEndian);
    std::sort(first.begin(), first.end(),
              [](const TiffEntry& a, const TiffEntry& b) { return a.tag < b.tag; });
    Data block;
    appendNumber(block, bigEndian ? 0x4D4D : 0x4949, 2, bigEndian);
    appendNumber(block, 42, 2, bigEndian);
    appendNumber(block, headSize, 4, bigEndian);
    appendTiffDirectory(block, first, form);
    for (const auto& directory : {exif, gps})
        if (!directory.empty())
            appendTiffDirectory(block, directory, form);
    return block;
}

} // namespace zorvan::imageio
