#pragma once

#include <zorvan/settings/JSONCoding.h>

#include <cstddef>
#include <span>
#include <string_view>
#include <utility>

namespace zorvan {

/// The values of a JSON object by their names. Works with `implicitDecode` and
/// `decodeRawKeyedDict`.
class KeyedJSONContainer {
public:
    /// Of an object that was read already.
    explicit KeyedJSONContainer(JSON::Object object) : object_(std::move(object)) {}
    /// Throws `JSONError` when the text is no JSON, or no object.
    explicit KeyedJSONContainer(std::span<const std::byte> text)
        : object_(detail::expected<JSON::Object>(JSON::parse(text), "object")) {}

    /// Also when what stands under the name is null.
    bool contains(std::string_view key) const { return object_.contains(key); }

    /// Throws `JSONError` when there is no such name, or something else under it. An
    /// `std::optional` is absent for a null and for a name that is not there.
    template <JSONCodable T>
    T decode(std::string_view key) const {
        const auto found = object_.find(key);
        return JSONCoding<T>::decode(found == object_.end() ? JSON() : found->second);
    }

private:
    JSON::Object object_;
};

} // namespace zorvan
