#pragma once

#include <zorvan/platform/dispatch/Notification.h>
#include <zorvan/platform/foundation/PropertyList.h>
#include <zorvan/platform/foundation/URL.h>
#include <zorvan/settings/SettingReference.h>
#include <zorvan/settings/SettingsObservation.h>
#include <zorvan/settings/UserDefaultsKeys.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zorvan {

class SettingsDatabase;

/// The user's settings: property-list values by key, in a domain.
///
/// A domain is the application's, named by the main bundle's identifier (by the name of the program
/// when it has none), or a suite with a name of its own, which several applications may share. Each
/// is a database in `settingsFolder()`; what it promises, and what happens when it cannot be
/// written, is said at `SettingsDatabase`. Stores of one domain share it. Reads are served from
/// memory and see at once what this and other processes have written.
///
/// Typed access is by keys, which carry the name, the default and the coder:
///
/// ```cpp
/// const EvaluedUserDefaultsKey<IntUDC> columns({.name = "Columns", .value = 4});
/// auto& store = *NSUserDefaults::standardUserDefaults();
/// store[columns] = 6;
/// const std::int64_t shown = store[columns];
/// ```
///
/// Every write through a key is followed by the notification `didSetKeyNotification()`, on the
/// writing thread and before the write returns. Writes without a key post nothing. An in-place
/// change is a read and a write, and is not atomic; `modify` is. What other processes change is
/// told to those who `follow` or `observe`.
///
/// Safe from every thread.
class NSUserDefaults : public std::enable_shared_from_this<NSUserDefaults> {
public:
    /// The name of a domain.
    struct SuiteName {
        Required<std::string> suiteName;
    };
    /// Only `create` makes stores.
    class Making {
        friend class NSUserDefaults;
        Making() = default;
    };

    /// The store of the application's domain, the same object each time.
    static const std::shared_ptr<NSUserDefaults>& standardUserDefaults();
    /// Another store of the application's domain.
    static std::shared_ptr<NSUserDefaults> create();
    /// A store of the domain with that name; null when the name is empty.
    static std::shared_ptr<NSUserDefaults> create(SuiteName argument);

    /// For `create`.
    /// @{
    NSUserDefaults(Making, std::string domain);
    NSUserDefaults(Making, std::string domain, std::shared_ptr<SettingsDatabase> database);
    /// @}
    ~NSUserDefaults();
    NSUserDefaults(const NSUserDefaults&) = delete;
    NSUserDefaults& operator=(const NSUserDefaults&) = delete;

    /// The name of the domain: an identifier, a program or a suite.
    std::string domainName() const { return domain_; }

    // Untyped reading. What is stored is converted where a conversion is named; anything else
    // counts as nothing: 0, false or absent.

    /// What is stored under the key; absent when nothing is.
    std::optional<PropertyList> objectForKey(std::string_view key) const;
    /// The same object, shared instead of copied; null when there is none.
    std::shared_ptr<const PropertyList> sharedObjectForKey(std::string_view key) const;
    /// Whether anything is stored under the key or registered for it.
    bool hasObjectForKey(std::string_view key) const;
    /// A number is true unless it is 0. A text is true when, after spaces, a sign and zeros, it
    /// goes on with one of Y y T t 1 to 9.
    bool boolForKey(std::string_view key) const;
    /// A real is truncated and saturates, NaN is 0. A text is read as far as it is a decimal
    /// integer, after spaces and a sign, and saturates; 0 when it does not begin with one.
    std::int64_t integerForKey(std::string_view key) const;
    /// As `doubleForKey`, in single precision.
    float floatForKey(std::string_view key) const;
    /// A text is read as far as it is a decimal real, after spaces and a sign, in any locale with a
    /// point; beyond the range it is infinite or 0.
    double doubleForKey(std::string_view key) const;
    /// A number gives its shortest decimal text that reads back the same, a truth value "1" or "0".
    std::optional<std::string> stringForKey(std::string_view key) const;
    /// The bytes that are stored; absent when something else is.
    std::optional<Data> dataForKey(std::string_view key) const;
    /// The array that is stored; absent when something else is.
    std::optional<PropertyList::Array> arrayForKey(std::string_view key) const;
    /// The dictionary that is stored; absent when something else is.
    std::optional<PropertyList::Dictionary> dictionaryForKey(std::string_view key) const;
    /// Absent unless every element is a text.
    std::optional<std::vector<std::string>> stringArrayForKey(std::string_view key) const;
    /// A text with a scheme as a URL, one that begins with "/" as the path of a file, with "~" as
    /// one in the home folder.
    std::optional<URL> URLForKey(std::string_view key) const;
    /// The date that is stored; absent when something else is.
    std::optional<Date> date(std::string_view forKey) const;

    // Untyped writing. An absent value removes the key.

