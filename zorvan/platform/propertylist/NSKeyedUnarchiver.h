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
#include <span>
#include <string>
#include <string_view>
#include <typeindex>
#include <unordered_map>
#include <utility>
#include <vector>

namespace zorvan {

/// Reads what `NSKeyedArchiver` wrote, and gives only what is of the class that was asked for.
///
/// No class is ever made because the archive names it. Safe on any bytes: nesting and the unfolding
/// of objects that are referred to from many places are bounded, sizes are checked.
///
/// Numbers are strict: a truth value is asked for as `bool`; an integer as an integer type that
/// holds it; `float` and `double` take integers and reals; `NSNumber` takes each of them and keeps
/// its kind.
///
/// Everything throws `ArchiveError` when the bytes are no archive, when a name is not there, or
/// when what is there, or anything within, is of another class.
class NSKeyedUnarchiver {
public:
    /// The archive's values by name. It keeps what it needs of the bytes.
    explicit NSKeyedUnarchiver(std::span<const std::byte> archive);

    /// The object of an archive of one object.
    template <class T>
    static T unarchivedObject(std::span<const std::byte> archive) {
        return NSKeyedUnarchiver(archive).decode<T>("root");
    }

    /// Whether anything was encoded under a name.
    bool contains(std::string_view key) const;

    /// What was encoded under the name, as a `T`.
    template <class T>
    T decode(std::string_view key) const {
        return read(object(field(key)), Of<T>());
    }

    /// Absent when nothing was encoded under the name, or an absent value or null pointer was.
    template <class T>
    std::optional<T> decodeIfPresent(std::string_view key) const {
        if (!contains(key))
            return std::nullopt;
        return decode<std::optional<T>>(key);
    }

private:
    struct Archive;

    /// Tells the overloads of `read` apart.
    template <class T>
    struct Of {};

    /// An object of the archive, or a number that stands by itself.
    struct Object {
        const PropertyList* value;
        std::size_t number; // in the archive; 0 for one that stands by itself, or for none
        bool isNull;
        bool isKnown; // it was read before
    };

    /// The contents of an array, or the keys and contents of a dictionary.
    struct Contents {
        const PropertyList::Array* keys;
        const PropertyList::Array* values;
    };

    NSKeyedUnarchiver(std::shared_ptr<Archive> archive, const PropertyList::Dictionary& fields,
                      std::size_t depth);

    template <class T>
    requires std::integral<T> T read(const Object& object, Of<T>)
    const {
        const NSNumber number = numberOf(object);
        if constexpr (std::same_as<T, bool>) {
            if (!number.isBool())
                refuseClass();
            return number.boolValue();
        } else {
            if (!number.isInteger())
                refuseClass();
            if (number.isUnsigned())
                refuse("an integer does not fit its type");
            const std::int64_t value = number.int64Value();
            const auto result = static_cast<T>(value);
            if (static_cast<std::int64_t>(result) != value ||
                (std::unsigned_integral<T> && value < 0))
                refuse("an integer does not fit its type");
            return result;
        }
    }
    template <class T>
    requires std::floating_point<T> T read(const Object& object, Of<T>)
    const {
        const NSNumber number = numberOf(object);
        if (number.isBool())
            refuseClass();
        return static_cast<T>(number.doubleValue());
    }
    NSNumber read(const Object& object, Of<NSNumber>) const { return numberOf(object); }
    std::string read(const Object& object, Of<std::string>) const;
    Data read(const Object& object, Of<Data>) const;
    Date read(const Object& object, Of<Date>) const;
    URL read(const Object& object, Of<URL>) const;
    PropertyList read(const Object& object, Of<PropertyList>) const;

    template <class T>
    std::optional<T> read(const Object& object, Of<std::optional<T>>) const {
        if (object.isNull)
            return std::nullopt;
        return read(object, Of<T>());
    }

    template <class T>
    std::vector<T> read(const Object& object, Of<std::vector<T>>) const {
        const NSKeyedUnarchiver inside = deeper();
        const PropertyList::Array& stored = arrayOf(object);
        std::vector<T> values;
        values.reserve(stored.size());
        for (const PropertyList& value : stored)
            values.push_back(inside.read(this->object(value), Of<T>()));
        return values;
    }

