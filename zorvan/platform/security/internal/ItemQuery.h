#pragma once

#include <zorvan/platform/security/internal/SecureItem.h>

#include <cstddef>
#include <optional>

namespace zorvan::security {

/// What attributes say of an item: in a query those that have to be equal, otherwise those to be
/// given.
struct ItemAttributes {
    Texts texts;
    std::optional<bool> isSynchronizable;
    const Data* value = nullptr; // the caller's
};

struct ItemQuery {
    ItemAttributes attributes;
    std::optional<std::int64_t> reference;
    std::size_t limit = 1;
    bool returnsOne = true; // one result stands by itself
    bool returnsData = false;
    bool returnsAttributes = false;
    bool returnsReference = false;
};

/// An item to be added.
struct NewItem {
    /// With what is taken for attributes that are left out. Throws `Failure`:
    /// `errSecDataTooLarge`.
    NewItem(ItemAttributes given, bool isDuplicateOfEitherState);

    ItemAttributes given;
    ItemAttributes attributes;
    bool isDuplicateOfEitherState;
};

/// Each throws `Failure` for what cannot be asked: `errSecParam`, `errSecNoSuchAttr`,
/// `errSecDataTooLarge`, and `errSecItemNotFound` for a persistent reference that is none. The
/// results refer to the dictionary's value.
NewItem newItem(const PropertyList::Dictionary& attributes);
ItemAttributes changes(const PropertyList::Dictionary& attributes);
/// A query that returns something.
ItemQuery searchQuery(const PropertyList::Dictionary& query);
/// A query for items to be changed or removed.
ItemQuery matchQuery(const PropertyList::Dictionary& query);

} // namespace zorvan::security
