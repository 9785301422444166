#pragma once

#include <zorvan/platform/settingsdatabase/internal/SettingRows.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zorvan::internal {

/// What a domain holds, as this process sees it: the rows of the database, and above them what
/// could not be stored yet.
class SettingsMemory {
public:
    /// Null for a removed key.
    using Value = SharedSetting;

    struct Pending {
        Value value;
        bool isStorable = true;
    };
    using PendingChanges = std::map<std::string, Pending, std::less<>>;

    Value value(std::string_view key);
    /// The row that the key has in the database, 0 for none.
    std::int64_t row(std::string_view key) const;
    bool isPending(std::string_view key) const { return pending_.contains(key); }

    using Changes = std::vector<std::pair<std::string, Value>>;
    /// With changes that are not made yet.
    PropertyList::Dictionary contents(const Changes& changes = {}) const;
    /// Of those that are not removed.
    std::vector<std::string> keysOfRows() const;
    const PendingChanges& pending() const noexcept { return pending_; }
    bool hasStorablePending() const;

    /// Rows of the database. What is pending for their keys stands above them.
    void take(SettingRows incoming);
    /// What was pending for the key is stored, in that row.
    void stored(const std::string& key, Value value, std::int64_t id);
    void keep(const std::string& key, Value value, bool isStorable);

    /// No rows any more; what is pending stays.
    void forgetRows() { rows_ = {}; }
    void clear();
    /// Drops what is known of rows of removed keys.
    void forgetRemoved() { rows_.forgetRemoved(); }
    /// All values are pending.
    void keepEverything();

    std::size_t size() const noexcept { return rows_.all().size(); }
    std::size_t removed() const noexcept { return rows_.removed(); }

private:
    SettingRows rows_;
    PendingChanges pending_;
};

/// Equal in kind and content to the last bit, numbers included.
bool isIdentical(const PropertyList& a, const PropertyList& b);

} // namespace zorvan::internal
