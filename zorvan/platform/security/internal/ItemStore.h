#pragma once

#include <zorvan/platform/security/internal/Database.h>
#include <zorvan/platform/security/internal/ItemQuery.h>
#include <zorvan/platform/security/internal/KeyCustody.h>
#include <zorvan/platform/security/internal/PrivateFolder.h>
#include <zorvan/platform/security/internal/SecureItem.h>

#include <array>
#include <sys/types.h>
#include <vector>

namespace zorvan::security {

/// An item after a check that nothing of it was changed, with its value when that is asked for.
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

    /// False when it is there already.
    bool add(const NewItem& item);
    /// Adds the item; when it is there already, changes those that the query matches instead.
    void addOrUpdate(const NewItem& item, const ItemQuery& query, const ItemAttributes& changes);
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

    /// What there is of an item: in which states, not synchronizable and synchronizable.
    struct Standing {
        std::array<bool, 2> isThere{};
        std::int64_t lastRevision = 0;
    };

    explicit ItemStore(PrivateFolder folder);
    bool isUsable(const PrivateFolder& folder) const;
    Opening open(const SecureItem& item);
    Standing standing(const Texts& identity);
    std::vector<SecureItem> matching(const ItemQuery& query);

    // Within a transaction:
    bool insert(const NewItem& item, const SealingKey& key);
    void changeMatching(const ItemQuery& query, const ItemAttributes& changes,
                        const SealingKey& newKey);
    /// False for an item whose value is damaged, when there is no new one.
    bool change(SecureItem item, const ItemAttributes& changes, const SealingKey& newKey);

    PrivateFolder folder_;
    Database database_;
    KeyCustody custody_;
    pid_t process_;
};

} // namespace zorvan::security
