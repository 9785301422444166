#pragma once

#include <zorvan/platform/foundation/PropertyList.h>

#include <optional>
#include <string_view>

namespace zorvan {

/// A value of an encoded object, as `PropertyList::as` gives it; absent when it is not there or of
/// another kind.
template <class Value>
std::optional<Value> decoded(const PropertyList::Dictionary& coder, std::string_view key) {
    const auto found = coder.find(key);
    return found == coder.end() ? std::nullopt : found->second.as<Value>();
}

} // namespace zorvan
