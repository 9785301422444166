#pragma once

#include <zorvan/platform/security/internal/ItemDatabase.h>
#include <zorvan/platform/security/internal/ItemQuery.h>
#include <zorvan/platform/security/internal/KeyCustody.h>
#include <zorvan/platform/security/internal/ReadItems.h>
#include <zorvan/platform/security/internal/SecureItem.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace zorvan::security {

/// An item after a check that nothing of it was changed, with its value when that is asked for.
struct OpenedItem {
    SecureItem item;
    Secret value;
};

/// False when nothing is to be changed after all.
using ChangeValue = std::function<bool(std::optional<Data>& value)>;

/// The items of a folder. Everything throws what `statusOfException` knows.
class ItemStore {
public:
    /// The items of this user; made when there are none and `mayCreate`, else `errSecItemNotFound`.
    /// Used under a lock of the caller's.
    static ItemStore& ofUser(bool mayCreate);
    /// Closes the database of this user until it is used next: before a fork, since it cannot be
    /// taken along into a child.
    static void close();

    /// False when it is there already.
    bool add(const NewItem& item);
    /// Adds the item; when it is there already, gives its value to those that match what was given.
    void addOrUpdate(const NewItem& item);
    /// Never empty.
    std::vector<OpenedItem> find(const ItemQuery& query);
    void update(const ItemQuery& query, const ItemAttributes& changes);
    void remove(const ItemQuery& query);
    /// In one transaction: has the function change the value that the query finds, absent for none,
    /// and writes it with the query's attributes as `addOrUpdate` does, or removes what the query
    /// finds when it is absent then. Whatever the function does with the store is part of the
    /// transaction, and undone when it is false.
    void modify(const ItemQuery& query, ItemAttributes written, const ChangeValue& change);

private:
    /// What came of opening a value: neither when it is damaged.
    struct Opening {
        std::optional<Secret> value;
        bool lacksKey = false;
    };

    explicit ItemStore(privatestore::PrivateFolder folder);
    void openDatabase();
    bool isUsable(const std::string& path) const;
    std::optional<Secret> valueOf(const ItemQuery& query);
    bool removeMatching(const ItemQuery& query);
    Opening open(const SecureItem& item);
    std::vector<SecureItem> matching(const ItemQuery& query);
    /// The same, from memory when it was read before and nobody has written since.
    std::vector<SecureItem> known(const ItemQuery& query);

    // Within a transaction; among the relatives are all states of an item that is written:
    bool insert(const NewItem& item, const std::vector<SecureItem>& relatives,
                const SealingKey& key);
    void giveValue(std::vector<SecureItem>& relatives, const ItemAttributes& attributes,
                   const SealingKey& key);
    /// Seals and writes what a row becomes, with the value that it has when there is no new one;
    /// false when that is damaged.
    bool change(const SecureItem& row, SecureItem& changed, const Data* value,
                const SealingKey& newKey);

    static ItemStore* ofUser_; // null until there is one

    privatestore::PrivateFolder folder_;
    std::optional<ItemDatabase> database_; // absent while it is closed for a fork
    const void* stampAddress_ = nullptr;   // of the database
    ReadItems read_;
    KeyCustody custody_;
};

} // namespace zorvan::security
