#include <zorvan/settings/NSUserDefaults.h>

#include <zorvan/platform/bundles/NSBundle.h>
#include <zorvan/platform/dispatch/DispatchQueue.h>
#include <zorvan/platform/dispatch/NSNotificationCenter.h>
#include <zorvan/platform/foundation/executablePath.h>
#include <zorvan/platform/foundation/internal/ForkParticipant.h>
#include <zorvan/platform/propertylist/PropertyListFile.h>
#include <zorvan/platform/settingsdatabase/SettingsDatabase.h>
#include <zorvan/settings/internal/conversions.h>

#include <exception>
#include <filesystem>
#include <mutex>

namespace zorvan {

namespace {

const std::string& applicationDomain() {
    static const std::string& domain =
        *new std::string(NSBundle::mainBundle()->bundleIdentifier().value_or(
            std::filesystem::path(executablePath()).filename().string()));
    return domain;
}

constinit internal::BriefMutex registering; // in any store
const internal::ForkParticipant::Joined joined(registering);

/// Notifications of a transaction of this thread, which are posted when it has succeeded.
class HeldPosts {
public:
    using Post = std::pair<std::shared_ptr<NSUserDefaults>, std::string>;

    explicit HeldPosts(const SettingsDatabase* database) noexcept
        : database_(database), outer_(std::exchange(innermost_, this)) {}
    HeldPosts(const HeldPosts&) = delete;
    HeldPosts& operator=(const HeldPosts&) = delete;
    ~HeldPosts() { innermost_ = outer_; }

    /// Null when this thread has no transaction of the database.
    static HeldPosts* of(const SettingsDatabase* database) noexcept {
        HeldPosts* held = innermost_;
        while (held && held->database_ != database)
            held = held->outer_;
        return held;
    }

    std::vector<Post> posts;

private:
    static thread_local HeldPosts* innermost_;

