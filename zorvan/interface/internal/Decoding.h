#pragma once

#include <zorvan/platform/foundation/PropertyList.h>

#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zorvan {

/// A value of an encoded object; absent when it is not there or of another kind.
template <class Value>
std::optional<Value> decoded(const PropertyList::Dictionary& coder, std::string_view key) {
    const auto found = coder.find(key);
    if (found == coder.end())
        return std::nullopt;
    if constexpr (std::same_as<Value, std::string>) {
        const auto* const text = found->second.as<std::string>();
        return text ? std::optional(*text) : std::nullopt;
    } else {
        const auto* const number = found->second.as<NSNumber>();
        if (!number)
            return std::nullopt;
        if constexpr (std::same_as<Value, bool>)
            return number->boolValue();
        else if constexpr (std::same_as<Value, double>)
            return number->doubleValue();
        else
            return number->int64Value();
    }
}

} // namespace zorvan
