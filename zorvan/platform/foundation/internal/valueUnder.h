#pragma once

#include <zorvan/platform/foundation/PropertyList.h>

#include <string_view>

namespace zorvan::internal {

/// What stands under the key, as `PropertyList::as` gives it; null or absent when that is nothing,
/// or nothing of that kind.
template <class Kind>
auto valueUnder(const PropertyList::Dictionary& dictionary, std::string_view key) {
    const auto entry = dictionary.find(key);
    using Value = decltype(entry->second.template as<Kind>());
    return entry == dictionary.end() ? Value() : entry->second.template as<Kind>();
}

} // namespace zorvan::internal
