#pragma once

#include <zorvan/settings/UserDefaultsCoder.h>

#include <optional>
#include <string_view>

namespace zorvan {

class NSUserDefaults;

/// A coder of the library for values of one type. The class that derives from it says what is
/// stored; an absent value removes the key.
template <class Value>
class StoredUserDefaultsCoder {
public:
    /// See `UserDefaultsCoder`.
    /// @{
    using CodableType = Value;
    std::optional<Value> decode(NSUserDefaults& from, std::string_view key) const;
    void encode(const std::optional<Value>& value, NSUserDefaults& to, std::string_view key) const;
    /// @}
};

} // namespace zorvan
