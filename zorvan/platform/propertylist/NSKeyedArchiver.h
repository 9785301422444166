#pragma once

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/foundation/PropertyList.h>
#include <zorvan/platform/foundation/URL.h>
#include <zorvan/platform/propertylist/ArchiveError.h>
#include <zorvan/platform/propertylist/NSSecureCoding.h>

#include <concepts>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <typeindex>
#include <unordered_map>
#include <utility>
#include <vector>

namespace zorvan {

/// Turns values and objects into the bytes of a keyed archive, which `NSKeyedUnarchiver` reads.
///
/// It takes numbers and truth values, texts, bytes, dates, `URL`, `PropertyList`, classes that
/// satisfy `NSSecureCoding`, types with raw values, and of all these vectors, maps, `std::optional`
/// and `std::shared_ptr`. An object that several pointers share is archived once and comes back
/// shared.
///
/// An archive is a binary property list: "$top" has what was encoded by name, "$objects" has each
/// object, which others refer to by its number. The guide page of the settings has the form in
/// full.
///
/// Everything throws `ArchiveError` when a value cannot be archived: a text that is not UTF-8, an
/// integer beyond 64 signed bits, an object that holds itself, or nesting beyond
/// `propertylist::maximumDepth`. The archiver is of no further use after that.
class NSKeyedArchiver {
public:
    /// An archive of nothing.
    NSKeyedArchiver();
    NSKeyedArchiver(const NSKeyedArchiver&) = delete;
    NSKeyedArchiver& operator=(const NSKeyedArchiver&) = delete;

    /// The archive of one object, which is named "root" in it.
    template <class T>
    static Data archivedData(const T& rootObject) {
        NSKeyedArchiver archiver;
        archiver.set("root", stored(archiver.reference(rootObject)));
        return archiver.encodedData();
    }

    /// Adds a value under a name: to the object that is being encoded, or, outside of any, to the
    /// archive. A name that is used twice keeps the last value.
    template <class T>
    void encode(const T& value, std::string_view key) {
        if constexpr (std::integral<T> || std::floating_point<T>)
            set(key, number(value));
        else
            set(key, stored(reference(value)));
    }

    /// The archive of what was encoded so far.
    Data encodedData() const;

private:
    /// The number of an object in the archive; 0 stands for none.
    using Reference = std::size_t;

    /// One level of nesting, for as long as it lives.
    class Level {
    public:
        explicit Level(NSKeyedArchiver& archiver);
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;
        ~Level() { --archiver_.depth_; }

    private:
        NSKeyedArchiver& archiver_;
    };

    struct Shared {
        std::shared_ptr<const void> object; // keeps the address from being used again
        Reference reference;                // 0 while the object is being encoded
    };

    template <class T>
    requires std::integral<T> || std::floating_point<T>
    static PropertyList number(T value) {
        if constexpr (std::integral<T>) {
            if (!std::in_range<std::int64_t>(static_cast<wide<T>>(value)))
                refuseInteger();
        }
        return value;
    }
    /// Characters and truth values as numbers, which alone can be compared safely.
    template <class T>
    using wide = std::conditional_t<std::is_signed_v<T>, std::int64_t, std::uint64_t>;

    template <class T>
    requires std::integral<T> || std::floating_point<T> Reference reference(T value) {
        return add(number(value));
    }
    Reference reference(const NSNumber& value) { return add(value); }
    Reference reference(const std::string& value) { return add(value); }
    Reference reference(std::string_view value) { return add(value); }
    Reference reference(const char* value) { return add(value); }
    Reference reference(const Data& value) { return add(value); }
    Reference reference(Date value) { return add(value); }
    Reference reference(const URL& value);
    Reference reference(const PropertyList& value);

    template <class T>
    Reference reference(const std::optional<T>& value) {
        return value ? reference(*value) : 0;
    }

    template <class T>
    Reference reference(const std::vector<T>& values) {
        const Level level(*this);
        const Reference array = reserve();
        PropertyList::Array objects;
        objects.reserve(values.size());
        for (const T& value : values)
            objects.push_back(stored(reference(value)));
        setArray(array, std::move(objects));
        return array;
    }

    template <class Key, class Value, class Order, class Allocator>
    Reference reference(const std::map<Key, Value, Order, Allocator>& values) {
        return dictionary<Key>(values);
    }
    template <class Key, class Value, class Hash, class Equal, class Allocator>
    Reference reference(const std::unordered_map<Key, Value, Hash, Equal, Allocator>& values) {
        return dictionary<Key>(values);
    }

    /// With text keys a dictionary; otherwise an array of each key and its value in turn.
    template <class Key, class Map>
    Reference dictionary(const Map& values) {
        const Level level(*this);
        const Reference object = reserve();
        PropertyList::Array keys;
        PropertyList::Array contents;
        for (const auto& [key, value] : values) {
            constexpr bool apart = std::convertible_to<const Key&, std::string_view>;
            (apart ? keys : contents).push_back(stored(reference(key)));
            contents.push_back(stored(reference(value)));
        }
        if constexpr (std::convertible_to<const Key&, std::string_view>)
            setDictionary(object, std::move(keys), std::move(contents));
        else
            setArray(object, std::move(contents));
        return object;
    }

    template <class T>
    Reference reference(const std::shared_ptr<T>& pointer) {
        if (!pointer)
            return 0;
        const auto [entry, isNew] = shared_.try_emplace(
            std::pair(static_cast<const void*>(pointer.get()), std::type_index(typeid(T))),
            Shared{pointer, 0});
        Shared& shared = entry->second;
        if (isNew)
            shared.reference = reference(*pointer);
        else if (shared.reference == 0)
            throw ArchiveError("an object holds itself");
        return shared.reference;
    }

    template <NSSecureCoding T>
    Reference reference(const T& value) {
        const Level level(*this);
        const Reference object = reserve();
        scopes_.emplace_back();
        value.encode(*this);
        finishObject(object, T::archivedClassName);
        return object;
    }

    template <ArchivedByRawValue T>
    Reference reference(const T& value) {
        return reference(RawRepresentation<T>::rawValue(value));
    }

    [[noreturn]] static void refuseInteger();
    /// How an object is referred to in a property list.
    static PropertyList stored(Reference reference);
    Reference add(PropertyList object);
    Reference reserve() { return add(false); }
    Reference classNamed(std::string_view name);
    void set(std::string_view key, PropertyList value);
    void setArray(Reference object, PropertyList::Array values);
    void setDictionary(Reference object, PropertyList::Array keys, PropertyList::Array values);
    void finishObject(Reference object, std::string_view className);

    PropertyList::Array objects_;
    std::vector<PropertyList::Dictionary> scopes_; // the archive's, then those of open objects
    std::map<std::string, Reference, std::less<>> classes_;
    std::map<std::pair<const void*, std::type_index>, Shared> shared_;
    std::size_t depth_ = 0;
};

} // namespace zorvan
