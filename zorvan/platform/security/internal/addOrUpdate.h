#pragma once

#include <zorvan/platform/security/SecItem.h>

namespace zorvan::security {

/// `SecItemAdd`, and for a duplicate `SecItemUpdate` of what the query matches, with the value
/// alone. Nobody else writes in between.
OSStatus addOrUpdate(const PropertyList::Dictionary& attributes,
                     const PropertyList::Dictionary& query);

} // namespace zorvan::security
