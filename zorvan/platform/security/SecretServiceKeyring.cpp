#include <zorvan/platform/security/internal/Keyring.h>

#include <zorvan/platform/foundation/internal/Release.h>

#include <algorithm>
#include <condition_variable>
#include <csignal>
#include <libsecret/secret.h>
#include <memory>
#include <mutex>
#include <optional>
#include <sodium.h>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace zorvan::security {

namespace {

constexpr const char* itemLabel = "Key of the secure items of applications";
constexpr const char* identifierAttribute = "key-identifier";

template <class T>
using Object = std::unique_ptr<T, Release<g_object_unref>>;
using Attributes = std::unique_ptr<GHashTable, Release<g_hash_table_unref>>;
using Value = std::unique_ptr<SecretValue, Release<secret_value_unref>>;

const SecretSchema* schema() {
    static const SecretSchema made = [] {
        SecretSchema result{};
        result.name = "zorvan.secure-items.Key";
        result.attributes[0] = {identifierAttribute, SECRET_SCHEMA_ATTRIBUTE_STRING};
        return result;
    }();
    return &made;
}

/// A client of the secret service that answers every prompt for the user: no.
GVariant* refusePrompt(SecretService*, SecretPrompt*, GCancellable*, const GVariantType*,
                       GError** error) {
    g_set_error_literal(error, G_IO_ERROR, G_IO_ERROR_CANCELLED, "no prompts");
    return nullptr;
}

GType silentService() {
    static const GType type = [] {
        const auto initialize = [](gpointer type, gpointer) {
            static_cast<SecretServiceClass*>(type)->prompt_sync = &refusePrompt;
        };
        return g_type_register_static_simple(SECRET_TYPE_SERVICE, "ZorvanSilentSecretService",
                                             sizeof(SecretServiceClass), initialize,
                                             sizeof(SecretService), nullptr, G_TYPE_FLAG_NONE);
    }();
    return type;
}

/// An identifier as text, and back.
std::string textOf(const KeyIdentifier& identifier) {
    std::string text(identifier.size() * 2 + 1, '\0');
    sodium_bin2hex(text.data(), text.size(),
                   reinterpret_cast<const unsigned char*>(identifier.data()), identifier.size());
    text.pop_back();
    return text;
}

std::optional<KeyIdentifier> identifierIn(std::string_view text) {
    KeyIdentifier identifier;
    std::size_t size = 0;
    if (sodium_hex2bin(reinterpret_cast<unsigned char*>(identifier.data()), identifier.size(),
                       text.data(), text.size(), nullptr, &size, nullptr) != 0 ||
        size != identifier.size() || text.size() != 2 * size)
        return std::nullopt;
    return identifier;
}

/// Keys are texts in the keyring, since some keep nothing else well.
constexpr int base64 = sodium_base64_VARIANT_ORIGINAL;
constexpr std::size_t textSize = sodium_base64_ENCODED_LEN(SealingKey::size, base64);

std::optional<SealingKey> keyIn(SecretItem* item) {
    const Value value(secret_item_get_secret(item));
    const Attributes attributes(secret_item_get_attributes(item));
    if (!value || !attributes)
        return std::nullopt;
    const auto* const name =
        static_cast<const char*>(g_hash_table_lookup(attributes.get(), identifierAttribute));
    const auto identifier = name ? identifierIn(name) : std::nullopt;
    if (!identifier)
        return std::nullopt;
    gsize length = 0;
    const char* const text = secret_value_get(value.get(), &length);
    bool isWhole = false;
    SealingKey key = SealingKey::filled(*identifier, [&](auto bytes) {
        std::size_t size = 0;
        isWhole = sodium_base642bin(reinterpret_cast<unsigned char*>(bytes.data()), bytes.size(),
                                    text, length, nullptr, &size, nullptr, base64) == 0 &&
                  size == bytes.size();
    });
    return isWhole ? std::optional(std::move(key)) : std::nullopt;
}

/// Lets the process outlive the bus while it lasts, which the shared connection would not.
/// Afterwards the connection is as the application wants it, or gone when nobody else has it.
class Survival {
public:
    explicit Survival(GDBusConnection* connection)
        : connection_(connection), exitedOnClose_(g_dbus_connection_get_exit_on_close(connection)) {
        g_dbus_connection_set_exit_on_close(connection, FALSE);
    }
    Survival(const Survival&) = delete;
    Survival& operator=(const Survival&) = delete;
    ~Survival() {
        const bool isOthersToo = G_OBJECT(connection_)->ref_count > 1;
        if (isOthersToo && !g_dbus_connection_is_closed(connection_))
            g_dbus_connection_set_exit_on_close(connection_, exitedOnClose_);
    }

private:
    GDBusConnection* connection_;
    gboolean exitedOnClose_;
};

/// The conversation, which may hang in any step until it is cancelled.
class Conversation {
public:
    explicit Conversation(GCancellable* cancellable) : cancellable_(cancellable) {}

