#include <zorvan/platform/security/SecItem.h>

#include <zorvan/platform/foundation/internal/ForkParticipant.h>
#include <zorvan/platform/security/internal/Failure.h>
#include <zorvan/platform/security/internal/ItemStore.h>
#include <zorvan/platform/security/internal/Items.h>

#include <algorithm>
#include <chrono>
#include <exception>
#include <mutex>
#include <span>
#include <sys/types.h>
#include <unistd.h>
#include <utility>

namespace zorvan {

namespace {

using namespace security;

/// Held by whoever uses the items, whatever for.
constinit std::mutex itemsMutex;

/// The process in which this thread holds it for a function that changes a value and may use the
/// items too; 0 for none.
thread_local pid_t modifyingProcess = 0;

class Modifying {
public:
    Modifying() noexcept : before_(std::exchange(modifyingProcess, ::getpid())) {}
    Modifying(const Modifying&) = delete;
    Modifying& operator=(const Modifying&) = delete;
    ~Modifying() { modifyingProcess = before_; }

private:
    const pid_t before_;
};

bool isModifying() { return modifyingProcess != 0; }

class AtFork final : public internal::ForkParticipant {
    bool tryToHold() override { return isModifying() || itemsMutex.try_lock(); }
    void letGo() override {
        if (!isModifying())
            itemsMutex.unlock();
    }
    void prepare() override {
        if (!isModifying())
            ItemStore::close();
    }
    void end(bool) override { letGo(); }
};

constinit AtFork atFork;
const internal::ForkParticipant::Joined joined(atFork);

/// Does something with the user's items, one thread at a time.
template <class Action>
OSStatus withItems(Action action) {
    try {
        std::unique_lock lock(itemsMutex, std::defer_lock);
        if (!isModifying())
            lock.lock();
        else if (modifyingProcess != ::getpid()) // a child, which has no part in the transaction
            throw Failure{errSecNotAvailable};
        try {
            action();
        } catch (const privatestore::DatabaseFailure&) {
            // A connection that could not be opened for writing, be it by chance, stays so.
            if (!isModifying())
                ItemStore::close();
            throw;
        }
        return errSecSuccess;
    } catch (...) {
        return statusOfException();
    }
}

/// What no date reaches becomes the last that does.
Date dateOf(std::int64_t count) {
    constexpr auto least =
        std::chrono::duration_cast<std::chrono::microseconds>(Date::duration::min());
    constexpr auto most =
        std::chrono::duration_cast<std::chrono::microseconds>(Date::duration::max());
    return Date(std::clamp(std::chrono::microseconds(count), least, most));
}

PropertyList::Dictionary attributesOf(const SecureItem& item) {
    PropertyList::Dictionary attributes{{kSecClass, kSecClassGenericPassword},
                                        {kSecAttrSynchronizable, item.isSynchronizable},
                                        {kSecAttrCreationDate, dateOf(item.created)},
                                        {kSecAttrModificationDate, dateOf(item.modified)}};
    for (std::size_t i = 0; i < textCount; ++i) {
        if (!item.texts[i])
            continue;
        const auto bytes = std::as_bytes(std::span(*item.texts[i]));
        attributes.emplace(textColumns[i].key, i == genericText
                                                   ? PropertyList(Data(bytes.begin(), bytes.end()))
                                                   : PropertyList(*item.texts[i]));
    }
    return attributes;
}

PropertyList resultOf(OpenedItem& opened, const ItemQuery& query) {
    if (query.returnsData + query.returnsAttributes + query.returnsReference == 1) {
        if (query.returnsData)
            return opened.value.take();
        if (query.returnsReference)
            return persistentReference(opened.item.reference);
    }
    PropertyList::Dictionary result;
    if (query.returnsAttributes)
        result = attributesOf(opened.item);
    if (query.returnsData)
        result.emplace(kSecValueData, opened.value.take());
    if (query.returnsReference)
        result.emplace(kSecValuePersistentRef, persistentReference(opened.item.reference));
    return result;
}

std::optional<PropertyList> resultOf(std::vector<OpenedItem>& found, const ItemQuery& query) {
    if (!query.returnsData && !query.returnsAttributes && !query.returnsReference)
        return std::nullopt;
    if (query.returnsOne)
        return resultOf(found.front(), query);
    PropertyList::Array results;
    results.reserve(found.size());
    for (OpenedItem& opened : found)
        results.push_back(resultOf(opened, query));
    return results;
}

template <class MakeQuery>
SecItemResult resultOf(MakeQuery makeQuery) {
    std::optional<PropertyList> value;
    const OSStatus status = withItems([&] {
        const ItemQuery& query = makeQuery();
        std::vector<OpenedItem> found = ItemStore::ofUser(false).find(query);
        value = resultOf(found, query);
    });
    return {status, std::move(value)};
}

} // namespace

OSStatus SecItemAdd(const PropertyList::Dictionary& attributes) {
    return withItems([&] {
        const NewItem item = newItem(attributes);
        if (!ItemStore::ofUser(true).add(item))
            throw Failure{errSecDuplicateItem};
    });
}

OSStatus security::addOrUpdate(const ItemAttributes& attributes, bool isDuplicateOfEitherState) {
    return withItems([&] {
        ItemStore::ofUser(true).addOrUpdate(NewItem(attributes, isDuplicateOfEitherState));
    });
}

OSStatus SecItemUpdate(const PropertyList::Dictionary& query,
                       const PropertyList::Dictionary& attributesToUpdate) {
    return withItems([&] {
        const ItemAttributes wanted = changes(attributesToUpdate);
        const ItemQuery matching = matchQuery(query);
        ItemStore::ofUser(false).update(matching, wanted);
    });
}

SecItemResult SecItemCopyMatching(const PropertyList::Dictionary& query) {
    return resultOf([&] { return searchQuery(query); });
}

SecItemResult security::copyMatching(const ItemQuery& query) {
    return resultOf([&]() -> const ItemQuery& { return query; });
}

OSStatus SecItemDelete(const PropertyList::Dictionary& query) {
    return withItems([&] {
        const ItemQuery matching = matchQuery(query);
        ItemStore::ofUser(false).remove(matching);
    });
}

OSStatus security::remove(const ItemQuery& query) {
    return withItems([&] { ItemStore::ofUser(false).remove(query); });
}

OSStatus security::modify(const ItemQuery& query, const ItemAttributes& written,
                          const std::function<bool(std::optional<Data>& value)>& change) {
    std::exception_ptr thrown;
    const auto changeOrFail = [&](std::optional<Data>& value) {
        try {
            return change(value);
        } catch (...) {
            thrown = std::current_exception();
            throw Failure{errSecParam};
        }
    };
    const OSStatus status = withItems([&] {
        ItemStore& store = ItemStore::ofUser(true);
        const Modifying modifying;
        store.modify(query, written, changeOrFail);
    });
    if (thrown)
        std::rethrow_exception(thrown);
    return status;
}

} // namespace zorvan
