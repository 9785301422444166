#include <zorvan/platform/security/internal/ItemDatabase.h>

#include <zorvan/platform/foundation/internal/desktopFolders.h>
#include <zorvan/platform/security/internal/Failure.h>

namespace zorvan::security {

namespace {

constexpr const char* databaseFile = "items.sqlite";
constexpr std::size_t longestRow = 32 << 20;
constexpr int version = 2;
constexpr const char* versionQuery = "PRAGMA user_version";

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

} // namespace

std::string standardFolder() {
    const std::optional<std::string> folder = internal::dataFolder();
    if (!folder)
        throw Failure{errSecNotAvailable};
    return *folder + "/zorvan/secure-items";
}

/// The log stays where it is on closing, which happens while the process forks and should not take
/// long.
ItemDatabase::ItemDatabase(const privatestore::PrivateFolder& folder)
    : Database(folder, databaseFile, Access::readWrite, longestRow) {
    startLog();
    // In this mode a commit is on the disk when it returns.
    execute("PRAGMA synchronous = FULL; PRAGMA secure_delete = FAST");
    prepareSchema();
}

ItemDatabase::Change::Change(ItemDatabase& database) : Transaction(database) {
    database.requireVersion(version);
}

std::optional<struct stat> ItemDatabase::status(const privatestore::PrivateFolder& folder) {
    return folder.statusOfFile(databaseFile);
}

void ItemDatabase::prepareSchema() {
    if (const auto found = integer(versionQuery); found == 0 || found == 1) {
        Transaction transaction(*this);
        upgrade();
        transaction.commit();
    }
    if (integer(versionQuery) != version || !holdsJust(schema))
        throw Failure{errSecNotAvailable};
}

/// Within a transaction: another process may have been faster.
void ItemDatabase::upgrade() {
    const std::int64_t found = integer(versionQuery);
    if (found == 0 && integer("SELECT count(*) FROM sqlite_schema") == 0) {
        execute(schema);
    } else if (found == 1 && holdsJust(firstSchema)) {
        execute("ALTER TABLE items RENAME TO first_items");
        execute(schema);
        execute("INSERT INTO items SELECT * FROM first_items");
        execute("DROP TABLE first_items");
    } else {
        return;
    }
    execute("PRAGMA user_version = " + std::to_string(version));
}

} // namespace zorvan::security
