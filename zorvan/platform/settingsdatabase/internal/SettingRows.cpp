#include <zorvan/platform/settingsdatabase/internal/SettingRows.h>

#include <zorvan/platform/foundation/internal/KeyedHash.h>
#include <zorvan/platform/settingsdatabase/internal/StoredValue.h>

#include <algorithm>
#include <utility>

namespace zorvan::internal {

namespace {

constexpr std::size_t leastSlots = 64;

std::uint32_t hashOf(std::string_view key) { return static_cast<std::uint32_t>(KeyedHash()(key)); }

bool isRemoval(const SettingContent& content) {
    return std::holds_alternative<std::monostate>(content);
}

SharedSetting shared(std::optional<PropertyList> value) {
    return value ? std::make_shared<const PropertyList>(std::move(*value)) : SharedSetting();
}

} // namespace

std::size_t SettingRows::placeOf(std::string_view key, std::uint32_t hash) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t place = hash & mask;
    while (slots_[place].row != 0 &&
           (slots_[place].hash != hash || rows_[slots_[place].row - 1].key != key))
        place = (place + 1) & mask;
    return place;
}

std::uint32_t SettingRows::numberOf(std::string_view key) const {
    return rows_.empty() ? 0 : slots_[placeOf(key, hashOf(key))].row;
}

const SettingRows::Row* SettingRows::find(std::string_view key) const {
    const std::uint32_t number = numberOf(key);
    return number == 0 ? nullptr : &rows_[number - 1];
}

SharedSetting SettingRows::value(std::string_view key) {
    const std::uint32_t number = numberOf(key);
    if (number == 0)
        return {};
    SettingContent& content = rows_[number - 1].content;
    if (auto* value = std::get_if<PropertyList>(&content))
        content = shared(std::move(*value));
    else if (const auto* encoded = std::get_if<EncodedSetting>(&content))
        content = shared(decodeStored(encoded->bytes));
    const auto* value = std::get_if<SharedSetting>(&content);
    return value ? *value : SharedSetting();
}

std::int64_t SettingRows::put(std::string_view key, std::int64_t id, SettingContent content) {
    const std::uint32_t hash = hashOf(key);
    if (2 * rows_.size() >= slots_.size())
        makeRoom();
    Slot& slot = slots_[placeOf(key, hash)];
    if (slot.row == 0) {
        char* const bytes = static_cast<char*>(keys_->allocate(key.size(), 1));
        std::ranges::copy(key, bytes);
        rows_.push_back({{bytes, key.size()}, 0, std::monostate()});
        slot = {hash, static_cast<std::uint32_t>(rows_.size())};
        ++removed_;
    }
    Row& row = rows_[slot.row - 1];
    removed_ += isRemoval(content);
    removed_ -= isRemoval(row.content);
    row.content = std::move(content);
    return std::exchange(row.id, id);
}

void SettingRows::put(SettingRows others) {
    for (Row& row : others.rows_)
        put(row.key, row.id, std::move(row.content));
}

void SettingRows::makeRoom() {
    std::vector<Slot> old(std::max(leastSlots, 2 * slots_.size()));
    old.swap(slots_);
    const std::size_t mask = slots_.size() - 1;
    for (const Slot& slot : old) {
        if (slot.row == 0)
            continue;
        std::size_t place = slot.hash & mask;
        while (slots_[place].row != 0)
            place = (place + 1) & mask;
        slots_[place] = slot;
    }
}

void SettingRows::forgetRemoved() {
    // What needs memory comes first.
    SettingRows kept;
    for (const Row& row : rows_)
        if (!isRemoval(row.content))
            kept.put(row.key, row.id, std::monostate());
    auto place = kept.rows_.begin();
    for (Row& row : rows_)
        if (!isRemoval(row.content))
            (place++)->content = std::move(row.content);
    kept.removed_ = 0;
    *this = std::move(kept);
}

std::optional<PropertyList> copyOf(const SettingContent& content) {
    if (const auto* value = std::get_if<PropertyList>(&content))
        return *value;
    if (const auto* encoded = std::get_if<EncodedSetting>(&content))
        return decodeStored(encoded->bytes);
    if (const auto* value = std::get_if<SharedSetting>(&content); value && *value)
        return **value;
    return std::nullopt;
}

} // namespace zorvan::internal