    template <class Key, class Value, class Order, class Allocator>
    auto read(const Object& object, Of<std::map<Key, Value, Order, Allocator>>) const {
        return dictionary<std::map<Key, Value, Order, Allocator>>(object);
    }
    template <class Key, class Value, class Hash, class Equal, class Allocator>
    auto read(const Object& object,
              Of<std::unordered_map<Key, Value, Hash, Equal, Allocator>>) const {
        return dictionary<std::unordered_map<Key, Value, Hash, Equal, Allocator>>(object);
    }

    template <class Map>
    Map dictionary(const Object& object) const {
        using Key = typename Map::key_type;
        using Value = typename Map::mapped_type;
        const NSKeyedUnarchiver inside = deeper();
        const auto entry = [&](const PropertyList& key, const PropertyList& value) {
            return std::pair(inside.read(this->object(key), Of<Key>()),
                             inside.read(this->object(value), Of<Value>()));
        };
        Map result;
        if constexpr (std::convertible_to<const Key&, std::string_view>) {
            const Contents contents = contentsOf(object);
            for (std::size_t i = 0; i < contents.keys->size(); ++i)
                result.insert(entry((*contents.keys)[i], (*contents.values)[i]));
        } else {
            const PropertyList::Array& pairs = arrayOf(object);
            if (pairs.size() % 2 != 0)
                refuse("a key has no value");
            for (std::size_t i = 0; i < pairs.size(); i += 2)
                result.insert(entry(pairs[i], pairs[i + 1]));
        }
        return result;
    }

    template <class T>
    std::shared_ptr<T> read(const Object& object, Of<std::shared_ptr<T>>) const {
        if (object.isNull)
            return nullptr;
        if (auto known = sharedBefore(object, typeid(T)))
            return std::static_pointer_cast<T>(*std::move(known));
        try {
            std::shared_ptr<T> made = make<T>(object);
            remember(object, typeid(T), std::const_pointer_cast<std::remove_const_t<T>>(made));
            return made;
        } catch (...) {
            forget(object, typeid(T)); // the caller may ask for another class instead
            throw;
        }
    }
    template <class T>
    std::shared_ptr<T> make(const Object& object) const {
        if constexpr (requires {
                          requires std::same_as<decltype(T::decode(*this)), std::shared_ptr<T>>;
                      })
            return T::decode(fieldsOf(object, T::archivedClassName));
        else
            return std::make_shared<T>(read(object, Of<std::remove_const_t<T>>()));
    }

    template <NSSecureCoding T>
    T read(const Object& object, Of<T>) const {
        static_assert(std::same_as<decltype(T::decode(*this)), T>,
                      "ask for a std::shared_ptr of a class that is shared by reference");
        return T::decode(fieldsOf(object, T::archivedClassName));
    }

    template <ArchivedByRawValue T>
    T read(const Object& object, Of<T>) const {
        using Raw = std::remove_cvref_t<detail::RawValueOf<T>>;
        using Stored = std::conditional_t<std::integral<Raw>, Raw, std::string>;
        std::optional<T> value = RawRepresentation<T>::make(read(object, Of<Stored>()));
        if (!value)
            refuse("a raw value stands for nothing");
        return std::move(*value);
    }

    [[noreturn]] static void refuse(const char* reason);
    [[noreturn]] static void refuseClass();
    /// What stands under a name.
    const PropertyList& field(std::string_view key) const;
    /// What a value in a field or container is, or refers to.
    Object object(const PropertyList& stored) const;
    /// The text or data that an object is, for the reader to copy.
    template <class Bytes>
    const Bytes& copied(const Object& object) const;
    const NSNumber& numberOf(const Object& object) const;
    const PropertyList::Array& arrayOf(const Object& object) const;
    Contents contentsOf(const Object& object) const;
    /// The fields of an object, after a check of its class.
    NSKeyedUnarchiver fieldsOf(const Object& object, std::string_view className) const;
    /// The same fields, one level of nesting further in.
    NSKeyedUnarchiver deeper() const;
    /// The pointer to it, which may be null; absent when it has not been made.
    std::optional<std::shared_ptr<void>> sharedBefore(const Object& object,
                                                      std::type_index type) const;
    void remember(const Object& object, std::type_index type, std::shared_ptr<void> made) const;

    void forget(const Object& object, std::type_index type) const noexcept;

    std::shared_ptr<Archive> archive_;
    const PropertyList::Dictionary* fields_;
    std::size_t depth_;
};

} // namespace zorvan
