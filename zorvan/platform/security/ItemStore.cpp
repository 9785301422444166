#include <zorvan/platform/security/internal/ItemStore.h>

#include <zorvan/platform/security/internal/Failure.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <sodium.h>
#include <span>
#include <string>
#include <unistd.h>

namespace zorvan::security {

namespace {

/// In the order in which `rowOf` reads them.
const std::string& columns() {
    static const std::string names = [] {
        std::string list = "reference, synchronizable, created, modified, sealing_key, sealed";
        for (const TextColumn& column : textColumns)
            list += std::string(", ") + column.column;
        return list;
    }();
    return names;
}
constexpr int fixedColumns = 6;

/// One more than any writing of the same item in either state, so that it tells which came last.
constexpr const char* nextRevision =
    "(SELECT coalesce(max(revision), 0) + 1 FROM items AS others WHERE others.service = ?1 AND "
    "others.account = ?2 AND others.access_group = ?3)";

std::int64_t microsecondsNow() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(now).count();
}

std::int64_t newReference() {
    std::uint64_t number = 0;
    while (number == 0) {
        randombytes_buf(&number, sizeof number);
        number >>= 1;
    }
    return static_cast<std::int64_t>(number);
}

void bindText(Statement& statement, std::size_t column, const std::optional<std::string>& text) {
    if (!text)
        statement.bindNull();
    else if (column == genericText)
        statement.bindBytes(std::as_bytes(std::span(*text)));
    else
        statement.bindText(*text);
}

std::string conditionsOf(const ItemQuery& query) {
    std::string text = " WHERE 1";
    for (std::size_t i = 0; i < textCount; ++i)
        if (query.attributes.texts[i])
            text += std::string(" AND ") + textColumns[i].column + " = ?";
    if (query.attributes.isSynchronizable)
        text += " AND synchronizable = ?";
    if (query.reference)
        text += " AND reference = ?";
    return text;
}

void bindConditions(Statement& statement, const ItemQuery& query) {
    for (std::size_t i = 0; i < textCount; ++i)
        if (query.attributes.texts[i])
            bindText(statement, i, query.attributes.texts[i]);
    if (query.attributes.isSynchronizable)
        statement.bind(*query.attributes.isSynchronizable);
    if (query.reference)
        statement.bind(*query.reference);
}

/// Whatever the columns hold: damage shows when the value is opened.
SecureItem rowOf(const Statement& row) {
    SecureItem item;
    item.reference = row.integer(0);
    item.isSynchronizable = row.integer(1) != 0;
    item.created = row.integer(2);
    item.modified = row.integer(3);
    if (const auto key = row.bytes(4); key.size() == sizeof(KeyIdentifier))
        std::ranges::copy(key, item.key.emplace().begin());
    const auto sealed = row.bytes(5);
    item.sealed.assign(sealed.begin(), sealed.end());
    for (std::size_t i = 0; i < textCount; ++i) {
        const int column = fixedColumns + static_cast<int>(i);
        if (row.isNull(column))
            continue;
        const auto bytes = row.bytes(column);
        item.texts[i].emplace(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    }
    return item;
}

std::vector<SecureItem> rowsOf(Statement statement) {
    std::vector<SecureItem> rows;
    while (statement.step())
        rows.push_back(rowOf(statement));
    return rows;
}

void give(SecureItem& item, const ItemAttributes& attributes) {
    for (std::size_t i = 0; i < textCount; ++i)
        if (attributes.texts[i])
            item.texts[i] = attributes.texts[i];
    if (attributes.isSynchronizable)
        item.isSynchronizable = *attributes.isSynchronizable;
}

void seal(SecureItem& item, const SealingKey& key, std::span<const std::byte> value) {
    item.key = key.identifier();
    item.sealed = key.seal(value, associatedData(item));
}

void bindItem(Statement& statement, const SecureItem& item) {
    for (std::size_t i = 0; i < textCount; ++i)
        bindText(statement, i, item.texts[i]);
    statement.bind(item.isSynchronizable)
        .bind(item.created)
        .bind(item.modified)
        .bindBytes(*item.key)
        .bindBytes(item.sealed)
        .bind(item.reference);
}

} // namespace

ItemStore::ItemStore(PrivateFolder folder)
    : folder_(folder), database_(folder), custody_(folder), process_(::getpid()) {}

bool ItemStore::isUsable(const PrivateFolder& folder) const {
    return folder_.path() == folder.path() && database_.isInPlace(folder);
}

ItemStore& ItemStore::ofUser(bool mayCreate) {
    static std::unique_ptr<ItemStore> store;
    // A connection must not be used, not even closed, in a child of the process that opened it.
    if (store && store->process_ != ::getpid())
        static_cast<void>(store.release());
    const PrivateFolder folder(PrivateFolder::standardPath());
    if (store && store->isUsable(folder))
        return *store;
    store.reset();
    if (mayCreate)
        folder.create();
    else if (!Database::exists(folder))
        throw Failure{errSecItemNotFound};
    store.reset(new ItemStore(folder));
    return *store;
}

void ItemStore::add(const NewItem& item) {
    static const std::string insertion =
        "INSERT INTO items (service, account, access_group, label, generic, accessible, "
        "synchronizable, created, modified, sealing_key, sealed, reference, revision) SELECT ?1, "
        "?2, "
        "?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, " +
        std::string(nextRevision) +
        " WHERE NOT ?13 OR NOT EXISTS (SELECT 1 FROM items WHERE service = ?1 AND account = ?2 AND "
        "access_group = ?3)";
    SecureItem row;
    row.reference = newReference();
    row.created = row.modified = microsecondsNow();
    give(row, item.attributes);
    const Data empty;
    seal(row, custody_.forSealing(), item.attributes.value ? *item.attributes.value : empty);
    Statement statement = database_.statement(insertion);
    bindItem(statement, row);
    statement.bind(item.isDuplicateOfEitherState).step();
    if (database_.changes() == 0)
        throw Failure{errSecDuplicateItem};
}

ItemStore::Opening ItemStore::open(const SecureItem& item) {
    if (!item.key)
        return {};
    const SealingKey* const key = custody_.find(*item.key);
    if (!key)
        return {{}, true};
    return {key->open(item.sealed, associatedData(item)), false};
}

std::vector<OpenedItem> ItemStore::find(const ItemQuery& query) {
    Statement statement =
        database_.statement("SELECT " + columns() + " FROM items" + conditionsOf(query) +
                            " ORDER BY service, account, access_group, revision DESC");
    bindConditions(statement, query);
    std::vector<OpenedItem> found;
    bool lacksKey = false;
    while (found.size() < query.limit && statement.step()) {
        SecureItem item = rowOf(statement);
        Opening opening = open(item);
        lacksKey = lacksKey || opening.lacksKey;
        if (opening.value)
            found.push_back({std::move(item), std::move(*opening.value)});
    }
    if (found.empty())
        throw Failure{lacksKey ? errSecInteractionNotAllowed : errSecItemNotFound};
    return found;
}

bool ItemStore::change(SecureItem item, const ItemAttributes& changes) {
    static const std::string alteration =
        "UPDATE items SET service = ?1, account = ?2, access_group = ?3, label = ?4, generic = ?5, "
        "accessible = ?6, synchronizable = ?7, created = ?8, modified = ?9, sealing_key = ?10, "
        "sealed = ?11, revision = " +
        std::string(nextRevision) + " WHERE reference = ?12";
    std::optional<Secret> kept;
    if (!changes.value) {
        Opening opening = open(item);
        if (opening.lacksKey)
            throw Failure{errSecInteractionNotAllowed};
        if (!opening.value)
            return false;
        kept = std::move(opening.value);
    }
    give(item, changes);
    item.modified = microsecondsNow();
    seal(item, custody_.forSealing(), kept ? kept->bytes() : *changes.value);
    Statement statement = database_.statement(alteration);
    bindItem(statement, item);
    statement.step();
    return true;
}

void ItemStore::update(const ItemQuery& query, const ItemAttributes& changes) {
    // The keyring may take its time, for which no other process should have to wait.
    custody_.forSealing();
    Database::Transaction transaction(database_);
    Statement matching =
        database_.statement("SELECT " + columns() + " FROM items" + conditionsOf(query));
    bindConditions(matching, query);
    bool isChanged = false;
    for (SecureItem& row : rowsOf(std::move(matching)))
        isChanged = change(std::move(row), changes) || isChanged;
    if (!isChanged)
        throw Failure{errSecItemNotFound};
    transaction.commit();
}

void ItemStore::remove(const ItemQuery& query) {
    Statement statement = database_.statement("DELETE FROM items" + conditionsOf(query));
    bindConditions(statement, query);
    statement.step();
    if (database_.changes() == 0)
        throw Failure{errSecItemNotFound};
}

} // namespace zorvan::security
