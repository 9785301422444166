#include <zorvan/platform/security/internal/ItemStore.h>

#include <zorvan/platform/security/internal/Failure.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <sodium.h>
#include <span>
#include <string>
#include <utility>

namespace zorvan::security {

namespace {

using privatestore::PrivateFolder;
using privatestore::Statement;

// The columns in the order in which `rowOf` reads them, those of texts last.
constexpr const char* selection =
    "SELECT reference, synchronizable, created, modified, revision, sealing_key, sealed, service, "
    "account, access_group, label, generic, accessible FROM items";
static_assert([] {
    std::string_view rest = selection;
    for (const TextColumn& column : textColumns) {
        const std::size_t place = rest.find(column.column);
        if (place == rest.npos)
            return false;
        rest.remove_prefix(place);
    }
    return true;
}());
constexpr int fixedColumns = 7;

constexpr std::int64_t lastRevision = std::numeric_limits<std::int64_t>::max() - 1;

constexpr const char* insertion =
    "INSERT INTO items (service, account, access_group, label, generic, accessible, "
    "synchronizable, created, modified, sealing_key, sealed, reference, revision) "
    "VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13)";
constexpr const char* valueOnly =
    "UPDATE items SET modified = ?9, sealing_key = ?10, sealed = ?11, revision = ?13 "
    "WHERE service = ?14 AND account = ?15 AND access_group = ?16 AND synchronizable = ?17";
constexpr const char* describing =
    "UPDATE items SET service = ?1, account = ?2, access_group = ?3, label = ?4, generic = ?5, "
    "accessible = ?6, synchronizable = ?7, modified = ?9, sealing_key = ?10, sealed = ?11, "
    "revision = ?13 "
    "WHERE service = ?14 AND account = ?15 AND access_group = ?16 AND synchronizable = ?17";

std::int64_t microsecondsNow() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(now).count();
}

/// The time of a change. Later than that of the change before it, whatever the clock says.
std::int64_t timeAfter(std::int64_t before) {
    const std::int64_t now = microsecondsNow();
    return before < now || before == std::numeric_limits<std::int64_t>::max() ? now : before + 1;
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

/// Whatever the columns hold: what is of another kind counts as left out, and damage shows when the
/// value is opened.
SecureItem rowOf(const Statement& row) {
    SecureItem item;
    item.reference = row.integer(0);
    item.isSynchronizable = row.integer(1) != 0;
    item.created = row.integer(2);
    item.modified = row.integer(3);
    item.revision = row.integer(4);
    if (const auto key = row.bytes(5); key.size() == sizeof(KeyIdentifier))
        std::ranges::copy(key, item.key.emplace().begin());
    const auto sealed = row.bytes(6);
    item.sealed.assign(sealed.begin(), sealed.end());
    for (std::size_t i = 0; i < textCount; ++i) {
        const int column = fixedColumns + static_cast<int>(i);
        if (row.kind(column) != (i == genericText ? Statement::Kind::bytes : Statement::Kind::text))
            continue;
        const auto bytes = row.bytes(column);
        item.texts[i].emplace(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    }
    return item;
}

/// Items in the order of what identifies them, the states of one by which was written last.
bool isReadBefore(const SecureItem& a, const SecureItem& b) {
    const auto difference =
        std::lexicographical_compare_three_way(a.texts.begin(), a.texts.begin() + identifyingTexts,
                                               b.texts.begin(), b.texts.begin() + identifyingTexts);
    return difference < 0 || (difference == 0 && a.revision > b.revision);
}

void give(SecureItem& item, const ItemAttributes& attributes) {
    for (std::size_t i = 0; i < textCount; ++i)
        if (attributes.texts[i])
            item.texts[i] = attributes.texts[i];
    if (attributes.isSynchronizable)
        item.isSynchronizable = *attributes.isSynchronizable;
}

/// A query for the items of one service and account, as far as they are given: among them all
/// states of an item.
ItemQuery relativesOf(const Texts& texts) {
    ItemQuery query;
    query.attributes.texts[serviceText] = texts[serviceText];
    query.attributes.texts[accountText] = texts[accountText];
    return query;
}

bool matches(const SecureItem& item, const ItemAttributes& attributes) {
    for (std::size_t i = 0; i < textCount; ++i)
        if (attributes.texts[i] && item.texts[i] != attributes.texts[i])
            return false;
    return !attributes.isSynchronizable || item.isSynchronizable == *attributes.isSynchronizable;
}

bool hasSameName(const Texts& a, const Texts& b) {
    return std::equal(a.begin(), a.begin() + identifyingTexts, b.begin());
}

bool isDescribedAlike(const SecureItem& a, const SecureItem& b) {
    return a.texts == b.texts && a.isSynchronizable == b.isSynchronizable;
}

/// What there is of an item: in which states, not synchronizable and synchronizable.
struct Standing {
    std::array<bool, 2> isThere{};
    std::int64_t lastRevision = 0;
};

Standing standing(const std::vector<SecureItem>& relatives, const Texts& name) {
    Standing standing;
    for (const SecureItem& item : relatives) {
        if (!hasSameName(item.texts, name))
            continue;
        standing.isThere[item.isSynchronizable] = true;
        standing.lastRevision =
            std::max(standing.lastRevision, std::min(item.revision, lastRevision));
    }
    return standing;
}

void seal(SecureItem& item, const SealingKey& key, std::span<const std::byte> value) {
    item.key = key.identifier();
    item.sealed = key.seal(value, associatedData(item));
}

void bindName(Statement& statement, const SecureItem& item) {
    for (std::size_t i = 0; i < identifyingTexts; ++i)
        bindText(statement, i, item.texts[i]);
    statement.bind(item.isSynchronizable);
}

void bindItem(Statement& statement, const SecureItem& item) {
    for (std::size_t i = 0; i < textCount; ++i)
        bindText(statement, i, item.texts[i]);
    statement.bind(item.isSynchronizable)
        .bind(item.created)
        .bind(item.modified)
        .bindBytes(*item.key)
        .bindBytes(item.sealed)
        .bind(item.reference)
        .bind(item.revision);
}

} // namespace

// Never closed at the end, since it may be used while the program ends.
constinit ItemStore* ItemStore::ofUser_ = nullptr;

ItemStore::ItemStore(PrivateFolder folder) : folder_(folder), custody_(folder) { openDatabase(); }

void ItemStore::openDatabase() {
    const auto lock = folder_.lock();
    database_.emplace(folder_);
    stampAddress_ = database_->stampAddress();
    read_ = {};
}

bool ItemStore::isUsable(const std::string& path) const {
    if (folder_.path() != path || !folder_.isInPlace())
        return false;
    const auto status = ItemDatabase::status(folder_);
    return status && (!database_ || database_->isOf(*status));
}

ItemStore& ItemStore::ofUser(bool mayCreate) {
    std::string path = standardFolder();
    const bool isOpen = ofUser_ && ofUser_->database_ && ofUser_->database_->isOwn();
    if (isOpen && (ofUser_->database_->isTransacting() || ofUser_->isUsable(path)))
        return *ofUser_;
    if (!isOpen && ofUser_ && ofUser_->isUsable(path)) {
        ofUser_->openDatabase();
        return *ofUser_;
    }
    delete std::exchange(ofUser_, nullptr);
    PrivateFolder folder(std::move(path), PrivateFolder::Policy::refuse);
    if (mayCreate)
        folder.create();
    else if (!folder.exists() || !ItemDatabase::status(folder))
        throw Failure{errSecItemNotFound};
    folder.open();
    ofUser_ = new ItemStore(std::move(folder));
    return *ofUser_;
}

void ItemStore::close() {
    if (ofUser_)
        ofUser_->database_.reset();
}

bool ItemStore::add(const NewItem& item) {
    // The keyring may take its time, for which no other process should have to wait.
    const SealingKey& key = custody_.forSealing();
    ItemDatabase::Change transaction(*database_);
    if (!insert(item, matching(relativesOf(item.attributes.texts)), key))
        return false;
    transaction.commit();
    return true;
}

void ItemStore::addOrUpdate(const NewItem& item) {
    const SealingKey& key = custody_.forSealing();
    ItemDatabase::Change transaction(*database_);
    std::vector<SecureItem> relatives = matching(relativesOf(item.given.texts));
    if (!insert(item, relatives, key))
        giveValue(relatives, item.given, key);
    transaction.commit();
}

void ItemStore::update(const ItemQuery& query, const ItemAttributes& changes) {
    const SealingKey& key = custody_.forSealing();
    ItemDatabase::Change transaction(*database_);
    bool isChanged = false;
    for (const SecureItem& row : matching(query)) {
        SecureItem changed = row;
        give(changed, changes);
        changed.revision =
            standing(matching(relativesOf(changed.texts)), changed.texts).lastRevision + 1;
        isChanged = change(row, changed, changes.value, key) || isChanged;
    }
    if (!isChanged)
        throw Failure{errSecItemNotFound};
    transaction.commit();
}

bool ItemStore::insert(const NewItem& item, const std::vector<SecureItem>& relatives,
                       const SealingKey& key) {
    SecureItem row;
    give(row, item.attributes);
    const Standing before = standing(relatives, row.texts);
    if (before.isThere[row.isSynchronizable] ||
        (item.isDuplicateOfEitherState && before.isThere[!row.isSynchronizable]))
        return false;
    row.reference = newReference();
    row.created = row.modified = microsecondsNow();
    row.revision = before.lastRevision + 1;
    const Data empty;
    seal(row, key, item.attributes.value ? *item.attributes.value : empty);
    Statement statement = database_->statement(insertion);
    bindItem(statement, row);
    statement.step();
    return true;
}

void ItemStore::giveValue(std::vector<SecureItem>& relatives, const ItemAttributes& attributes,
                          const SealingKey& key) {
    bool isChanged = false;
    for (SecureItem& row : relatives) {
        if (!matches(row, attributes))
            continue;
        SecureItem changed = row;
        changed.revision = standing(relatives, row.texts).lastRevision + 1;
        if (!change(row, changed, attributes.value, key))
            continue;
        row = std::move(changed);
        isChanged = true;
    }
    if (!isChanged)
        throw Failure{errSecItemNotFound};
}

ItemStore::Opening ItemStore::open(const SecureItem& item) {
    if (!item.key)
        return {};
    const SealingKey* const key = custody_.find(*item.key);
    if (!key)
        return {{}, true};
    return {key->open(item.sealed, associatedData(item)), false};
}

std::vector<SecureItem> ItemStore::matching(const ItemQuery& query) {
    Statement statement = database_->statement(selection + conditionsOf(query));
    bindConditions(statement, query);
    std::vector<SecureItem> rows;
    while (statement.step())
        rows.push_back(rowOf(statement));
    return rows;
}

std::vector<SecureItem> ItemStore::known(const ItemQuery& query) {
    const auto& service = query.attributes.texts[serviceText];
    const auto& account = query.attributes.texts[accountText];
    if (!service || !account || !stampAddress_ || database_->isTransacting())
        return matching(query);
    // Before the reading: what is written meanwhile makes it stale.
    read_.goOnAt(privatestore::readStamp(stampAddress_));
    auto rows = read_.of(*service, *account);
    if (!rows) {
        rows = matching(relativesOf(query.attributes.texts));
        read_.keep(*service, *account, *rows);
    }
    std::erase_if(*rows, [&](const SecureItem& row) {
        return !matches(row, query.attributes) ||
               row.reference != query.reference.value_or(row.reference);
    });
    return std::move(*rows);
}

std::vector<OpenedItem> ItemStore::find(const ItemQuery& query) {
    std::vector<SecureItem> rows = known(query);
    std::ranges::sort(rows, isReadBefore);
    std::vector<OpenedItem> found;
    bool lacksKey = false;
    for (SecureItem& item : rows) {
        if (found.size() == query.limit)
            break;
        Opening opening = open(item);
        lacksKey = lacksKey || opening.lacksKey;
        if (!opening.value)
            continue;
        item.sealed = {};
        found.push_back(
            {std::move(item), query.returnsData ? std::move(*opening.value) : Secret(0)});
    }
    if (found.empty())
        throw Failure{lacksKey ? errSecInteractionNotAllowed : errSecItemNotFound};
    return found;
}

bool ItemStore::change(const SecureItem& row, SecureItem& changed, const Data* value,
                       const SealingKey& newKey) {
    std::optional<Secret> kept;
    if (!value) {
        Opening opening = open(row);
        if (opening.lacksKey)
            throw Failure{errSecInteractionNotAllowed};
        if (!opening.value)
            return false;
        kept = std::move(opening.value);
    }
    changed.modified = timeAfter(row.modified);
    seal(changed, newKey, kept ? kept->bytes() : *value);
    // A row stays where it is, unless what identifies it is written.
    Statement statement =
        database_->statement(isDescribedAlike(row, changed) ? valueOnly : describing);
    bindItem(statement, changed);
    bindName(statement, row);
    statement.step();
    return database_->changes() > 0;
}

std::optional<Secret> ItemStore::valueOf(const ItemQuery& query) {
    try {
        return std::move(find(query).front().value);
    } catch (const Failure& failure) {
        if (failure.status == errSecItemNotFound)
            return std::nullopt;
        throw;
    }
}

void ItemStore::modify(const ItemQuery& query, ItemAttributes written, const ChangeValue& change) {
    custody_.forSealing(); // before the transaction, as it may take its time
    ItemDatabase::Change transaction(*database_);
    const std::optional<Secret> before = valueOf(query);
    std::optional<Data> after = before ? std::optional(before->bytes()) : std::nullopt;
    const detail::WipedAtEnd afterwards(after);
    if (!change(after))
        return;
    const bool isSame = after ? before && before->bytes() == *after : !before;
    written.value = after ? &*after : nullptr;
    if (!isSame && after)
        addOrUpdate(NewItem(written, !written.isSynchronizable));
    else if (!isSame)
        removeMatching(query); // unless the function has
    transaction.commit();      // also what the function wrote
}

/// Whether there were any.
bool ItemStore::removeMatching(const ItemQuery& query) {
    Statement statement = database_->statement("DELETE FROM items" + conditionsOf(query));
    bindConditions(statement, query);
    statement.step();
    return database_->changes() > 0;
}

void ItemStore::remove(const ItemQuery& query) {
    ItemDatabase::Change transaction(*database_);
    if (!removeMatching(query))
        throw Failure{errSecItemNotFound};
    transaction.commit();
}

} // namespace zorvan::security
