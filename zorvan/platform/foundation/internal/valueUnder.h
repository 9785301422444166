#pragma once

#include <zorvan/platform/foundation/PropertyList.h>

#include <string_view>

namespace zorvan::internal {

/// What stands under the key; null when that is nothing, or nothing of that kind.
template <class Kind>
const Kind* valueUnder(const PropertyList::Dictionary& dictionary, std::string_view key) {
    const auto entry = dictionary.find(key);
    return entry == dictionary.end() ? nullptr : entry->second.as<Kind>();
}

} // namespace zorvan::internal
