#include <zorvan/platform/imageio/internal/HeifMeta.h>

#include <zorvan/platform/imageio/internal/FormatReader.h>
#include <zorvan/platform/imageio/internal/HevcSequence.h>

#include <algorithm>
#include <array>

namespace zorvan::imageio {

namespace {

constexpr int maximumTopLevelBoxes = 1000;
/// Of items, of references, of properties and of extents each: what is looked up in them takes the
/// square.
constexpr std::size_t maximumItems = 20'000;
constexpr std::size_t maximumPropertiesOfItem = 255;

HeifBox nextBox(HeifCursor& cursor) {
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

/// Where the content of the "meta" box is.
HeifPicture::Extent findMeta(ByteSource& source) {
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
        const std::string_view type = textOf(head).substr(4, 4);
        if (type == "meta")
            return {position + headLength, length - headLength};
        hasMovie = hasMovie || type == "moov";
        if (length > source.size() - position)
            throw Failure{reason::cutShort};
        position += length;
    }
    throw Failure{reason::damaged};
}

/// Those that have the item at that end, by which they are ordered.
std::span<const HeifReference> referencesOf(std::uint32_t id,
                                            const std::vector<HeifReference>& ordered,
                                            std::uint32_t HeifReference::*end) {
    return {std::ranges::lower_bound(ordered, id, {}, end),
            std::ranges::upper_bound(ordered, id, {}, end)};
}

} // namespace

Bytes HeifCursor::take(std::size_t count) {
    if (count > rest_.size())
        throw Failure{reason::damaged};
    const Bytes taken = rest_.first(count);
    rest_ = rest_.subspan(count);
    return taken;
}

HeifMeta::HeifMeta(ByteSource& source) {
    const HeifPicture::Extent place = findMeta(source);
    if (place.length > maximumMetadataSize)
        throw Failure{reason::tooLarge};
    start_ = place.offset;
    content_ = source.bytes(place.offset, place.length);
    if (content_.size() < place.length)
        throw Failure{reason::cutShort};
    readBoxes();
    orderReferences();
}

void HeifMeta::readBoxes() {
    HeifFullBox meta(content_);
    while (!meta.cursor.atEnd()) {
        const HeifBox box = nextBox(meta.cursor);
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
            dataOffset_ = start_ + static_cast<std::uint64_t>(box.content.data() - content_.data());
    }
    readLocations();
}

void HeifMeta::orderReferences() {
    std::ranges::stable_sort(references_, {}, &HeifReference::from);
    referencesByTarget_ = references_;
    std::ranges::stable_sort(referencesByTarget_, {}, &HeifReference::to);
}

const HeifItem* HeifMeta::find(std::uint32_t id) const {
    const auto found = items_.find(id);
    return found == items_.end() ? nullptr : &found->second;
}

std::span<const HeifReference> HeifMeta::referencesFrom(std::uint32_t id) const {
    return referencesOf(id, references_, &HeifReference::from);
}

std::span<const HeifReference> HeifMeta::referencesTo(std::uint32_t id) const {
    return referencesOf(id, referencesByTarget_, &HeifReference::to);
}

std::vector<HeifBox> HeifMeta::propertiesOf(const HeifItem& item) const {
    std::vector<HeifBox> result;
    for (const std::uint32_t index : item.properties)
        if (index >= 1 && index <= properties_.size())
            result.push_back(properties_[index - 1]);
    return result;
}

std::vector<std::uint32_t> HeifMeta::partsOf(std::uint32_t id) const {
    std::vector<std::uint32_t> result;
    for (const HeifReference& reference : referencesFrom(id))
        if (reference.type == "dimg")
            result.push_back(reference.to);
    return result;
}

std::vector<std::uint32_t> HeifMeta::sourcesOf(std::uint32_t id) const {
    constexpr std::size_t most = 8; // or it is made of itself
    std::vector<std::uint32_t> ids = {id};
    while (ids.size() < most) {
        const HeifItem* item = find(ids.back());
        if (!item || item->type != "iden")
            break;
        const std::vector<std::uint32_t> parts = partsOf(ids.back());
        if (parts.size() != 1)
            break;
        ids.push_back(parts[0]);
    }
    return ids;
}

std::optional<std::uint32_t> HeifMeta::alphaOf(std::uint32_t id) const {
    for (const HeifReference& reference : referencesTo(id))
        if (reference.type == "auxl" && isAlpha(reference.from))
            return reference.from;
    return std::nullopt;
}

bool HeifMeta::isAlpha(std::uint32_t id) const {
    const HeifItem* item = find(id);
    if (!item)
        return false;
    for (const HeifBox& property : propertiesOf(*item)) {
        if (property.type != "auxC" || property.content.size() < 4)
            continue;
        const std::string_view kind = textOf(property.content.subspan(4));
        if (kind.starts_with("urn:mpeg:hevc:2015:auxid:1") ||
            kind.starts_with("urn:mpeg:mpegB:cicp:systems:auxiliary:alpha"))
            return true;
    }
    return false;
}

HeifItem& HeifMeta::item(std::uint32_t id) {
    if (items_.size() >= maximumItems)
        throw Failure{reason::damaged};
    return items_[id];
}

void HeifMeta::readPrimary(Bytes content) {
    HeifFullBox box(content);
    primary_ = box.cursor.id(box.version == 0 ? 2 : 4);
}

void HeifMeta::readItems(Bytes content) {
    HeifFullBox list(content);
    list.cursor.take(list.version == 0 ? 2 : 4);
    while (!list.cursor.atEnd()) {
        const HeifBox box = nextBox(list.cursor);
        if (box.type != "infe")
            continue;
        HeifFullBox entry(box.content);
        if (entry.version < 2)
            continue;
        const auto id = entry.cursor.id(entry.version == 2 ? 2 : 4);
        entry.cursor.take(2);
        HeifItem& found = item(id);
        found.type = textOf(entry.cursor.take(4));
        found.hidden = (entry.flags & 1) != 0;
    }
}

void HeifMeta::readReferences(Bytes content) {
    HeifFullBox list(content);
    const std::size_t width = list.version == 0 ? 2 : 4;
    while (!list.cursor.atEnd()) {
        const HeifBox box = nextBox(list.cursor);
        HeifCursor cursor(box.content);
        const auto from = cursor.id(width);
        for (int count = cursor.u16(); count > 0; --count) {
            if (references_.size() >= maximumItems)
                throw Failure{reason::damaged};
            references_.push_back({box.type, from, cursor.id(width)});
        }
    }
}

void HeifMeta::readProperties(Bytes content) {
    HeifCursor cursor(content);
    while (!cursor.atEnd()) {
        const HeifBox box = nextBox(cursor);
        if (box.type == "ipco") {
            HeifCursor list(box.content);
            while (!list.atEnd() && properties_.size() < maximumItems)
                properties_.push_back(nextBox(list));
        } else if (box.type == "ipma") {
            readAssociations(box.content);
        }
    }
}

void HeifMeta::readAssociations(Bytes content) {
    HeifFullBox box(content);
    const std::size_t width = (box.flags & 1) != 0 ? 2 : 1;
    const std::uint32_t indexMask = width == 2 ? 0x7FFF : 0x7F; // the top bit: essential
    for (std::uint32_t entries = box.cursor.u32(); entries > 0; --entries) {
        HeifItem& owner = item(box.cursor.id(box.version < 1 ? 2 : 4));
        for (int count = box.cursor.u8(); count > 0; --count) {
            if (owner.properties.size() >= maximumPropertiesOfItem)
                throw Failure{reason::damaged};
            owner.properties.push_back(box.cursor.id(width) & indexMask);
        }
    }
}

void HeifMeta::readLocations() {
    if (locations_.empty())
        return;
    HeifFullBox box(locations_);
    HeifCursor& cursor = box.cursor;
    const int sizes = cursor.u16();
    const auto width = [&](int shift) { return static_cast<std::size_t>(sizes >> shift & 15); };
    const std::size_t indexWidth = box.version == 0 ? 0 : width(0);
    std::size_t extentCount = 0; // they may take no bytes at all
    std::uint32_t count = cursor.id(box.version < 2 ? 2 : 4);
    for (; count > 0; --count) {
        HeifItem& owner = item(cursor.id(box.version < 2 ? 2 : 4));
        const int method = box.version == 0 ? 0 : cursor.u16() & 15;
        cursor.take(2);
        const std::uint64_t base = cursor.number(width(4)) + (method == 1 ? dataOffset_ : 0);
        for (int extents = cursor.u16(); extents > 0; --extents) {
            if (++extentCount > maximumItems)
                throw Failure{reason::damaged};
            cursor.take(indexWidth);
            const std::uint64_t offset = cursor.number(width(12));
            const std::uint64_t length = cursor.number(width(8));
            if (method <= 1)
                owner.extents.push_back({base + offset, length});
        }
    }
}

/// Some encoders state the size that a quarter turn leads to, where the size before it belongs.
PixelSize codedSize(const std::vector<HeifBox>& properties) {
    PixelSize stated;
    for (const HeifBox& property : properties) {
        if (property.type != "ispe")
            continue;
        HeifFullBox box(property.content);
        stated.width = box.cursor.u32();
        stated.height = box.cursor.u32();
    }
    if (stated.width < 1 || stated.height < 1)
        throw Failure{reason::damaged};
    const PixelSize turned = {stated.height, stated.width};
    const auto coding = std::ranges::find(properties, "hvcC", &HeifBox::type);
    const bool isTurned = coding != properties.end() && hevcPictureSize(coding->content) == turned;
    return isTurned ? turned : stated;
}

} // namespace zorvan::imageio