    /// Stores the value, and posts nothing. An absent object removes the key.
    /// @{
    void setObject(std::optional<PropertyList> value, std::string_view forKey);
    void setBool(bool value, std::string_view forKey) { setObject(value, forKey); }
    void setInteger(std::int64_t value, std::string_view forKey) { setObject(value, forKey); }
    void setFloat(float value, std::string_view forKey) { setObject(value, forKey); }
    void setDouble(double value, std::string_view forKey) { setObject(value, forKey); }
    /// @}
    /// Stored as the text of the whole URL.
    void setURL(const std::optional<URL>& value, std::string_view forKey);
    /// Stores the date, and posts nothing.
    void set(Date value, std::string_view forKey) { setObject(value, forKey); }
    /// Removes what is stored under the key; what is registered for it is read again.
    void removeObjectForKey(std::string_view key);
    /// Keeps what is stored under the key, whatever it is, under "KEY.unreadable" ("-2", ...) as
    /// well, unless it is there already. For coders that are about to write over what they cannot
    /// read.
    void setUnreadableAside(std::string_view key);

    // Typed access.

    /// Reads and writes as `value`, `set` and `setOpt` do.
    template <GenericUserDefaultsKey Key>
    SettingReference<Key> operator[](const Key& key) {
        return SettingReference<Key>(*this, key);
    }

    /// What the coder reads, else the key's default.
    template <GenericUserDefaultsKey Key>
    typename SettingReference<Key>::Value value(const Key& key) {
        auto stored = detail::coderOf(key).decode(*this, key.name);
        if (stored)
            return std::move(*stored);
        return key.value;
    }

    /// Writes a value, or what a callable gives, which is called once, and posts the notification.
    template <GenericUserDefaultsKey Key, class Expression>
    void set(const Key& key, Expression&& expr) {
        write<typename Key::CodableType>(key, std::forward<Expression>(expr));
    }
    /// The same with a value that may be absent.
    template <GenericUserDefaultsKey Key, class Expression>
    void setOpt(const Key& key, Expression&& expr) {
        write<std::optional<typename Key::CodableType>>(key, std::forward<Expression>(expr));
    }
    /// As `set` and `setOpt`, but when `hasValue(key)` nothing happens, nor is a callable called.
    /// @{
    template <GenericUserDefaultsKey Key, class Expression>
    void setIfNil(const Key& key, Expression&& expr) {
        if (!hasValue(key))
            set(key, std::forward<Expression>(expr));
    }
    template <GenericUserDefaultsKey Key, class Expression>
    void setOptIfNil(const Key& key, Expression&& expr) {
        if (!hasValue(key))
            setOpt(key, std::forward<Expression>(expr));
    }
    /// @}
    /// Has the function read and write this store - with keys and without, several at once - in one
    /// transaction across threads and processes: nobody else writes in between, all of it is stored
    /// or none. What is read is what there is, with the function's own writes. When it throws,
    /// nothing is changed, and what it throws is thrown. It is called at most once, on this thread,
    /// and should be quick: others wait for it. One within another is a part of it; of two domains,
    /// always the same must be the outer one.
    ///
    /// True when it is stored. Else nothing was changed - the database is held by another process
    /// for five seconds, or has no room - but where there is no database that could be written, it
    /// is kept in memory like every write. Notifications are posted afterwards, in order, when
    /// something may have changed; what an observer throws then is thrown when all are posted.
    bool transact(const std::function<void()>& function);
    /// Reads the key's value as `value` does, has the function change it, and writes it, in one
    /// transaction; see `transact`. False as well when the changed value has no stored form, such
    /// as a text that is not UTF-8 in a `JSONCodableUDC`: nothing is written and posted then, and
    /// what is stored stays.
    ///
    /// ```cpp
    /// store.modify(recentFiles, [&](auto& files) { files.push_back(name); });
    /// ```
    template <GenericUserDefaultsKey Key,
              std::invocable<typename SettingReference<Key>::Value&> Change>
    bool modify(const Key& key, Change&& change) {
        bool hasForm = false;
        const bool isStored = transact([&] {
            auto changed = value(key);
            std::forward<Change>(change)(changed);
            hasForm = detail::hasStoredForm(detail::coderOf(key), changed);
            if (hasForm)
                (*this)[key] = changed;
        });
        return isStored && hasForm;
    }

    /// Writes the key's default into the store unless something is there.
    template <class Coder>
    void setDefaultValue(const EvaluedUserDefaultsKey<Coder>& of) {
        setIfNil(of, of.value);
    }
    /// Whether anything is stored or registered under the key's name, readable by its coder or not.
    template <GenericUserDefaultsKey Key>
    bool hasValue(const Key& forKey) const {
        return hasObjectForKey(forKey.name);
    }

    /// Whether something is stored under the key's name that its coder cannot read: typed reading
    /// gives the default then, as it does when there is nothing.
    template <GenericUserDefaultsKey Key>
    bool hasUnreadableValue(const Key& forKey) {
        return hasValue(forKey) && !detail::coderOf(forKey).decode(*this, forKey.name);
    }

    // Notifications.

    /// "UserDefaultsDidSetKeyNotification", posted on the default center with the store as its
    /// object.
    static NSNotificationName didSetKeyNotification();
    /// "EditedKeyName": under it the notification has the key's name, a `std::string`, and nothing
    /// else.
    static const std::string& editedKeyName();
    /// The name of the key that was written; absent when the notification has none, or no text.
    static std::optional<std::string> editedKeyName(const Notification& of);

