#include <zorvan/settings/UserKeychain.h>

#include <zorvan/platform/propertylist/NSBundle.h>
#include <zorvan/platform/propertylist/internal/TextForms.h>
#include <zorvan/platform/security/internal/addOrUpdate.h>
#include <zorvan/platform/security/wipe.h>

#include <span>

namespace zorvan {

namespace {

constexpr const char* serviceWithoutBundle = "QuenlowKeychain";

/// Makes sure that a secret in a dictionary does not stay in memory.
class WipedAtEnd {
public:
    explicit WipedAtEnd(Data& bytes) noexcept : bytes_(bytes) {}
    WipedAtEnd(const WipedAtEnd&) = delete;
    WipedAtEnd& operator=(const WipedAtEnd&) = delete;
    ~WipedAtEnd() { wipe(bytes_); }

private:
    Data& bytes_;
};

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

PropertyList::Dictionary UserKeychain::baseQuery(const Key& key,
                                                 std::optional<Access> access) const {
    PropertyList::Dictionary query{
        {kSecClass, kSecClassGenericPassword}, {kSecAttrService, serviceName_},
        {kSecAttrLabel, key.rawValue},         {kSecAttrSynchronizable, kSecAttrSynchronizableAny},
        {kSecAttrGeneric, key.rawValue},       {kSecAttrAccount, key.rawValue}};
    if (const auto constant = access ? access->attributeValue() : std::nullopt)
        query.emplace(kSecAttrAccessible, *constant);
    if (accessGroup_)
        query.emplace(kSecAttrAccessGroup, *accessGroup_);
    return query;
}

bool UserKeychain::set(const Data& bytes, const Key& key, std::optional<Access> access) const {
    return setAndWipe(bytes, key, access);
}

bool UserKeychain::set(std::string_view text, const Key& key, std::optional<Access> access) const {
    if (!propertylist::isUTF8(text))
        return false;
    const auto bytes = std::as_bytes(std::span(text));
    return setAndWipe(Data(bytes.begin(), bytes.end()), key, access);
}

bool UserKeychain::setAndWipe(Data bytes, const Key& key, std::optional<Access> access) const {
    PropertyList::Dictionary query = baseQuery(key, access);
    if (enableSynchronization_)
        query.insert_or_assign(kSecAttrSynchronizable, true);

    PropertyList::Dictionary addition = query;
    addition.try_emplace(kSecAttrAccessible, kSecAttrAccessibleWhenUnlocked);
    Data& added = *addition.emplace(kSecValueData, std::move(bytes)).first->second.as<Data>();
    const WipedAtEnd afterAddition(added);
    return security::addOrUpdate(addition, query) == errSecSuccess;
}

std::optional<Data> UserKeychain::read(const Key& key, std::optional<Access> access,
                                       const char* what) const {
    PropertyList::Dictionary query = baseQuery(key, access);
    query.emplace(kSecMatchLimit, kSecMatchLimitOne);
    query.emplace(what, true);
    SecItemResult found = SecItemCopyMatching(query);
    Data* const bytes = found.value ? found.value->as<Data>() : nullptr;
    if (found.status != errSecSuccess || !bytes)
        return std::nullopt;
    return std::move(*bytes);
}

std::optional<Data> UserKeychain::data(const Key& key, std::optional<Access> access) const {
    return read(key, access, kSecReturnData);
}

std::optional<Data> UserKeychain::dataRef(const Key& key, std::optional<Access> access) const {
    return read(key, access, kSecReturnPersistentRef);
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
    return SecItemDelete(baseQuery(key, access)) == errSecSuccess;
}

bool UserKeychain::removeAllKeys() const {
    PropertyList::Dictionary query{{kSecClass, kSecClassGenericPassword},
                                   {kSecAttrService, serviceName_}};
    if (accessGroup_)
        query.emplace(kSecAttrAccessGroup, *accessGroup_);
    return SecItemDelete(query) == errSecSuccess;
}

} // namespace zorvan
