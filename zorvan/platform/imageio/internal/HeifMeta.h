#pragma once

#include <zorvan/platform/imageio/internal/ByteOrder.h>
#include <zorvan/platform/imageio/internal/HeifBoxes.h>

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace zorvan::imageio {

/// Reads one value after the other; past the end it throws.
class HeifCursor {
public:
    explicit HeifCursor(Bytes bytes) : rest_(bytes) {}

    std::uint64_t number(std::size_t width) { return bigEndian(take(width), 0, width); }
    std::uint32_t id(std::size_t width) { return static_cast<std::uint32_t>(number(width)); }
    std::uint32_t u32() { return id(4); }
    int u16() { return static_cast<int>(number(2)); }
    int u8() { return static_cast<int>(number(1)); }
    Bytes take(std::size_t count);
    Bytes rest() const { return rest_; }
    bool atEnd() const { return rest_.empty(); }

private:
    Bytes rest_;
};

struct HeifBox {
    std::string_view type;
    Bytes content;
};

/// A box that begins with a version and flags; the cursor stands behind them.
struct HeifFullBox {
    explicit HeifFullBox(Bytes content)
        : cursor(content), version(cursor.u8()),
          flags(static_cast<std::uint32_t>(cursor.number(3))) {}

    HeifCursor cursor;
    int version;
    std::uint32_t flags;
};

struct HeifItem {
    std::string_view type = {};
    bool hidden = false;
    std::vector<std::uint32_t> properties = {}; // 1-based, in the order of application
    std::vector<HeifPicture::Extent> extents = {};
};

struct HeifReference {
    std::string_view type;
    std::uint32_t from;
    std::uint32_t to;
};

/// The boxes inside the "meta" of a file, taken apart.
class HeifMeta {
public:
    /// Throws Failure.
    explicit HeifMeta(ByteSource& source);
    HeifMeta(const HeifMeta&) = delete;
    HeifMeta& operator=(const HeifMeta&) = delete;

    std::uint32_t primary() const { return primary_; }
    const std::map<std::uint32_t, HeifItem>& items() const { return items_; }
    const std::vector<HeifReference>& references() const { return references_; }
    /// Those of one item, each kind in the order of the file.
    std::span<const HeifReference> referencesFrom(std::uint32_t id) const;
    std::span<const HeifReference> referencesTo(std::uint32_t id) const;
    /// Null when there is none.
    const HeifItem* find(std::uint32_t id) const;
    /// The properties of an item, in the order of application.
    std::vector<HeifBox> propertiesOf(const HeifItem& item) const;
    /// What the item is made of.
    std::vector<std::uint32_t> partsOf(std::uint32_t id) const;
    /// The item, and below it what it is the same as but for turns and crops: the last is a coded
    /// picture, or made up of such.
    std::vector<std::uint32_t> sourcesOf(std::uint32_t id) const;
    /// The item that is the alpha of this one.
    std::optional<std::uint32_t> alphaOf(std::uint32_t id) const;

private:
    void readBoxes();
    void orderReferences();
    bool isAlpha(std::uint32_t id) const;
    HeifItem& item(std::uint32_t id);
    void readPrimary(Bytes content);
    void readItems(Bytes content);
    void readReferences(Bytes content);
    void readProperties(Bytes content);
    void readAssociations(Bytes content);
    void readLocations();

    std::uint64_t start_ = 0;
    Data content_ = {};
    std::uint64_t dataOffset_ = 0;
    std::uint32_t primary_ = 0;
    std::map<std::uint32_t, HeifItem> items_ = {};
    std::vector<HeifReference> references_ = {}; // in the order of the items they are from
    std::vector<HeifReference> referencesByTarget_ = {};
    std::vector<HeifBox> properties_ = {};
    Bytes locations_ = {};
};

/// The size before any turn that the properties of a picture state. Throws Failure when they state
/// none.
PixelSize codedSize(const std::vector<HeifBox>& properties);

} // namespace zorvan::imageio
