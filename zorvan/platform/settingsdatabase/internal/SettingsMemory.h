#pragma once

#include <zorvan/platform/foundation/PropertyList.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zorvan::internal {

/// What a domain holds, as this process sees it: the rows of the database, and above them what
/// could not be stored yet.
class SettingsMemory {
public:
    /// Null for a removed key.
    using Value = std::shared_ptr<const PropertyList>;

    struct Incoming {
        std::int64_t id;
        std::string key;
        Value value;
    };
    struct Pending {
        Value value;
        bool isStorable = true;
    };
    using PendingChanges = std::map<std::string, Pending, std::less<>>;

    Value value(std::string_view key) const;
    /// The row that the key has in the database, 0 for none.
    std::int64_t row(std::string_view key) const;
    bool isPending(std::string_view key) const { return pending_.contains(key); }

    PropertyList::Dictionary contents() const;
    const PendingChanges& pending() const noexcept { return pending_; }
    bool hasStorablePending() const;

    /// A row of the database. What is pending for the key stands above it. The identifier of the
    /// row that it replaces, 0 for none.
    std::int64_t take(Incoming incoming);
    /// What was pending for the key is stored, in that row.
    void stored(const std::string& key, Value value, std::int64_t id);
    void keep(const std::string& key, Value value, bool isStorable);

    /// No rows any more; what is pending stays.
    void forgetRows();
    void clear();
    /// Drops what is known of rows of removed keys.
    void forgetRemoved();
    /// All values are pending.
    void keepEverything();

    std::size_t size() const noexcept { return rows_.size(); }
    std::size_t removed() const noexcept { return removed_; }

private:
    struct Row {
        std::int64_t id = 0;
        Value value;
    };
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view key) const noexcept {
            return std::hash<std::string_view>()(key);
        }
    };
    using Rows = std::unordered_map<std::string, Row, Hash, std::equal_to<>>;

    std::int64_t replace(std::string key, Row row);

    Rows rows_;
    PendingChanges pending_;
    std::size_t removed_ = 0;
};

/// Equal in kind and content to the last bit, numbers included.
bool isIdentical(const PropertyList& a, const PropertyList& b);

} // namespace zorvan::internal
