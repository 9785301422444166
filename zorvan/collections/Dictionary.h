#pragma once

#include <zorvan/collections/Sequence.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <type_traits>
#include <unordered_map>
#include <unordered_set>
#include <utility>

/// Operations on dictionaries: `std::map` and `std::unordered_map`, receiver first. A result with
/// other keys is a `std::unordered_map`. Where two entries claim one key, the one met later in the
/// dictionary's iteration wins.
namespace zorvan {

/// `std::map`, `std::unordered_map`, and what else has a `key_type` and a `mapped_type`.
template <class Type>
concept Dictionary = requires {
    typename Type::key_type;
    typename Type::mapped_type;
};

/// Each key transformed, values kept.
template <Dictionary Source, class Transform>
auto mapKeys(const Source& dictionary, Transform transform) {
    return mapEntries(dictionary, [&transform](const auto& entry) {
        return std::pair(std::invoke(transform, entry.first), entry.second);
    });
}

/// As `mapKeys`; an entry whose new key is absent is dropped.
template <Dictionary Source, class Transform>
auto compactMapKeys(const Source& dictionary, Transform transform) {
    using Key =
        typename std::invoke_result_t<Transform&, const typename Source::key_type&>::value_type;
    using Pair = std::pair<Key, typename Source::mapped_type>;
    return compactMapEntries(dictionary, [&transform](const auto& entry) -> std::optional<Pair> {
        std::optional<Key> key = std::invoke(transform, entry.first);
        return key ? std::optional<Pair>(std::in_place, *std::move(key), entry.second)
                   : std::nullopt;
    });
}

/// What the transform gives for each key, equal results once.
template <Dictionary Source, class Transform>
auto mapKeysToSet(const Source& dictionary, Transform transform) {
    return mapToSet(dictionary, [&transform](const auto& entry) {
        return std::invoke(transform, entry.first);
    });
}

/// What the transform gives for each value, equal results once.
template <Dictionary Source, class Transform>
auto mapValuesToSet(const Source& dictionary, Transform transform) {
    return mapToSet(dictionary, [&transform](const auto& entry) {
        return std::invoke(transform, entry.second);
    });
}

/// A copy with every entry of the other one stored into it.
template <Dictionary Source>
[[nodiscard]] Source combinedWith(Source dictionary, const Source& other) {
    for (const auto& [key, value] : other)
        dictionary.insert_or_assign(key, value);
    return dictionary;
}

/// A copy without the entry of that key.
template <Dictionary Source>
[[nodiscard]] Source pop(Source dictionary, const typename Source::key_type& key) {
    dictionary.erase(key);
    return dictionary;
}

/// From each value to its key.
template <Dictionary Source>
auto inversed(const Source& dictionary) {
    return mapEntries(dictionary,
                      [](const auto& entry) { return std::pair(entry.second, entry.first); });
}

/// Adds a text to the set under the key, which is made when it is missing.
template <Dictionary Source>
requires std::same_as<typename Source::mapped_type, std::unordered_set<std::string>>
void insertValue(Source& dictionary, std::string value, const typename Source::key_type& key) {
    dictionary[key].insert(std::move(value));
}

/// Removes a text from the set under the key, and the key when its set becomes empty.
template <Dictionary Source>
requires std::same_as<typename Source::mapped_type, std::unordered_set<std::string>>
void removeValue(Source& dictionary, const std::string& value,
                 const typename Source::key_type& key) {
    const auto found = dictionary.find(key);
    if (found == dictionary.end())
        return;
    found->second.erase(value);
    if (found->second.empty())
        dictionary.erase(found);
}

} // namespace zorvan
