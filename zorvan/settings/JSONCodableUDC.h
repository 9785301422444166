#pragma once

#include <zorvan/settings/JSONCoding.h>
#include <zorvan/settings/NSUserDefaults.h>

#include <concepts>
#include <exception>
#include <new>
#include <optional>
#include <string_view>
#include <type_traits>

namespace zorvan {

template <JSONCodable T>
class JSONCodableUDC;

namespace detail {

struct NoArithmetic {};

template <class T>
using JSONArithmetic =
    std::conditional_t<std::is_arithmetic_v<T> && !std::same_as<T, bool>,
                       NumericUserDefaultsCoder<JSONCodableUDC<T>, T>, NoArithmetic>;

} // namespace detail

/// Stored as the bytes of a JSON text; `JSONCoding<T>` says how. Anything else that is stored reads
/// as absent. A value that has no JSON form removes the key: one with a number that is not finite,
/// or with a text that is not UTF-8, as the path of a file may be, anywhere in it.
/// `NSUserDefaults::modify` leaves what is stored instead, and is false. Whatever `std::exception`
/// a coding throws counts as that, but for a lack of memory.
///
/// What is stored and cannot be read, such as a record of another version, is not lost to the next
/// value: see `NSUserDefaults::setUnreadableAside`.
template <JSONCodable T>
class JSONCodableUDC : public detail::JSONArithmetic<T> {
public:
    /// See `UserDefaultsCoder`.
    /// @{
    using CodableType = T;

    std::optional<T> decode(NSUserDefaults& from, std::string_view key) const {
        const std::optional<Data> text = from.dataForKey(key);
        if (!text)
            return std::nullopt;
        try {
            return JSONCoding<T>::decode(JSON::parse(*text));
        } catch (const std::bad_alloc&) {
            throw;
        } catch (const std::exception&) { // a coding of the application may throw what it likes
            return std::nullopt;
        }
    }

    void encode(const std::optional<T>& value, NSUserDefaults& to, std::string_view key) const {
        if (value && to.hasObjectForKey(key) && !decode(to, key))
            to.setUnreadableAside(key);
        to.setObject(value ? encoded(*value) : std::nullopt, key);
    }

    bool hasStoredForm(const T& value) const { return encoded(value).has_value(); }
    /// @}

private:
    static std::optional<PropertyList> encoded(const T& value) {
        try {
            return JSON(JSONCoding<T>::encode(value)).text();
        } catch (const std::bad_alloc&) {
            throw;
        } catch (const std::exception&) {
            return std::nullopt;
        }
    }
};

} // namespace zorvan
