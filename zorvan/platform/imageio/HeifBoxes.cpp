#include <zorvan/platform/imageio/internal/HeifBoxes.h>

#include <zorvan/platform/imageio/internal/FormatReader.h>
#include <zorvan/platform/imageio/internal/HeifTransforms.h>
#include <zorvan/platform/imageio/internal/HevcSequence.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <initializer_list>
#include <map>
#include <string_view>
#include <utility>

namespace zorvan::imageio {
namespace {

constexpr std::size_t maximumItems = 100'000;
constexpr int maximumTopLevelBoxes = 1000;

std::string_view textOf(Bytes bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// Reads one value after the other; past the end it throws.
class Cursor {
public:
    explicit Cursor(Bytes bytes) : rest_(bytes) {}

    std::uint64_t number(std::size_t width) {
        const std::uint64_t value = bigEndian(take(width), 0, width);
        return value;
    }
    std::uint32_t u32() { return static_cast<std::uint32_t>(number(4)); }
    int u16() { return static_cast<int>(number(2)); }
    int u8() { return static_cast<int>(number(1)); }
    Bytes take(std::size_t count) {
        if (count > rest_.size())
            throw Failure{reason::damaged};
        const Bytes taken = rest_.first(count);
        rest_ = rest_.subspan(count);
        return taken;
    }
    Bytes rest() const { return rest_; }
    bool atEnd() const { return rest_.empty(); }

private:
    Bytes rest_;
};

struct Box {
    std::string_view type;
    Bytes content;
};

Box nextBox(Cursor& cursor) {
    std::uint64_t length = cursor.u32();
    const std::string_view type = textOf(cursor.take(4));
    std::uint64_t head = 8;
    if (length == 1) {
        length = cursor.number(8);
        head = 16;
    }
    if (length == 0)
        return {type, cursor.take(cursor.rest().size())};
    if (length < head)
        throw Failure{reason::damaged};
    return {type, cursor.take(static_cast<std::size_t>(length - head))};
}

struct FullBox {
    int version;
    std::uint32_t flags;
    Cursor cursor;
};

FullBox fullBox(Bytes content) {
    Cursor cursor(content);
    const int version = cursor.u8();
    const auto flags = static_cast<std::uint32_t>(cursor.number(3));
    return {version, flags, cursor};
}

struct Item {
    std::string_view type = {};
    bool hidden = false;
    std::vector<std::uint32_t> properties = {}; // 1-based, in the order of application
    std::vector<HeifPicture::Extent> extents = {};
};

struct Reference {
    std::string_view type;
    std::uint32_t from;
    std::uint32_t to;
};

/// The boxes inside "meta", taken apart.
class Meta {
public:
    explicit Meta(Bytes content, std::uint64_t contentOffset)
        : begin_(content.data()), start_(contentOffset) {
        FullBox meta = fullBox(content);
        while (!meta.cursor.atEnd()) {
            const Box box = nextBox(meta.cursor);
            if (box.type == "pitm")
                readPrimary(box.content);
            else if (box.type == "iinf")
                readItems(box.content);
            else if (box.type == "iref")
                readReferences(box.content);
            else if (box.type == "iprp")
                readProperties(box.content);
            else if (box.type == "iloc")
                locations_ = box.content;
            else if (box.type == "idat")
                dataOffset_ = offsetOf(box.content);
        }
        readLocations();
    }

    /// Where in the file a part of the boxes is.
    std::uint64_t offsetOf(Bytes part) const {
        return start_ + static_cast<std::uint64_t>(part.data() - begin_);
    }

    std::uint32_t primary() const { return primary_; }
    const std::map<std::uint32_t, Item>& items() const { return items_; }
    const std::vector<Reference>& references() const { return references_; }

    const Item* find(std::uint32_t id) const {
        const auto found = items_.find(id);
        return found == items_.end() ? nullptr : &found->second;
    }

    /// The properties of an item, in the order of application.
    std::vector<Box> propertiesOf(const Item& item) const {
        std::vector<Box> result;
        for (const std::uint32_t index : item.properties)
            if (index >= 1 && index <= properties_.size())
                result.push_back(properties_[index - 1]);
        return result;
    }

private:
    void readPrimary(Bytes content) {
        FullBox box = fullBox(content);
        primary_ = static_cast<std::uint32_t>(box.cursor.number(box.version == 0 ? 2 : 4));
    }

    Item& item(std::uint32_t id) {
        if (items_.size() >= maximumItems)
            throw Failure{reason::damaged};
        return items_[id];
    }

    void readItems(Bytes content) {
        FullBox list = fullBox(content);
        list.cursor.take(list.version == 0 ? 2 : 4);
        while (!list.cursor.atEnd()) {
            const Box box = nextBox(list.cursor);
            if (box.type != "infe")
                continue;
            FullBox entry = fullBox(box.content);
            if (entry.version < 2)
                continue;
            const auto id =
                static_cast<std::uint32_t>(entry.cursor.number(entry.version == 2 ? 2 : 4));
            entry.cursor.take(2);
            Item& found = item(id);
            found.type = textOf(entry.cursor.take(4));
            found.hidden = (entry.flags & 1) != 0;
        }
    }

    void readReferences(Bytes content) {
        FullBox list = fullBox(content);
        const std::size_t width = list.version == 0 ? 2 : 4;
        while (!list.cursor.atEnd()) {
            const Box box = nextBox(list.cursor);
            Cursor cursor(box.content);
            const auto from = static_cast<std::uint32_t>(cursor.number(width));
            for (int count = cursor.u16(); count > 0; --count) {
                if (references_.size() >= maximumItems)
                    throw Failure{reason::damaged};
                references_.push_back(
                    {box.type, from, static_cast<std::uint32_t>(cursor.number(width))});
            }
        }
    }

    void readProperties(Bytes content) {
        Cursor cursor(content);
        while (!cursor.atEnd()) {
            const Box box = nextBox(cursor);
            if (box.type == "ipco") {
                Cursor list(box.content);
                while (!list.atEnd() && properties_.size() < maximumItems)
                    properties_.push_back(nextBox(list));
            } else if (box.type == "ipma") {
                readAssociations(box.content);
            }
        }
    }

    void readAssociations(Bytes content) {
        FullBox box = fullBox(content);
        const std::size_t width = (box.flags & 1) != 0 ? 2 : 1;
        const std::uint32_t indexMask = width == 2 ? 0x7FFF : 0x7F; // the top bit: essential
        for (std::uint32_t entries = box.cursor.u32(); entries > 0; --entries) {
            Item& owner =
                item(static_cast<std::uint32_t>(box.cursor.number(box.version < 1 ? 2 : 4)));
            for (int count = box.cursor.u8(); count > 0; --count)
                owner.properties.push_back(static_cast<std::uint32_t>(box.cursor.number(width)) &
                                           indexMask);
        }
    }

    void readLocations() {
        if (locations_.empty())
            return;
        FullBox box = fullBox(locations_);
        Cursor& cursor = box.cursor;
        const int sizes = cursor.u16();
        const auto width = [&](int shift) { return static_cast<std::size_t>(sizes >> shift & 15); };
        const std::size_t indexWidth = box.version == 0 ? 0 : width(0);
        std::uint32_t count = static_cast<std::uint32_t>(cursor.number(box.version < 2 ? 2 : 4));
        for (; count > 0; --count) {
            Item& owner = item(static_cast<std::uint32_t>(cursor.number(box.version < 2 ? 2 : 4)));
            const int method = box.version == 0 ? 0 : cursor.u16() & 15;
            cursor.take(2);
            const std::uint64_t base = cursor.number(width(4)) + (method == 1 ? dataOffset_ : 0);
            for (int extents = cursor.u16(); extents > 0; --extents) {
                cursor.take(indexWidth);
                const std::uint64_t offset = cursor.number(width(12));
                const std::uint64_t length = cursor.number(width(8));
                if (method <= 1)
                    owner.extents.push_back({base + offset, length});
            }
        }
    }

    const std::byte* begin_;
    std::uint64_t start_;
    std::uint64_t dataOffset_ = 0;
    std::uint32_t primary_ = 0;
    std::map<std::uint32_t, Item> items_ = {};
    std::vector<Reference> references_ = {};
    std::vector<Box> properties_ = {};
    Bytes locations_ = {};
};

double fraction(Cursor& cursor, bool isSigned) {
    const std::uint32_t numerator = cursor.u32();
    const std::uint32_t denominator = cursor.u32();
    const double top = isSigned ? static_cast<double>(static_cast<std::int32_t>(numerator))
                                : static_cast<double>(numerator);
    return denominator == 0 ? 0 : top / denominator;
}

/// The clean aperture: a rectangle given by its size and how far its centre lies off.
PixelRect cleanAperture(Bytes content, PixelSize size) {
    Cursor cursor(content);
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
bool apply(const Box& property, HeifTransforms& transforms) {
    if (property.type == "irot") {
        transforms.rotate(Cursor(property.content).u8() & 3);
        return true;
    }
    if (property.type == "imir") {
        transforms.mirror((Cursor(property.content).u8() & 1) != 0);
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

void readDescription(const Box& property, HeifPicture& picture) {
    if (property.type == "ispe") {
        FullBox box = fullBox(property.content);
        picture.coded.width = box.cursor.u32();
        picture.coded.height = box.cursor.u32();
    } else if (property.type == "pixi") {
        FullBox box = fullBox(property.content);
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

/// Some encoders state the size that a quarter turn leads to, where the size before it belongs.
void mendTurnedSize(const Meta& meta, const std::vector<Box>& properties, HeifPicture& picture) {
    const PixelSize turned = {picture.coded.height, picture.coded.width};
    const auto isTurned = [&](const Box& property) {
        return property.type == "hvcC" && hevcPictureSize(property.content) == turned;
    };
    if (turned == picture.coded || std::ranges::none_of(properties, isTurned))
        return;
    picture.coded = turned;
    for (const Box& property : properties)
        if (property.type == "ispe")
            picture.turnedSizeAt = meta.offsetOf(property.content) + 4;
}

HeifPicture describe(const Meta& meta, std::uint32_t id, const Item& item) {
    HeifPicture picture = {.item = id, .coded = {}, .crop = {}};
    const std::vector<Box> properties = meta.propertiesOf(item);
    for (const Box& property : properties)
        readDescription(property, picture);
    if (picture.coded.width < 1 || picture.coded.height < 1)
        throw Failure{reason::damaged};
    mendTurnedSize(meta, properties, picture);
    HeifTransforms transforms(picture.coded);
    bool turned = false;
    for (const Box& property : properties)
        turned = apply(property, transforms) || turned;
    picture.crop = transforms.crop();
    if (turned)
        picture.orientation = transforms.orientation();
    return picture;
}

bool isAlpha(const Meta& meta, std::uint32_t id) {
    const Item* item = meta.find(id);
    if (!item)
        return false;
    for (const Box& property : meta.propertiesOf(*item)) {
        if (property.type != "auxC" || property.content.size() < 4)
            continue;
        const std::string_view kind = textOf(property.content.subspan(4));
        if (kind.starts_with("urn:mpeg:hevc:2015:auxid:1") ||
            kind.starts_with("urn:mpeg:mpegB:cicp:systems:auxiliary:alpha"))
            return true;
    }
    return false;
}

/// The tiles of a grid are coded alike, and only they say how.
void readTileDescription(const Meta& meta, std::uint32_t tile, HeifPicture& picture) {
    const Item* item = meta.find(tile);
    if (!item || picture.chroma)
        return;
    for (const Box& property : meta.propertiesOf(*item))
        if (property.type == "hvcC" || property.type == "av1C")
            readDescription(property, picture);
}

void addRelated(const Meta& meta, HeifPicture& picture) {
    for (const Reference& reference : meta.references()) {
        if (reference.type == "dimg" && reference.from == picture.item)
            readTileDescription(meta, reference.to, picture);
        if (reference.to != picture.item)
            continue;
        const Item* from = meta.find(reference.from);
        if (reference.type == "thmb" && !picture.thumbnail)
            picture.thumbnail = reference.from;
        else if (reference.type == "auxl" && isAlpha(meta, reference.from))
            picture.hasAlpha = true;
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
bool standsAlone(const Meta& meta, std::uint32_t id, const Item& item) {
    if (item.hidden || !isPictureType(item.type))
        return false;
    return std::none_of(meta.references().begin(), meta.references().end(),
                        [&](const Reference& reference) {
                            const bool part = reference.type == "thmb" || reference.type == "auxl";
                            return (part && reference.from == id) ||
                                   (reference.type == "dimg" && reference.to == id);
                        });
}

struct Located {
    std::uint64_t offset;
    std::uint64_t length;
};

/// Where the content of the "meta" box is.
Located findMeta(ByteSource& source) {
    std::uint64_t position = 0;
    bool hasMovie = false;
    for (int i = 0; i < maximumTopLevelBoxes; ++i) {
        std::array<std::byte, 16> head = {};
        if (source.read(position, head.data(), head.size()) < 8)
            throw Failure{hasMovie ? reason::unsupported : reason::cutShort};
        std::uint64_t length = big32(head, 0);
        std::uint64_t headLength = 8;
        if (length == 1) {
            length = bigEndian(head, 8, 8);
            headLength = 16;
        } else if (length == 0) {
            length = source.size() - position;
        }
        if (length < headLength)
            throw Failure{reason::damaged};
        if (textOf(head).substr(4, 4) == "meta")
            return {position + headLength, length - headLength};
        hasMovie = hasMovie || textOf(head).substr(4, 4) == "moov";
        if (length > source.size() - position)
            throw Failure{reason::cutShort};
        position += length;
    }
    throw Failure{reason::damaged};
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

HeifFile readHeifBoxes(ByteSource& source) {
    const Located place = findMeta(source);
    if (place.length > maximumMetadataSize)
        throw Failure{reason::tooLarge};
    const Data content = source.bytes(place.offset, place.length);
    if (content.size() < place.length)
        throw Failure{reason::cutShort};
    const Meta meta(content, place.offset);
    HeifFile file;
    for (const auto& [id, item] : meta.items()) {
        for (const HeifPicture::Extent& extent : item.extents)
            file.isComplete = file.isComplete && liesWithin(extent, source.size());
        if (id != meta.primary() && !standsAlone(meta, id, item))
            continue;
        HeifPicture picture = describe(meta, id, item);
        addRelated(meta, picture);
        const bool primary = id == meta.primary();
        file.pictures.insert(primary ? file.pictures.begin() : file.pictures.end(), picture);
    }
    if (file.pictures.empty())
        throw Failure{reason::damaged};
    return file;
}

} // namespace zorvan::imageio
