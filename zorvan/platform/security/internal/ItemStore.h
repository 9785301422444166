#pragma once

#include <zorvan/platform/security/internal/Database.h>
#include <zorvan/platform/security/internal/ItemQuery.h>
#include <zorvan/platform/security/internal/KeyCustody.h>
#include <zorvan/platform/security/internal/PrivateFolder.h>
#include <zorvan/platform/security/internal/SecureItem.h>

#include <sys/types.h>
#include <vector>

namespace zorvan::security {

/// An item with its value, after a check that neither was changed.
struct OpenedItem {
    SecureItem item;
    Secret value;
};

/// The items of a folder. Everything throws `Failure`.
class ItemStore {
public:
    /// The items of this user; made when there are none and `mayCreate`, else `errSecItemNotFound`.
    /// Used under a lock of the caller's.
    static ItemStore& ofUser(bool mayCreate);

    void add(const NewItem& item);
    /// Never empty.
    std::vector<OpenedItem> find(const ItemQuery& query);
    void update(const ItemQuery& query, const ItemAttributes& changes);
    void remove(const ItemQuery& query);

private:
    /// What came of opening a value: neither when it is damaged.
    struct Opening {
        std::optional<Secret> value;
        bool lacksKey = false;
    };

    explicit ItemStore(PrivateFolder folder);
    bool isUsable(const PrivateFolder& folder) const;
    Opening open(const SecureItem& item);
    /// False for an item whose value is damaged, when there is no new one.
    bool change(SecureItem item, const ItemAttributes& changes);

    PrivateFolder folder_;
    Database database_;
    KeyCustody custody_;
    pid_t process_;
};

} // namespace zorvan::security
