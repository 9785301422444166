#include <zorvan/platform/settingsdatabase/internal/SettingsMemory.h>

#include <algorithm>
#include <bit>
#include <utility>

namespace zorvan::internal {

SettingsMemory::Value SettingsMemory::value(std::string_view key) {
    if (!pending_.empty())
        if (const auto found = pending_.find(key); found != pending_.end())
            return found->second.value;
    return rows_.value(key);
}

std::int64_t SettingsMemory::row(std::string_view key) const {
    const auto* row = rows_.find(key);
    return row ? row->id : 0;
}

PropertyList::Dictionary SettingsMemory::contents(const Changes& changes) const {
    PropertyList::Dictionary all;
    for (const auto& row : rows_.all())
        if (auto value = copyOf(row.content))
            all.emplace(row.key, std::move(*value));
    const auto put = [&](const std::string& key, const Value& value) {
        all.erase(key);
        if (value)
            all.emplace(key, *value);
    };
    for (const auto& [key, change] : pending_)
        put(key, change.value);
    for (const auto& [key, value] : changes)
        put(key, value);
    return all;
}

std::vector<std::string> SettingsMemory::keysOfRows() const {
    std::vector<std::string> keys;
    for (const auto& row : rows_.all())
        if (!std::holds_alternative<std::monostate>(row.content))
            keys.emplace_back(row.key);
    return keys;
}

bool SettingsMemory::hasStorablePending() const {
    return std::ranges::any_of(pending_,
                               [](const auto& change) { return change.second.isStorable; });
}

void SettingsMemory::take(SettingRows incoming) {
    if (rows_.all().empty())
        rows_ = std::move(incoming);
    else
        rows_.put(std::move(incoming));
}

void SettingsMemory::stored(const std::string& key, Value value, std::int64_t id) {
    rows_.put(key, id, value ? SettingContent(std::move(value)) : SettingContent());
    pending_.erase(key);
}

void SettingsMemory::keep(const std::string& key, Value value, bool isStorable) {
    pending_.insert_or_assign(key, Pending{std::move(value), isStorable});
}

void SettingsMemory::clear() {
    forgetRows();
    pending_.clear();
}

void SettingsMemory::keepEverything() {
    for (const auto& row : rows_.all())
        if (Value value = rows_.value(row.key))
            pending_.try_emplace(std::string(row.key), Pending{std::move(value)});
    forgetRows();
}

bool isIdentical(const PropertyList& a, const PropertyList& b) {
    const auto* numberA = a.as<NSNumber>();
    const auto* numberB = b.as<NSNumber>();
    if (numberA && numberB)
        return numberA->isBool() == numberB->isBool() && numberA->isReal() == numberB->isReal() &&
               numberA->int64Value() == numberB->int64Value() &&
               numberA->uint64Value() == numberB->uint64Value() &&
               std::bit_cast<std::uint64_t>(numberA->doubleValue()) ==
                   std::bit_cast<std::uint64_t>(numberB->doubleValue());
    const auto* arrayA = a.as<PropertyList::Array>();
    const auto* arrayB = b.as<PropertyList::Array>();
    if (arrayA && arrayB)
        return std::ranges::equal(*arrayA, *arrayB, isIdentical);
    const auto* dictionaryA = a.as<PropertyList::Dictionary>();
    const auto* dictionaryB = b.as<PropertyList::Dictionary>();
    if (dictionaryA && dictionaryB)
        return std::ranges::equal(*dictionaryA, *dictionaryB, [](const auto& x, const auto& y) {
            return x.first == y.first && isIdentical(x.second, y.second);
        });
    return a == b;
}

} // namespace zorvan::internal
