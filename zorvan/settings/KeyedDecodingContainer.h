#pragma once

#include <zorvan/platform/foundation/RawRepresentable.h>
#include <zorvan/settings/KeyedDecodingContainerError.h>

#include <concepts>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <utility>

namespace zorvan {

/// What gives values by name: `NSKeyedUnarchiver`, `KeyedJSONContainer`, or one of your own, with a
/// member `decode<T>(key)` that throws a `std::runtime_error` when there is no such value.
template <class C>
concept KeyedDecodingContainer = requires(const C& container, std::string_view key) {
    { container.template decode<std::string>(key) } -> std::same_as<std::string>;
};

/// A value that is yet to be decoded, as the type that it is used as.
template <class Container>
class ImplicitlyDecoded {
public:
    /// Made by `implicitDecode`.
    ImplicitlyDecoded(Container container, std::string_view key)
        : container_(std::forward<Container>(container)), key_(key) {}

    /// Decodes it; throws what the container throws.
    template <class T>
    operator T() const {
        return container_.template decode<T>(key_);
    }

private:
    Container container_; // or a reference to it
    std::string key_;
};

/// Decodes the type that the result is used as: `const std::int64_t size = implicitDecode(coder,
/// "size");`, the same as `coder.decode<std::int64_t>("size")`. Use the result before the container
/// is gone; a temporary one is kept in it.
template <class Container>
requires KeyedDecodingContainer<std::remove_cvref_t<Container>>
[[nodiscard]] ImplicitlyDecoded<Container> implicitDecode(Container&& container,
                                                          std::string_view forKey) {
    return {std::forward<Container>(container), forKey};
}

/// A dictionary whose keys are raw texts of K. Throws
/// `KeyedDecodingContainerError::unexpectedRawRepresentableKeyValue` when one of them is the raw
/// value of none. What is no dictionary with text keys is decoded as an array of each key and its
/// value in turn, and the errors of that attempt pass through, whatever they are.
template <StringRawRepresentable K, class V, KeyedDecodingContainer Container>
std::unordered_map<K, V> decodeRawKeyedDict(const Container& container, std::string_view forKey) {
    std::unordered_map<std::string, V> texts;
    try {
        texts = container.template decode<std::unordered_map<std::string, V>>(forKey);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) { // whatever a V of the application throws
        return container.template decode<std::unordered_map<K, V>>(forKey);
    }
    std::unordered_map<K, V> values;
    for (auto& [text, value] : texts) {
        auto key = RawRepresentation<K>::make(std::string_view(text));
        if (!key)
            throw KeyedDecodingContainerError(
                KeyedDecodingContainerError::unexpectedRawRepresentableKeyValue);
        values.insert_or_assign(std::move(*key), std::move(value));
    }
    return values;
}

} // namespace zorvan