    std::vector<SealingKey> hold(bool mayCreate) {
        if (!connect())
            return {};
        std::vector<SealingKey> keys = search();
        // Searched again, since another process may have had the same idea.
        if (keys.empty() && mayCreate && create())
            keys = search();
        std::ranges::sort(keys, {}, &SealingKey::identifier);
        return keys;
    }

private:
    bool connect() {
        // The client insists on the connection that all of the process share.
        connection_.reset(g_bus_get_sync(G_BUS_TYPE_SESSION, cancellable_, nullptr));
        if (!connection_)
            return false;
        survival_.emplace(connection_.get());
        service_.reset(secret_service_open_sync(silentService(), nullptr, SECRET_SERVICE_NONE,
                                                cancellable_, nullptr));
        return service_ != nullptr;
    }

    std::vector<SealingKey> search() {
        const Attributes all(g_hash_table_new(g_str_hash, g_str_equal));
        constexpr auto flags =
            static_cast<SecretSearchFlags>(SECRET_SEARCH_ALL | SECRET_SEARCH_LOAD_SECRETS);
        GList* const found = secret_service_search_sync(service_.get(), schema(), all.get(), flags,
                                                        cancellable_, nullptr);
        std::vector<SealingKey> keys;
        for (const GList* item = found; item; item = item->next)
            if (auto key = keyIn(static_cast<SecretItem*>(item->data)))
                keys.push_back(std::move(*key));
        g_list_free_full(found, g_object_unref);
        return keys;
    }

    bool create() {
        const Object<SecretCollection> collection(
            secret_collection_for_alias_sync(service_.get(), SECRET_COLLECTION_DEFAULT,
                                             SECRET_COLLECTION_NONE, cancellable_, nullptr));
        if (!collection || secret_collection_get_locked(collection.get()))
            return false;
        const SealingKey key = SealingKey::random();
        std::string identifier = textOf(key.identifier());
        const Attributes attributes(g_hash_table_new(g_str_hash, g_str_equal));
        g_hash_table_insert(attributes.get(), const_cast<char*>(identifierAttribute),
                            identifier.data());
        Secret text(textSize);
        sodium_bin2base64(reinterpret_cast<char*>(text.bytes().data()), textSize,
                          reinterpret_cast<const unsigned char*>(key.bytes().data()),
                          SealingKey::size, base64);
        const Value value(secret_value_new(reinterpret_cast<const char*>(text.bytes().data()),
                                           static_cast<gssize>(textSize - 1), "text/plain"));
        const Object<SecretItem> item(
            secret_item_create_sync(collection.get(), schema(), attributes.get(), itemLabel,
                                    value.get(), SECRET_ITEM_CREATE_NONE, cancellable_, nullptr));
        return item != nullptr;
    }

    GCancellable* cancellable_;
    Object<GDBusConnection> connection_;
    std::optional<Survival> survival_;
    Object<SecretService> service_;
};

/// What the thread that asks shares with the one that waits.
struct Exchange {
    std::mutex mutex;
    std::condition_variable hasEnded;
    bool isDone = false;
    std::vector<SealingKey> keys;
    Object<GCancellable> cancellable{g_cancellable_new()};
};

void holdConversation(const std::shared_ptr<Exchange>& exchange, bool mayCreate) {
    // Whatever is called back is called on this thread.
    GMainContext* const context = g_main_context_new();
    g_main_context_push_thread_default(context);
    std::vector<SealingKey> keys;
    try {
        keys = Conversation(exchange->cancellable.get()).hold(mayCreate);
    } catch (...) {
        // Out of memory: there is no keyring then.
        keys.clear();
    }
    g_main_context_pop_thread_default(context);
    g_main_context_unref(context);
    const std::lock_guard lock(exchange->mutex);
    exchange->keys = std::move(keys);
    exchange->isDone = true;
    exchange->hasEnded.notify_one();
}

/// Starts a thread that takes no signals of the application.
bool startConversation(const std::shared_ptr<Exchange>& exchange, bool mayCreate) {
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    bool isStarted = true;
    try {
        std::thread(holdConversation, exchange, mayCreate).detach();
    } catch (const std::system_error&) {
        isStarted = false;
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return isStarted;
}

} // namespace

extern "C" void zorvanAskSecretService(bool mayCreate, std::chrono::milliseconds patience,
                                       KeyringAnswer& answer) {
    const auto exchange = std::make_shared<Exchange>();
    if (!startConversation(exchange, mayCreate))
        return;
    std::unique_lock lock(exchange->mutex);
    answer.isLate = !exchange->hasEnded.wait_for(lock, patience, [&] { return exchange->isDone; });
    answer.keys = std::move(exchange->keys);
    lock.unlock();
    if (answer.isLate)
        g_cancellable_cancel(exchange->cancellable.get());
}

} // namespace zorvan::security
