#include <zorvan/platform/settingsdatabase/internal/SettingsMemory.h>

#include <algorithm>
#include <bit>
#include <utility>

namespace zorvan::internal {

SettingsMemory::Value SettingsMemory::value(std::string_view key) const {
    if (!pending_.empty())
        if (const auto found = pending_.find(key); found != pending_.end())
            return found->second.value;
    const auto found = rows_.find(key);
    return found == rows_.end() ? Value() : found->second.value;
}

std::int64_t SettingsMemory::row(std::string_view key) const {
    const auto found = rows_.find(key);
    return found == rows_.end() ? 0 : found->second.id;
}

PropertyList::Dictionary SettingsMemory::contents() const {
    PropertyList::Dictionary all;
    for (const auto& [key, row] : rows_)
        if (row.value)
            all.emplace(key, *row.value);
    for (const auto& [key, change] : pending_) {
        all.erase(key);
        if (change.value)
            all.emplace(key, *change.value);
    }
    return all;
}

bool SettingsMemory::hasStorablePending() const {
    return std::ranges::any_of(pending_,
                               [](const auto& change) { return change.second.isStorable; });
}

std::int64_t SettingsMemory::replace(std::string key, Row row) {
    Row& old = rows_[std::move(key)];
    if (old.id != 0 && !old.value)
        --removed_;
    if (!row.value)
        ++removed_;
    return std::exchange(old, std::move(row)).id;
}

std::int64_t SettingsMemory::take(Incoming incoming) {
    return replace(std::move(incoming.key), {incoming.id, std::move(incoming.value)});
}

void SettingsMemory::stored(const std::string& key, Value value, std::int64_t id) {
    replace(key, {id, std::move(value)});
    pending_.erase(key);
}

void SettingsMemory::keep(const std::string& key, Value value, bool isStorable) {
    pending_.insert_or_assign(key, Pending{std::move(value), isStorable});
}

void SettingsMemory::forgetRows() {
    rows_.clear();
    removed_ = 0;
}

void SettingsMemory::clear() {
    forgetRows();
    pending_.clear();
}

void SettingsMemory::forgetRemoved() {
    std::erase_if(rows_, [](const auto& row) { return !row.second.value; });
    removed_ = 0;
}

void SettingsMemory::keepEverything() {
    for (auto& [key, row] : rows_)
        if (row.value)
            pending_.try_emplace(key, Pending{std::move(row.value)});
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
