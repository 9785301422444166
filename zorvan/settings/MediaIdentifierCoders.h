#pragma once

#include <zorvan/settings/NSUserDefaults.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace zorvan {

class AVFileType;
class AVVideoCodecType;

/// An identifier that may be any text, stored as that text. Include the header of the identifier to
/// use its coder.
template <class Identifier>
class StringIdentifierUDC {
public:
    /// See `UserDefaultsCoder`.
    /// @{
    using CodableType = Identifier;

    std::optional<Identifier> decode(NSUserDefaults& from, std::string_view key) const {
        std::optional<std::string> text = from.stringForKey(key);
        return text ? std::optional(Identifier({.rawValue = std::move(*text)})) : std::nullopt;
    }
    void encode(const std::optional<Identifier>& value, NSUserDefaults& to,
                std::string_view key) const {
        to.setObject(value ? std::optional<PropertyList>(std::string(value->rawValue()))
                           : std::nullopt,
                     key);
    }
    /// @}
};

/// The coder of that identifier.
/// @{
using AVFileTypeUDC = StringIdentifierUDC<AVFileType>;
using AVVideoCodecTypeUDC = StringIdentifierUDC<AVVideoCodecType>;
/// @}

} // namespace zorvan
