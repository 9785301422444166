#include <zorvan/platform/imageio/internal/HeifTiles.h>

#include <zorvan/platform/imageio/internal/FormatReader.h>
#include <zorvan/platform/imageio/internal/SinglePictureFile.h>

#include <algorithm>
#include <array>
#include <initializer_list>
#include <iterator>
#include <string_view>
#include <utility>

namespace zorvan::imageio {
namespace {

/// Those that tell how the picture is coded, not what is to be done with it afterwards; of each
/// kind the first, and none that is far too long for that.
std::vector<HeifBox> describingCoding(const std::vector<HeifBox>& properties) {
    constexpr std::size_t largestProperty = 1 << 16;
    std::vector<HeifBox> result;
    for (const std::string_view kind : {"hvcC", "av1C", "pixi", "auxC"}) {
        const auto found = std::ranges::find_if(properties, [kind](const HeifBox& property) {
            return property.type == kind && property.content.size() <= largestProperty;
        });
        if (found != properties.end())
            result.push_back(*found);
    }
    return result;
}

/// The description of the colours, empty when there is none. Of its numbers, those that libheif
/// might not know are told as unspecified: it loses memory over one of them, and the other numbers.
Data describingColours(const std::vector<HeifBox>& properties) {
    constexpr std::size_t size = 11;
    const auto found = std::ranges::find_if(properties, [](const HeifBox& property) {
        return property.type == "colr" && property.content.size() >= size &&
               textOf(property.content).starts_with("nclx");
    });
    if (found == properties.end())
        return {};
    Data colours(found->content.begin(), found->content.begin() + size);
    const auto keep = [&colours](std::size_t place, int first, int last) {
        constexpr int reserved = 3;
        const int number = big16(colours, place);
        if (number >= first && number <= last && number != reserved)
            return;
        colours[place] = std::byte{0};
        colours[place + 1] = std::byte{2};
    };
    keep(4, 1, 12);
    keep(6, 1, 18);
    keep(8, 0, 14);
    return colours;
}

} // namespace

bool HeifTiles::Layout::fits(const Layout& other) const {
    return tileSize == other.tileSize && columns == other.columns &&
           tiles.size() == other.tiles.size();
}

HeifTiles::HeifTiles(const HeifMeta& meta, ByteSource& source, std::uint32_t item)
    : meta_(meta), source_(source), colour_(layoutOf(item)) {
    const std::optional<std::uint32_t> alpha = meta.alphaOf(item);
    if (!alpha)
        return;
    alpha_ = layoutOf(*alpha);
    if (!alpha_->fits(colour_))
        throw Failure{reason::unsupported};
    isPremultiplied_ = std::ranges::any_of(meta.references(), [&](const HeifReference& reference) {
        return reference.type == "prem" && reference.from == item && reference.to == *alpha;
    });
}

HeifTiles::Layout HeifTiles::layoutOf(std::uint32_t id) const {
    const std::uint32_t made = meta_.sourcesOf(id).back();
    const HeifItem* item = meta_.find(made);
    if (!item)
        throw Failure{reason::damaged};
    if (item->type == "grid")
        return gridOf(made, *item, meta_.partsOf(made));
    const PixelSize size = sizeOf(made);
    return {.item = made, .size = size, .tileSize = size, .tiles = {made}};
}

HeifTiles::Layout HeifTiles::gridOf(std::uint32_t id, const HeifItem& grid,
                                    const std::vector<std::uint32_t>& tiles) const {
    const Data bytes = bytesOf(grid);
    HeifCursor cursor(bytes);
    cursor.u8(); // the version
    const std::size_t width = (cursor.u8() & 1) != 0 ? 4 : 2;
    const std::int64_t rows = cursor.u8() + 1;
    const std::int64_t columns = cursor.u8() + 1;
    const PixelSize size = {cursor.id(width), cursor.id(width)};
    if (size != sizeOf(id) || static_cast<std::int64_t>(tiles.size()) != rows * columns)
        throw Failure{reason::damaged};
    const PixelSize tileSize = sizeOf(tiles[0]);
    const bool areAlike =
        std::ranges::all_of(tiles, [&](std::uint32_t tile) { return sizeOf(tile) == tileSize; });
    if (!areAlike || tileSize.width * columns < size.width || tileSize.height * rows < size.height)
        throw Failure{reason::damaged};
    checkSize({tileSize.width * columns, tileSize.height * rows});
    checkBytes(tiles);
    return {.item = id, .size = size, .tileSize = tileSize, .columns = columns, .tiles = tiles};
}

/// Throws when tiles share far more bytes than equal tiles of a picture do: a large one could be
/// decoded thousands of times.
void HeifTiles::checkBytes(const std::vector<std::uint32_t>& tiles) const {
    constexpr std::uint64_t mostShared = 64 << 20;
    std::uint64_t left = source_.size() + mostShared;
    for (const std::uint32_t tile : tiles)
        for (const HeifPicture::Extent& extent : meta_.find(tile)->extents) {
            if (extent.length > left)
                throw Failure{reason::tooLarge};
            left -= extent.length;
        }
}

PixelSize HeifTiles::sizeOf(std::uint32_t item) const {
    const HeifItem* found = meta_.find(item);
    if (!found)
        throw Failure{reason::damaged};
    return codedSize(meta_.propertiesOf(*found));
}

const HeifItem& HeifTiles::coded(std::uint32_t item) const {
    constexpr std::array<std::string_view, 3> kinds = {"hvc1", "hev1", "av01"};
    const HeifItem* found = meta_.find(item);
    if (!found || std::ranges::find(kinds, found->type) == kinds.end())
        throw Failure{reason::unsupported};
    return *found;
}

Data HeifTiles::bytesOf(const HeifItem& item) const {
    const std::uint64_t most = std::min(source_.size(), std::uint64_t{1} << 30);
    Data bytes;
    for (const HeifPicture::Extent& extent : item.extents) {
        if (extent.length > most - bytes.size())
            throw Failure{reason::tooLarge};
        const Data piece = source_.bytes(extent.offset, extent.length);
        if (piece.size() < extent.length)
            throw Failure{reason::cutShort};
        bytes.insert(bytes.end(), piece.begin(), piece.end());
    }
    return bytes;
}

Data HeifTiles::file(std::int64_t column, std::int64_t row) const {
    const auto index = static_cast<std::size_t>(row * colour_.columns + column);
    std::vector<CodedPicture> pictures;
    const auto add = [&](const Layout& layout) {
        const std::uint32_t tile = layout.tiles[index];
        const HeifItem& item = coded(tile);
        // What holds for the whole picture goes before what its tile says.
        std::vector<HeifBox> properties = meta_.propertiesOf(*meta_.find(layout.item));
        std::ranges::copy(meta_.propertiesOf(item), std::back_inserter(properties));
        pictures.push_back({.type = item.type,
                            .size = layout.tileSize,
                            .properties = describingCoding(properties),
                            .colours = describingColours(properties),
                            .data = bytesOf(item)});
    };
    add(colour_);
    if (alpha_)
        add(*alpha_);
    return singlePictureFile(pictures, isPremultiplied_);
}

} // namespace zorvan::imageio
