#include <zorvan/settings/UserKeychain.h>

#include <zorvan/platform/propertylist/NSBundle.h>
#include <zorvan/platform/propertylist/internal/TextForms.h>
#include <zorvan/platform/security/internal/Items.h>
#include <zorvan/platform/security/wipe.h>

#include <span>

namespace zorvan {

namespace {

constexpr const char* serviceWithoutBundle = "QuenlowKeychain";

/// Makes sure that a secret does not stay in memory.
class WipedAtEnd {
public:
    explicit WipedAtEnd(Data& bytes) noexcept : bytes_(bytes) {}
    WipedAtEnd(const WipedAtEnd&) = delete;
    WipedAtEnd& operator=(const WipedAtEnd&) = delete;
    ~WipedAtEnd() { wipe(bytes_); }

private:
    Data& bytes_;
};

security::ItemQuery itemsOf(const UserKeychain& keychain) {
    security::ItemQuery items;
    items.attributes.texts[security::serviceText] = keychain.serviceName();
    items.attributes.texts[security::accessGroupText] = keychain.accessGroup();
    return items;
}

/// In both states of synchronisation.
security::ItemQuery itemOf(const UserKeychain& keychain, const UserKeychain::Key& key,
                           std::optional<UserKeychain::Access> access) {
    security::ItemQuery item = itemsOf(keychain);
    for (const auto text : {security::accountText, security::labelText, security::genericText})
        item.attributes.texts[text] = key.rawValue;
    if (access)
        item.attributes.texts[security::accessibleText] = access->attributeValue();
    return item;
}

std::optional<Data> bytesFor(const security::ItemQuery& query) {
    SecItemResult found = security::copyMatching(query);
    Data* const bytes = found.value ? found.value->as<Data>() : nullptr;
    return bytes ? std::optional(std::move(*bytes)) : std::nullopt;
}

} // namespace

std::optional<UserKeychain::Access> UserKeychain::Access::make(std::string_view attributeValue) {
    for (const auto& [access, constant] : lookup())
        if (constant == attributeValue)
            return access;
    return std::nullopt;
}

const std::unordered_map<UserKeychain::Access, std::string>& UserKeychain::Access::lookup() {
    static const std::unordered_map<Access, std::string> constants{
        {afterFirstUnlock, kSecAttrAccessibleAfterFirstUnlock},
        {afterFirstUnlockThisDeviceOnly, kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly},
        {whenPasscodeSetThisDeviceOnly, kSecAttrAccessibleWhenPasscodeSetThisDeviceOnly},
        {whenUnlocked, kSecAttrAccessibleWhenUnlocked},
        {whenUnlockedThisDeviceOnly, kSecAttrAccessibleWhenUnlockedThisDeviceOnly}};
    return constants;
}

std::optional<std::string> UserKeychain::Access::attributeValue() const {
    const auto entry = lookup().find(*this);
    return entry == lookup().end() ? std::nullopt : std::optional(entry->second);
}

UserKeychain::UserKeychain(Service argument)
    : serviceName_(std::move(argument.serviceName.value)),
      accessGroup_(std::move(argument.accessGroup)) {}

std::shared_ptr<UserKeychain> UserKeychain::create(Service argument) {
    return std::shared_ptr<UserKeychain>(new UserKeychain(std::move(argument)));
}

const std::shared_ptr<UserKeychain>& UserKeychain::standard() {
    static const std::shared_ptr<UserKeychain> keychain = create(
        {.serviceName = NSBundle::mainBundle()->bundleIdentifier().value_or(serviceWithoutBundle)});
    return keychain;
}

bool UserKeychain::set(const Data& bytes, const Key& key, std::optional<Access> access) const {
    security::ItemAttributes item = itemOf(*this, key, access).attributes;
    if (enableSynchronization_)
        item.isSynchronizable = true;
    item.value = &bytes;
    return security::addOrUpdate(item, !item.isSynchronizable) == errSecSuccess;
}

bool UserKeychain::set(std::string_view text, const Key& key, std::optional<Access> access) const {
    if (!propertylist::isUTF8(text))
        return false;
    const auto bytes = std::as_bytes(std::span(text));
    return setAndWipe(Data(bytes.begin(), bytes.end()), key, access);
}

bool UserKeychain::setAndWipe(Data bytes, const Key& key, std::optional<Access> access) const {
    const WipedAtEnd afterwards(bytes);
    return set(bytes, key, access);
}

std::optional<Data> UserKeychain::data(const Key& key, std::optional<Access> access) const {
    security::ItemQuery query = itemOf(*this, key, access);
    query.returnsData = true;
    return bytesFor(query);
}

std::optional<Data> UserKeychain::dataRef(const Key& key, std::optional<Access> access) const {
    security::ItemQuery query = itemOf(*this, key, access);
    query.returnsReference = true;
    return bytesFor(query);
}

std::optional<std::string> UserKeychain::string(const Key& key,
                                                std::optional<Access> access) const {
    std::optional<Data> bytes = data(key, access);
    if (!bytes)
        return std::nullopt;
    const WipedAtEnd wiped(*bytes);
    std::string text(reinterpret_cast<const char*>(bytes->data()), bytes->size());
    if (propertylist::isUTF8(text))
        return text;
    return std::nullopt;
}

void UserKeychain::readArchive(const Key& key, std::optional<Access> access,
                               const std::function<void(const Data&)>& reader) const {
    std::optional<Data> archive = data(key, access);
    if (!archive)
        return;
    const WipedAtEnd wiped(*archive);
    try {
        reader(*archive);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {
        // It is no archive of that class.
    }
}

std::optional<NSNumber> UserKeychain::number(const Key& key, std::optional<Access> access) const {
    return object<NSNumber>(key, access);
}

std::optional<std::int64_t> UserKeychain::integer(const Key& key,
                                                  std::optional<Access> access) const {
    const auto value = number(key, access);
    return value ? std::optional(value->int64Value()) : std::nullopt;
}

std::optional<float> UserKeychain::float_(const Key& key, std::optional<Access> access) const {
    const auto value = number(key, access);
    return value ? std::optional(value->floatValue()) : std::nullopt;
}

std::optional<double> UserKeychain::double_(const Key& key, std::optional<Access> access) const {
    const auto value = number(key, access);
    return value ? std::optional(value->doubleValue()) : std::nullopt;
}

std::optional<bool> UserKeychain::bool_(const Key& key, std::optional<Access> access) const {
    const auto value = number(key, access);
    return value ? std::optional(value->boolValue()) : std::nullopt;
}

bool UserKeychain::hasValue(const Key& key, std::optional<Access> access) const {
    std::optional<Data> bytes = data(key, access);
    if (bytes)
        wipe(*bytes);
    return bytes.has_value();
}

bool UserKeychain::remove(const Key& key, std::optional<Access> access) const {
    return security::remove(itemOf(*this, key, access)) == errSecSuccess;
}

bool UserKeychain::removeAllKeys() const {
    return security::remove(itemsOf(*this)) == errSecSuccess;
}

} // namespace zorvan