    /// Whether the notification is about one of the keys: `note(notification, {&columns, &rows})`.
    /// @{
    template <GenericUserDefaultsKey Key>
    static bool note(const Notification& note, std::initializer_list<const Key*> didEditKeys) {
        return NSUserDefaults::note(note, std::span(didEditKeys.begin(), didEditKeys.size()));
    }
    template <GenericUserDefaultsKey Key>
    static bool note(const Notification& note, std::span<const Key* const> didEditKeys) {
        const std::optional<std::string> edited = editedKeyName(note);
        for (const Key* key : didEditKeys)
            if (edited == key->name)
                return true;
        return false;
    }
    /// @}
    /// Tells that a key was written. For writers that do not go through the key.
    void postDidSet(const std::string& keyName);

    // What other processes change. What this one writes is not told here.

    /// Has the handler told, on the main queue, of the keys that other processes change from now
    /// on: each change once, in order, those of one transaction at once. Of changes of one key that
    /// follow each other faster than they are read, the last one is told. Nobody asks again and
    /// again: the kernel says when the database is written.
    [[nodiscard]] std::shared_ptr<SettingsObservation>
    follow(std::function<void(const std::vector<std::string>& keys)> handler);
    /// The same of one key: the handler gets the value before the change and the one after it, as
    /// typed reading would have given them, also when the store has another by then. The key is
    /// copied.
    template <GenericUserDefaultsKey Key,
              std::invocable<const typename SettingReference<Key>::Value&,
                             const typename SettingReference<Key>::Value&>
                  Handler>
    [[nodiscard]] std::shared_ptr<SettingsObservation> observe(const Key& key, Handler handler) {
        auto own = std::make_shared<const Key>(
            typename Key::NameCoderValue{.name = key.name, .coder = key.coder, .value = key.value});
        return observeStored(key.name, [own, handler = std::move(handler)](
                                           NSUserDefaults& before, NSUserDefaults& after) mutable {
            handler(before.value(*own), after.value(*own));
        });
    }

    // Domains.

    /// Removes everything from the domain of the main bundle; does nothing when that has no
    /// identifier.
    void clearAllData();
    /// Removes everything from the domain of that name.
    void removePersistentDomainForName(std::string_view name);
    /// What the domain of that name holds, without registered values.
    PropertyList::Dictionary persistentDomainForName(std::string_view name) const;
    /// Replaces what the domain holds, in one step.
    void setPersistentDomain(PropertyList::Dictionary values, std::string_view forName);

    /// Values that are read from this store where the domain has none. Kept by this object only,
    /// and added to those registered before.
    void registerDefaults(PropertyList::Dictionary values);

    /// Everything that can be read, registered values included.
    PropertyList::Dictionary dictionaryRepresentation() const;

    /// Stores what could not be stored when it was written, and makes everything last through a
    /// power failure. Whether that succeeded.
    bool synchronize();

    // To and from a file.

    /// The domain as an XML property list, which has whole seconds only. Absent when a text is not
    /// UTF-8 or has a character that XML cannot write.
    std::optional<Data> exportedXML() const;
    /// Sets every key of a property list, XML or binary, in one step; other keys stay. False, and
    /// nothing is changed, when the bytes are no dictionary; false as well when the values are only
    /// in memory. Posts nothing.
    bool importPropertyList(std::span<const std::byte> bytes);

private:
    template <class Value, class Expression>
    static Value evaluated(Expression&& expression) {
        if constexpr (std::is_constructible_v<Value, Expression&&> &&
                      !std::is_invocable_v<Expression&&>)
            return Value(std::forward<Expression>(expression));
        else
            return Value(std::forward<Expression>(expression)());
    }

    template <class Value, class Key, class Expression>
    void write(const Key& key, Expression&& expression) {
        const auto& coder = detail::coderOf(key);
        const std::optional<typename Key::CodableType> value(
            evaluated<Value>(std::forward<Expression>(expression)));
        coder.encode(value, *this, key.name);
        postDidSet(key.name);
    }

    template <class Kind>
    std::optional<Kind> storedAs(std::string_view key) const;

    using StoredHandler = std::function<void(NSUserDefaults& before, NSUserDefaults& after)>;
    /// The handler gets stores that have the value before and after the change, and nothing else.
    std::shared_ptr<SettingsObservation> observeStored(const std::string& name,
                                                       StoredHandler handler);
    std::shared_ptr<NSUserDefaults> storeOf(const std::string& key,
                                            const std::shared_ptr<const PropertyList>& value) const;

    const std::string domain_;
    const std::shared_ptr<SettingsDatabase> database_;
    PropertyList::Dictionary registered_;
};

template <GenericUserDefaultsKey Key>
auto SettingReference<Key>::value() const -> Value {
    return store_.value(key_);
}

template <GenericUserDefaultsKey Key>
void SettingReference<Key>::assign(const Value& value) const {
    if constexpr (std::same_as<Value, typename Key::CodableType>)
        store_.set(key_, value);
    else
        store_.setOpt(key_, value);
}

} // namespace zorvan