    const SettingsDatabase* database_;
    HeldPosts* outer_;
};

thread_local HeldPosts* HeldPosts::innermost_ = nullptr;

} // namespace

const std::shared_ptr<NSUserDefaults>& NSUserDefaults::standardUserDefaults() {
    // Never destroyed, since it may be used while the program ends.
    static const auto& standard = *new std::shared_ptr<NSUserDefaults>(create());
    return standard;
}

std::shared_ptr<NSUserDefaults> NSUserDefaults::create() {
    return std::make_shared<NSUserDefaults>(Making(), applicationDomain());
}

std::shared_ptr<NSUserDefaults> NSUserDefaults::create(SuiteName argument) {
    if (argument.suiteName.value.empty())
        return nullptr;
    return std::make_shared<NSUserDefaults>(Making(), std::move(argument.suiteName.value));
}

NSUserDefaults::NSUserDefaults(Making, std::string domain)
    : domain_(std::move(domain)), database_(SettingsDatabase::ofDomain(domain_)) {}

NSUserDefaults::NSUserDefaults(Making, std::string domain,
                               std::shared_ptr<SettingsDatabase> database)
    : domain_(std::move(domain)), database_(std::move(database)) {}

NSUserDefaults::~NSUserDefaults() = default;

// Reading.

std::shared_ptr<const PropertyList> NSUserDefaults::sharedObjectForKey(std::string_view key) const {
    std::shared_ptr<const PropertyList> value = database_->value(key);
    if (value)
        return value;
    const std::lock_guard lock(registering);
    const auto found = registered_.find(key);
    return found == registered_.end() ? nullptr
                                      : std::make_shared<const PropertyList>(found->second);
}

template <class Kind>
std::optional<Kind> NSUserDefaults::storedAs(std::string_view key) const {
    const auto value = sharedObjectForKey(key);
    const Kind* kind = value ? value->as<Kind>() : nullptr;
    return kind ? std::optional(*kind) : std::nullopt;
}

std::optional<PropertyList> NSUserDefaults::objectForKey(std::string_view key) const {
    const auto value = sharedObjectForKey(key);
    return value ? std::optional(*value) : std::nullopt;
}

bool NSUserDefaults::hasObjectForKey(std::string_view key) const {
    return sharedObjectForKey(key) != nullptr;
}

bool NSUserDefaults::boolForKey(std::string_view key) const {
    const auto value = sharedObjectForKey(key);
    return value && internal::asBool(*value);
}

std::int64_t NSUserDefaults::integerForKey(std::string_view key) const {
    const auto value = sharedObjectForKey(key);
    return value ? internal::asInteger(*value) : 0;
}

float NSUserDefaults::floatForKey(std::string_view key) const {
    return static_cast<float>(doubleForKey(key));
}

double NSUserDefaults::doubleForKey(std::string_view key) const {
    const auto value = sharedObjectForKey(key);
    return value ? internal::asDouble(*value) : 0;
}

std::optional<std::string> NSUserDefaults::stringForKey(std::string_view key) const {
    const auto value = sharedObjectForKey(key);
    return value ? internal::asString(*value) : std::nullopt;
}

std::optional<Data> NSUserDefaults::dataForKey(std::string_view key) const {
    return storedAs<Data>(key);
}

std::optional<PropertyList::Array> NSUserDefaults::arrayForKey(std::string_view key) const {
    return storedAs<PropertyList::Array>(key);
}

std::optional<PropertyList::Dictionary>
NSUserDefaults::dictionaryForKey(std::string_view key) const {
    return storedAs<PropertyList::Dictionary>(key);
}

std::optional<std::vector<std::string>>
NSUserDefaults::stringArrayForKey(std::string_view key) const {
    const auto value = sharedObjectForKey(key);
    return value ? internal::asStrings(*value) : std::nullopt;
}

std::optional<URL> NSUserDefaults::URLForKey(std::string_view key) const {
    const auto value = sharedObjectForKey(key);
    return value ? internal::asURL(*value) : std::nullopt;
}

std::optional<Date> NSUserDefaults::date(std::string_view forKey) const {
    return storedAs<Date>(forKey);
}

// Writing.

void NSUserDefaults::setObject(std::optional<PropertyList> value, std::string_view forKey) {
    if (value)
        database_->set(forKey, std::move(*value));
    else
        database_->remove(forKey);
}

void NSUserDefaults::setURL(const std::optional<URL>& value, std::string_view forKey) {
    setObject(value ? std::optional<PropertyList>(value->absoluteString()) : std::nullopt, forKey);
}

void NSUserDefaults::removeObjectForKey(std::string_view key) { database_->remove(key); }

void NSUserDefaults::setUnreadableAside(std::string_view key) {
    const std::optional<PropertyList> value = objectForKey(key);
    const std::string first = std::string(key) + ".unreadable";
    std::string aside = first;
    for (int number = 2; hasObjectForKey(aside) && objectForKey(aside) != value; ++number)
        aside = first + '-' + std::to_string(number);
    setObject(value, aside);
}

// Notifications.

NSNotificationName NSUserDefaults::didSetKeyNotification() {
    static const NSNotificationName name("UserDefaultsDidSetKeyNotification");
    return name;
}

const std::string& NSUserDefaults::editedKeyName() {
    static const std::string& key = *new std::string("EditedKeyName");
    return key;
}

std::optional<std::string> NSUserDefaults::editedKeyName(const Notification& of) {
    const auto* name = of.value<std::string>(editedKeyName());
    return name ? std::optional(*name) : std::nullopt;
}

void NSUserDefaults::postDidSet(const std::string& keyName) {
    if (HeldPosts* const held = HeldPosts::of(database_.get())) {
        held->posts.emplace_back(shared_from_this(), keyName);
        return;
    }
    NSNotificationCenter::defaultCenter()->post(didSetKeyNotification(), shared_from_this(),
                                                Notification::UserInfo{{editedKeyName(), keyName}});
}

// Transactions.

bool NSUserDefaults::transact(const std::function<void()>& function) {
    using Outcome = SettingsDatabase::Outcome;
    if (HeldPosts* const held = HeldPosts::of(database_.get())) {
        const std::size_t before = held->posts.size();
        try {
            return database_->transact(function) == Outcome::stored;
        } catch (...) {
            held->posts.resize(before);
            throw;
        }
    }
    Outcome outcome = Outcome::refused;
    std::vector<HeldPosts::Post> posts;
    {
        HeldPosts held(database_.get());
        outcome = database_->transact(function);
        posts = std::move(held.posts);
    }
    if (outcome == Outcome::refused)
        return false;
    // What one observer throws is thrown when all have been told.
    std::exception_ptr thrown;
    for (const auto& [store, keyName] : posts)
        try {
            store->postDidSet(keyName);
        } catch (...) {
            thrown = thrown ? thrown : std::current_exception();
        }
    if (thrown)
        std::rethrow_exception(thrown);
    return outcome == Outcome::stored;
}

// What other processes change.

std::shared_ptr<SettingsObservation>
NSUserDefaults::follow(std::function<void(const std::vector<std::string>& keys)> handler) {
    using Handler = std::function<void(const std::vector<std::string>& keys)>;
    auto kept = std::make_shared<Handler>(std::move(handler));
    auto following = database_->follow(
        [weak = std::weak_ptr(kept)](const std::vector<SettingsDatabase::Followed>& changes) {
            std::vector<std::string> keys;
            for (const auto& change : changes)
                keys.push_back(change.key);
            DispatchQueue::main()->async([weak, keys = std::move(keys)] {
                if (const auto living = weak.lock())
                    (*living)(keys);
            });
        });
    return std::shared_ptr<SettingsObservation>(
        new SettingsObservation(std::move(following), std::move(kept)));
}

std::shared_ptr<SettingsObservation> NSUserDefaults::observeStored(const std::string& name,
                                                                   StoredHandler handler) {
    auto kept = std::make_shared<StoredHandler>(std::move(handler));
    const auto tell = [weak = std::weak_ptr(kept),
                       store = shared_from_this()](const SettingsDatabase::Followed& change) {
        DispatchQueue::main()->async([weak, store, change] {
            if (const auto living = weak.lock())
                (*living)(*store->storeOf(change.key, change.before),
                          *store->storeOf(change.key, change.after));
        });
    };
    auto following =
        database_->follow([tell, name](const std::vector<SettingsDatabase::Followed>& changes) {
            for (const auto& change : changes)
                if (change.key == name)
                    tell(change);
        });
    return std::shared_ptr<SettingsObservation>(
        new SettingsObservation(std::move(following), std::move(kept)));
}

std::shared_ptr<NSUserDefaults>
NSUserDefaults::storeOf(const std::string& key,
                        const std::shared_ptr<const PropertyList>& value) const {
    auto store = std::make_shared<NSUserDefaults>(Making(), domain_, SettingsDatabase::inMemory());
    if (value)
        store->setObject(*value, key);
    PropertyList::Dictionary registered;
    {
        const std::lock_guard lock(registering);
        if (const auto found = registered_.find(key); found != registered_.end())
            registered.insert(*found);
    }
    store->registerDefaults(std::move(registered));
    return store;
}

// Domains.

void NSUserDefaults::clearAllData() {
    if (const auto identifier = NSBundle::mainBundle()->bundleIdentifier())
        removePersistentDomainForName(*identifier);
}

void NSUserDefaults::removePersistentDomainForName(std::string_view name) {
    SettingsDatabase::ofDomain(name)->removeAll();
}

PropertyList::Dictionary NSUserDefaults::persistentDomainForName(std::string_view name) const {
    return SettingsDatabase::ofDomain(name)->contents();
}

void NSUserDefaults::setPersistentDomain(PropertyList::Dictionary values,
                                         std::string_view forName) {
    const auto database = SettingsDatabase::ofDomain(forName);
    std::vector<SettingsDatabase::Change> changes;
    for (const auto& [key, value] : database->contents())
        if (!values.contains(key))
            changes.emplace_back(key, std::nullopt);
    for (auto& [key, value] : values)
        changes.emplace_back(key, std::move(value));
    database->apply(std::move(changes));
}

void NSUserDefaults::registerDefaults(PropertyList::Dictionary values) {
    const std::lock_guard lock(registering);
    values.merge(registered_);
    registered_ = std::move(values);
}

PropertyList::Dictionary NSUserDefaults::dictionaryRepresentation() const {
    PropertyList::Dictionary all = database_->contents();
    const std::lock_guard lock(registering);
    all.insert(registered_.begin(), registered_.end());
    return all;
}

bool NSUserDefaults::synchronize() { return database_->synchronize(); }

// To and from a file.

std::optional<Data> NSUserDefaults::exportedXML() const {
    return propertylist::encode(database_->contents(), propertylist::Format::xml);
}

bool NSUserDefaults::importPropertyList(std::span<const std::byte> bytes) {
    std::optional<PropertyList> list = propertylist::decode(bytes);
    auto* values = list ? list->as<PropertyList::Dictionary>() : nullptr;
    if (!values)
        return false;
    std::vector<SettingsDatabase::Change> changes;
    for (auto& [key, value] : *values)
        changes.emplace_back(key, std::move(value));
    return database_->apply(std::move(changes));
}

} // namespace zorvan
