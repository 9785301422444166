#pragma once

#include <zorvan/platform/security/SecItem.h>
#include <zorvan/platform/security/internal/ItemQuery.h>

namespace zorvan::security {

// The items of the user without dictionaries, for callers of the library that know what they ask.

/// `SecItemAdd`, and for a duplicate `SecItemUpdate`, with the value alone, of what the other
/// attributes match. Nobody else writes in between.
OSStatus addOrUpdate(const ItemAttributes& attributes, bool isDuplicateOfEitherState);
/// `SecItemCopyMatching`.
SecItemResult copyMatching(const ItemQuery& query);
/// `SecItemDelete`.
OSStatus remove(const ItemQuery& query);

} // namespace zorvan::security
