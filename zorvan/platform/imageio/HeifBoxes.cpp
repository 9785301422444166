#include <zorvan/platform/imageio/internal/HeifBoxes.h>

#include <zorvan/platform/imageio/internal/FormatReader.h>
#include <zorvan/platform/imageio/internal/HeifMeta.h>
#include <zorvan/platform/imageio/internal/HeifTransforms.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <initializer_list>
#include <string_view>

namespace zorvan::imageio {
namespace {

double fraction(HeifCursor& cursor, bool isSigned) {
    const std::uint32_t numerator = cursor.u32();
    const std::uint32_t denominator = cursor.u32();
    const double top = isSigned ? static_cast<double>(static_cast<std::int32_t>(numerator))
                                : static_cast<double>(numerator);
    return denominator == 0 ? 0 : top / denominator;
}

/// The clean aperture: a rectangle given by its size and how far its centre lies off.
PixelRect cleanAperture(Bytes content, PixelSize size) {
    HeifCursor cursor(content);
    const double width = fraction(cursor, false);
    const double height = fraction(cursor, false);
    const double x = fraction(cursor, true);
    const double y = fraction(cursor, true);
    const auto place = [](double offset, std::int64_t side, double kept) {
        constexpr double slack = 1e-6; // thirds and the like are not exact
        const double start = std::floor(offset + (static_cast<double>(side) - kept) / 2 + slack);
        return static_cast<std::int64_t>(std::clamp(start, 0.0, static_cast<double>(side)));
    };
    return {place(x, size.width, width), place(y, size.height, height),
            static_cast<std::int64_t>(width + 0.5), static_cast<std::int64_t>(height + 0.5)};
}

/// Its result, and whether it is a turn or mirror.
bool apply(const HeifBox& property, HeifTransforms& transforms) {
    if (property.type == "irot") {
        transforms.rotate(HeifCursor(property.content).u8() & 3);
        return true;
    }
    if (property.type == "imir") {
        transforms.mirror((HeifCursor(property.content).u8() & 1) != 0);
        return true;
    }
    if (property.type == "clap")
        transforms.keep(cleanAperture(property.content, transforms.size()));
    return false;
}

/// The bits, from the top: tier, more than 8 bits, 12 bits, monochrome, half width, half height.
void readAv1Description(int bits, HeifPicture& picture) {
    picture.monochrome = (bits & 0x10) != 0;
    const int colour = (bits & 0x08) == 0 ? 3 : (bits & 0x04) == 0 ? 2 : 1;
    picture.chroma = picture.monochrome ? 0 : colour;
    picture.depth = (bits & 0x40) == 0 ? 8 : (bits & 0x20) == 0 ? 10 : 12;
}

void readDescription(const HeifBox& property, HeifPicture& picture) {
    if (property.type == "pixi") {
        HeifFullBox box(property.content);
        picture.monochrome = box.cursor.u8() == 1;
        picture.depth = box.cursor.u8();
    } else if (property.type == "hvcC" && property.content.size() > 17) {
        picture.chroma = std::to_integer<int>(property.content[16]) & 3;
        picture.monochrome = picture.chroma == 0;
        picture.depth = (std::to_integer<int>(property.content[17]) & 7) + 8;
    } else if (property.type == "av1C" && property.content.size() >= 4) {
        readAv1Description(std::to_integer<int>(property.content[2]), picture);
    }
}

HeifPicture describe(const HeifMeta& meta, std::uint32_t id) {
    PixelSize coded;
    std::vector<HeifBox> properties; // of what it is made from first
    for (const std::uint32_t source : meta.sourcesOf(id)) {
        const HeifItem* item = meta.find(source);
        if (!item)
            throw Failure{reason::damaged};
        const std::vector<HeifBox> own = meta.propertiesOf(*item);
        properties.insert(properties.begin(), own.begin(), own.end());
        coded = codedSize(own);
    }
    HeifPicture picture = {.item = id, .coded = coded, .crop = {}};
    for (const HeifBox& property : properties)
        readDescription(property, picture);
    HeifTransforms transforms(picture.coded);
    bool turned = false;
    for (const HeifBox& property : properties)
        turned = apply(property, transforms) || turned;
    picture.crop = transforms.crop();
    if (turned)
        picture.orientation = transforms.orientation();
    return picture;
}

/// The tiles of a grid are coded alike, and only they say how.
void readTileDescription(const HeifMeta& meta, std::uint32_t grid, HeifPicture& picture) {
    const std::span<const HeifReference> parts = meta.referencesFrom(grid);
    const auto tile = std::ranges::find(parts, "dimg", &HeifReference::type);
    const HeifItem* item = tile == parts.end() ? nullptr : meta.find(tile->to);
    if (!item || picture.chroma)
        return;
    for (const HeifBox& property : meta.propertiesOf(*item))
        if (property.type == "hvcC" || property.type == "av1C")
            readDescription(property, picture);
}

void addRelated(const HeifMeta& meta, HeifPicture& picture) {
    picture.hasAlpha = meta.alphaOf(picture.item).has_value();
    readTileDescription(meta, meta.sourcesOf(picture.item).back(), picture);
    for (const HeifReference& reference : meta.referencesTo(picture.item)) {
        const HeifItem* from = meta.find(reference.from);
        if (reference.type == "thmb" && !picture.thumbnail)
            picture.thumbnail = reference.from;
        else if (reference.type == "cdsc" && from && from->type == "Exif" &&
                 from->extents.size() == 1)
            picture.exif = from->extents[0];
    }
}

bool isPictureType(std::string_view type) {
    constexpr std::array<std::string_view, 7> types = {"hvc1", "hev1", "grid", "iovl",
                                                       "iden", "av01", "jpeg"};
    return std::find(types.begin(), types.end(), type) != types.end();
}

/// Thumbnails, alpha planes and the tiles of a grid belong to another picture.
bool standsAlone(const HeifMeta& meta, std::uint32_t id, const HeifItem& item) {
    if (item.hidden || !isPictureType(item.type))
        return false;
    const auto servesAnother = [](const HeifReference& reference) {
        return reference.type == "thmb" || reference.type == "auxl";
    };
    const auto makesUpAnother = [](const HeifReference& reference) {
        return reference.type == "dimg";
    };
    return std::ranges::none_of(meta.referencesFrom(id), servesAnother) &&
           std::ranges::none_of(meta.referencesTo(id), makesUpAnother);
}

bool liesWithin(const HeifPicture::Extent& extent, std::uint64_t size) {
    return extent.offset <= size && extent.length <= size - extent.offset;
}

/// Whether the file's first box names one of these kinds as its own, or as one that it suits.
bool namesBrand(Bytes head, std::initializer_list<std::string_view> brands) noexcept {
    if (head.size() < 12 || textOf(head.subspan(4, 4)) != "ftyp")
        return false;
    const std::size_t end = std::min<std::size_t>(head.size(), big32(head, 0));
    constexpr std::size_t version = 12; // stands between the one and the others
    for (std::size_t at = 8; at + 4 <= end; at += 4)
        if (at != version &&
            std::find(brands.begin(), brands.end(), textOf(head.subspan(at, 4))) != brands.end())
            return true;
    return false;
}

} // namespace

bool isHeif(Bytes head) noexcept {
    return namesBrand(head, {"heic", "heix", "heim", "heis", "mif1", "avif", "hevc"});
}

bool isAvif(Bytes head) noexcept {
    return namesBrand(head, {"avif"}) && !namesBrand(head, {"heic", "heix", "heim", "heis"});
}

HeifPicture heifPictureOf(const HeifMeta& meta, std::uint32_t item) {
    HeifPicture picture = describe(meta, item);
    addRelated(meta, picture);
    return picture;
}

HeifFile heifFileOf(const HeifMeta& meta, std::uint64_t size) {
    HeifFile file;
    for (const auto& [id, item] : meta.items()) {
        for (const HeifPicture::Extent& extent : item.extents)
            file.isComplete = file.isComplete && liesWithin(extent, size);
        if (id != meta.primary() && !standsAlone(meta, id, item))
            continue;
        const bool primary = id == meta.primary();
        file.pictures.insert(primary ? file.pictures.begin() : file.pictures.end(),
                             heifPictureOf(meta, id));
    }
    if (file.pictures.empty())
        throw Failure{reason::damaged};
    return file;
}

} // namespace zorvan::imageio
