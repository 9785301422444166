#pragma once

#include <zorvan/settings/JSONCoding.h>
#include <zorvan/settings/NSUserDefaults.h>

#include <exception>
#include <new>
#include <optional>
#include <string_view>

namespace zorvan {

/// Stored as the bytes of a JSON text; `JSONCoding<T>` says how. Anything else that is stored reads
/// as absent. A value that has no JSON form, such as a number that is not finite, removes the key.
/// Whatever `std::exception` a coding throws counts as that, but for a lack of memory.
template <JSONCodable T>
class JSONCodableUDC {
public:
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
        try {
            to.setObject(
                value ? std::optional<PropertyList>(JSON(JSONCoding<T>::encode(*value)).text())
                      : std::nullopt,
                key);
        } catch (const std::bad_alloc&) {
            throw;
        } catch (const std::exception&) {
            to.removeObjectForKey(key);
        }
    }
};

} // namespace zorvan
