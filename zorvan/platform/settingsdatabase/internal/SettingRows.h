#pragma once

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/foundation/PropertyList.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <memory_resource>
#include <optional>
#include <string_view>
#include <variant>
#include <vector>

namespace zorvan::internal {

/// The value of a row, by `encodeStored`; may be anything.
struct EncodedSetting {
    Data bytes;
};

using SharedSetting = std::shared_ptr<const PropertyList>;

/// What a row says of its key: that it was removed, or its value. Values are decoded and put where
/// they can be shared when somebody asks for them, so that a domain of many keys opens quickly.
using SettingContent = std::variant<std::monostate, PropertyList, EncodedSetting, SharedSetting>;

/// The rows of a domain by key, one behind the other.
class SettingRows {
public:
    struct Row {
        std::string_view key;
        std::int64_t id = 0;
        SettingContent content;
    };

    /// Null when there is none. Valid until the rows change.
    const Row* find(std::string_view key) const;

    /// The value under the key; null for none, and for bytes that stand for none.
    SharedSetting value(std::string_view key);

    /// The identifier of the row that it replaces, 0 for none.
    std::int64_t put(std::string_view key, std::int64_t id, SettingContent content);

    /// All of the other's rows.
    void put(SettingRows others);

    void forgetRemoved();

    const std::vector<Row>& all() const noexcept { return rows_; }
    std::size_t removed() const noexcept { return removed_; }

private:
    /// A place of the table: the row's index, one more so that 0 is nothing, and its hash.
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t row = 0;
    };

    /// The index of the key's row, one more; 0 for none.
    std::uint32_t numberOf(std::string_view key) const;
    /// The place that the key has, or would have.
    std::size_t placeOf(std::string_view key, std::uint32_t hash) const;
    void makeRoom();

    using Arena = std::pmr::monotonic_buffer_resource;
    std::unique_ptr<Arena> keys_ = std::make_unique<Arena>();
    std::vector<Row> rows_;
    std::vector<Slot> slots_; // empty, or a power of two of them, half of them free
    std::size_t removed_ = 0;
};

/// A copy of the value; absent for none.
std::optional<PropertyList> copyOf(const SettingContent& content);

} // namespace zorvan::internal
