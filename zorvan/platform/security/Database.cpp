#include <zorvan/platform/security/internal/Database.h>

#include <zorvan/platform/security/internal/Failure.h>
#include <zorvan/platform/security/internal/PrivateFolder.h>

#include <algorithm>
#include <chrono>
#include <span>
#include <sqlite3.h>
#include <thread>

namespace zorvan::security {

namespace {

constexpr const char* databaseFile = "items.sqlite";
constexpr const char* companionFiles[] = {"items.sqlite-wal", "items.sqlite-shm",
                                          "items.sqlite-journal"};
constexpr int version = 2;
constexpr const char* versionQuery = "PRAGMA user_version";
constexpr std::chrono::milliseconds patience{5000}; // with other processes

/// The rows lie in the order of what identifies them, so that a write changes one page. By
/// reference, which is rare, all of them are read.
constexpr const char* schema =
    "CREATE TABLE items (reference INTEGER NOT NULL, service TEXT NOT NULL, "
    "account TEXT NOT NULL, access_group TEXT NOT NULL, label TEXT, generic BLOB, "
    "accessible TEXT NOT NULL, synchronizable INTEGER NOT NULL, created INTEGER NOT NULL, "
    "modified INTEGER NOT NULL, revision INTEGER NOT NULL, sealing_key BLOB NOT NULL, "
    "sealed BLOB NOT NULL, PRIMARY KEY (service, account, access_group, synchronizable)) "
    "WITHOUT ROWID";

/// Of version 1, which had the same columns.
constexpr const char* firstSchema =
    "CREATE TABLE items (reference INTEGER PRIMARY KEY, service TEXT NOT NULL, "
    "account TEXT NOT NULL, access_group TEXT NOT NULL, label TEXT, generic BLOB, "
    "accessible TEXT NOT NULL, synchronizable INTEGER NOT NULL, created INTEGER NOT NULL, "
    "modified INTEGER NOT NULL, revision INTEGER NOT NULL, sealing_key BLOB NOT NULL, "
    "sealed BLOB NOT NULL, UNIQUE (service, account, access_group, synchronizable))";

OSStatus statusOf(int code) {
    switch (code & 0xFF) {
    case SQLITE_CONSTRAINT:
        return errSecDuplicateItem;
    case SQLITE_FULL:
        return errSecDiskFull;
    case SQLITE_NOMEM:
        return errSecAllocate;
    case SQLITE_TOOBIG:
        return errSecDataTooLarge;
    case SQLITE_IOERR:
        return errSecIO;
    case SQLITE_PERM:
    case SQLITE_READONLY:
        return errSecAuthFailed;
    default: // busy for too long, damaged, no database, not to be opened
        return errSecNotAvailable;
    }
}

void check(int code) {
    if (code != SQLITE_OK)
        throw Failure{statusOf(code)};
}

/// Bound to a null pointer, empty bytes would become NULL.
const void* pointerOf(std::span<const std::byte> bytes) {
    return bytes.empty() ? static_cast<const void*>("") : bytes.data();
}

} // namespace

Statement::~Statement() {
    if (!statement_)
        return;
    sqlite3_reset(statement_);
    sqlite3_clear_bindings(statement_);
}

void Statement::check(int code) const { security::check(code); }

Statement& Statement::bind(std::int64_t value) {
    check(sqlite3_bind_int64(statement_, nextParameter_++, value));
    return *this;
}

Statement& Statement::bindText(std::string_view text) {
    check(sqlite3_bind_text64(statement_, nextParameter_++, text.empty() ? "" : text.data(),
                              text.size(), SQLITE_STATIC, SQLITE_UTF8));
    return *this;
}

Statement& Statement::bindBytes(std::span<const std::byte> bytes) {
    check(sqlite3_bind_blob64(statement_, nextParameter_++, pointerOf(bytes), bytes.size(),
                              SQLITE_STATIC));
    return *this;
}

Statement& Statement::bindNull() {
    ++nextParameter_;
    return *this;
}

bool Statement::step() {
    const int code = sqlite3_step(statement_);
    if (code != SQLITE_ROW && code != SQLITE_DONE)
        throw Failure{statusOf(code)};
    return code == SQLITE_ROW;
}

std::int64_t Statement::integer(int column) const {
    return sqlite3_column_int64(statement_, column);
}

bool Statement::isText(int column) const {
    return sqlite3_column_type(statement_, column) == SQLITE_TEXT;
}

bool Statement::isBytes(int column) const {
    return sqlite3_column_type(statement_, column) == SQLITE_BLOB;
}

std::span<const std::byte> Statement::bytes(int column) const {
    const void* const bytes = sqlite3_column_blob(statement_, column);
    const int size = sqlite3_column_bytes(statement_, column);
    if (!bytes)
        return {};
    return {static_cast<const std::byte*>(bytes), static_cast<std::size_t>(size)};
}

void Database::Close::operator()(sqlite3* connection) const noexcept { sqlite3_close(connection); }

void Database::Finalize::operator()(sqlite3_stmt* statement) const noexcept {
    sqlite3_finalize(statement);
}

Database::Database(const PrivateFolder& folder) {
    folder.createFile(databaseFile);
    for (const char* name : companionFiles)
        folder.statusOfFile(name);
    sqlite3* connection = nullptr;
    const int code = sqlite3_open_v2(
        folder.path(databaseFile).c_str(), &connection,
        SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOFOLLOW | SQLITE_OPEN_NOMUTEX, nullptr);
    connection_.reset(connection);
    check(code);
    const auto status = folder.statusOfFile(databaseFile);
    if (!status)
        throw Failure{errSecIO};
    file_ = *status;
    configure();
    prepareSchema();
}

Database::~Database() = default;

bool Database::exists(const PrivateFolder& folder) {
    return folder.exists() && folder.statusOfFile(databaseFile);
}

bool Database::isInPlace(const PrivateFolder& folder) const {
    const auto now = folder.statusOfFile(databaseFile);
    return now && now->st_ino == file_.st_ino && now->st_dev == file_.st_dev;
}

void Database::execute(const char* text) {
    check(sqlite3_exec(connection_.get(), text, nullptr, nullptr, nullptr));
}

/// The file may have been written by anyone who could: nothing that it says is trusted to be
/// harmless.
void Database::configure() {
    sqlite3* const connection = connection_.get();
    sqlite3_busy_timeout(connection, static_cast<int>(patience.count()));
    sqlite3_db_config(connection, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
    // It is closed while the process forks, which should not take longer for it.
    sqlite3_db_config(connection, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    sqlite3_limit(connection, SQLITE_LIMIT_LENGTH, 32 << 20);
    setJournal();
    // In this mode a commit is on the disk when it returns.
    execute("PRAGMA synchronous=FULL");
    execute("PRAGMA secure_delete=FAST");
    execute("PRAGMA temp_store=MEMORY");
    execute("PRAGMA cell_size_check=ON");
}

/// While several processes open a new database, this one may be told that it is busy at once.
void Database::setJournal() {
    const auto end = std::chrono::steady_clock::now() + patience;
    for (;;) {
        const int code =
            sqlite3_exec(connection_.get(), "PRAGMA journal_mode=WAL", nullptr, nullptr, nullptr);
        if ((code & 0xFF) != SQLITE_BUSY || std::chrono::steady_clock::now() > end) {
            check(code);
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

std::int64_t Database::number(const char* query) {
    Statement result = statement(query);
    return result.step() ? result.integer(0) : 0;
}

bool Database::holdsJust(const char* tableDefinition) {
    Statement tables = statement("SELECT sql FROM sqlite_schema WHERE sql IS NOT NULL");
    const std::string_view expected = tableDefinition;
    return tables.step() &&
           std::ranges::equal(tables.bytes(0), std::as_bytes(std::span(expected))) &&
           !tables.step();
}

void Database::prepareSchema() {
    if (const auto found = number(versionQuery); found == 0 || found == 1) {
        Transaction transaction(*this);
        upgrade();
        transaction.commit();
    }
    if (number(versionQuery) != version || !holdsJust(schema))
        throw Failure{errSecNotAvailable};
}

/// Within a transaction: another process may have been faster.
void Database::upgrade() {
    const std::int64_t found = number(versionQuery);
    if (found == 0 && number("SELECT count(*) FROM sqlite_schema") == 0) {
        execute(schema);
    } else if (found == 1 && holdsJust(firstSchema)) {
        execute("ALTER TABLE items RENAME TO first_items");
        execute(schema);
        execute("INSERT INTO items SELECT * FROM first_items");
        execute("DROP TABLE first_items");
    } else {
        return;
    }
    execute(("PRAGMA user_version=" + std::to_string(version)).c_str());
}

Statement Database::statement(const std::string& text) {
    auto& known = statements_[text];
    if (!known) {
        sqlite3_stmt* made = nullptr;
        check(sqlite3_prepare_v3(connection_.get(), text.c_str(), static_cast<int>(text.size()) + 1,
                                 SQLITE_PREPARE_PERSISTENT, &made, nullptr));
        known.reset(made);
    }
    return Statement(known.get());
}

int Database::changes() const { return sqlite3_changes(connection_.get()); }

bool Database::isTransacting() const { return sqlite3_get_autocommit(connection_.get()) == 0; }

Database::Transaction::Transaction(Database& database)
    : database_(database), isInner_(database.isTransacting()) {
    database_.statement(isInner_ ? "SAVEPOINT inner_part" : "BEGIN IMMEDIATE").step();
}

Database::Transaction::~Transaction() {
    if (isOpen_)
        sqlite3_exec(database_.connection_.get(),
                     isInner_ ? "ROLLBACK TO inner_part; RELEASE inner_part" : "ROLLBACK", nullptr,
                     nullptr, nullptr);
}

void Database::Transaction::commit() {
    database_.statement(isInner_ ? "RELEASE inner_part" : "COMMIT").step();
    isOpen_ = false;
}

} // namespace zorvan::security
