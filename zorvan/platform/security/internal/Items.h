#pragma once

#include <zorvan/platform/security/SecItem.h>
#include <zorvan/platform/security/internal/ItemQuery.h>

#include <functional>
#include <optional>

namespace zorvan::security {

// The items of the user without dictionaries, for callers of the library that know what they ask.

/// `SecItemAdd`, and for a duplicate `SecItemUpdate`, with the value alone, of what the other
/// attributes match. Nobody else writes in between.
OSStatus addOrUpdate(const ItemAttributes& attributes, bool isDuplicateOfEitherState);
/// `SecItemCopyMatching`.
SecItemResult copyMatching(const ItemQuery& query);
/// `SecItemDelete`.
OSStatus remove(const ItemQuery& query);
/// `ItemStore::modify`. What the function throws is thrown, and nothing is changed then.
OSStatus modify(const ItemQuery& query, const ItemAttributes& written,
                const std::function<bool(std::optional<Data>& value)>& change);

} // namespace zorvan::security
