#include <zorvan/settings/UserKeychain.h>

#include <zorvan/platform/bundles/NSBundle.h>
#include <zorvan/platform/foundation/executablePath.h>
#include <zorvan/platform/foundation/internal/UTF8.h>
#include <zorvan/platform/security/internal/Items.h>
#include <zorvan/platform/security/wipe.h>

#include <span>

namespace zorvan {

namespace {

constexpr const char* serviceWithoutBundle = "QuenlowKeychain";

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
    // Never destroyed, since it may be used while the program ends.
    static const auto& constants = *new std::unordered_map<Access, std::string>{
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
    // Never destroyed, since it may be used while the program ends.
    static const auto& keychain = *new std::shared_ptr<UserKeychain>(
        create({.serviceName =
                    NSBundle::mainBundle()->bundleIdentifier().value_or(serviceWithoutBundle)}));
    return keychain;
}

std::shared_ptr<UserKeychain> UserKeychain::createForProgram() {
    const std::string path = executablePath();
    return path.empty() ? standard() : create({.serviceName = path.substr(path.rfind('/') + 1)});
}

bool UserKeychain::set(const Data& bytes, const Key& key, std::optional<Access> access) const {
    security::ItemAttributes item = itemOf(*this, key, access).attributes;
    if (enableSynchronization_)
        item.isSynchronizable = true;
    item.value = &bytes;
    return security::addOrUpdate(item, !item.isSynchronizable) == errSecSuccess;
}

bool UserKeychain::set(std::string_view text, const Key& key, std::optional<Access> access) const {
    std::optional<Data> bytes = bytesOf(text);
    return bytes && setAndWipe(std::move(*bytes), key, access);
}

bool UserKeychain::setAndWipe(Data bytes, const Key& key, std::optional<Access> access) const {
    std::optional<Data> secret = std::move(bytes);
    const detail::WipedAtEnd afterwards(secret);
    return set(*secret, key, access);
}

bool UserKeychain::modifyData(const Key& key, const ChangeData& change,
                              std::optional<Access> access) const {
    security::ItemQuery query = itemOf(*this, key, access);
    query.returnsData = true;
    security::ItemAttributes written = query.attributes;
    if (enableSynchronization_)
        written.isSynchronizable = true;
    bool isRefused = false;
    const OSStatus status = security::modify(query, written, [&](std::optional<Data>& bytes) {
        isRefused = !change(bytes);
        return !isRefused;
    });
    return status == errSecSuccess && !isRefused;
}

std::optional<Data> UserKeychain::bytesOf(std::string_view text) {
    if (!internal::isUTF8(text))
        return std::nullopt;
    const auto bytes = std::as_bytes(std::span(text));
    return Data(bytes.begin(), bytes.end());
}

std::optional<std::string> UserKeychain::textIn(const Data& bytes) {
    std::string text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return internal::isUTF8(text) ? std::optional(std::move(text)) : std::nullopt;
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
    const detail::WipedAtEnd afterwards(bytes);
    return bytes ? textIn(*bytes) : std::nullopt;
}

bool UserKeychain::hasValue(const Key& key, std::optional<Access> access) const {
    std::optional<Data> bytes = data(key, access);
    const detail::WipedAtEnd afterwards(bytes);
    return bytes.has_value();
}

bool UserKeychain::remove(const Key& key, std::optional<Access> access) const {
    return security::remove(itemOf(*this, key, access)) == errSecSuccess;
}

bool UserKeychain::removeAllKeys() const {
    return security::remove(itemsOf(*this)) == errSecSuccess;
}

} // namespace zorvan
