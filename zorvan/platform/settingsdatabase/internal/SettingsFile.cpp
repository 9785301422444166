#include <zorvan/platform/settingsdatabase/internal/SettingsFile.h>

#include <zorvan/platform/foundation/internal/placeItem.h>
#include <zorvan/platform/settingsdatabase/SettingsFolder.h>
#include <zorvan/platform/settingsdatabase/internal/StoredValue.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace zorvan::internal {

namespace {

using privatestore::DatabaseFailure;
using privatestore::PrivateFolder;
using privatestore::Refusal;
using privatestore::Statement;

// "Zset". What `file` shows of the database, and how it is told from those of others.
constexpr std::int64_t applicationID = 0x5A736574;
constexpr std::int64_t formatVersion = 1;

/// A key and its value, each as long as may be, and what the engine adds.
constexpr std::size_t longestRow = 2 * maximumStoredSize + 1024;

/// No row gets here by counting; above the last number that there is the engine gives any.
constexpr std::int64_t lastIdentifier = std::int64_t{1} << 62;

/// The row 0 has no key; its value is the number below which rows may have vanished.
constexpr char schema[] = "CREATE TABLE settings(id INTEGER PRIMARY KEY, key TEXT, value)";

constexpr char versionQuery[] = "PRAGMA user_version";
constexpr char readPurged[] = "SELECT value FROM settings WHERE id = 0";
constexpr char readRows[] = "SELECT id, key, value FROM settings WHERE id > ?1 ORDER BY id";

// Without an identifier given, the engine takes the one above all others.
constexpr char insertion[] = "INSERT INTO settings(key, value) VALUES (?1, ?2)";
constexpr char replacement[] =
    "UPDATE settings SET id = (SELECT max(id) FROM settings) + 1, value = ?2 "
    "WHERE key = ?1 AND id = ?3 RETURNING id";

/// Binds the next parameter: integers, reals and texts as the engine's own, what it has not as
/// bytes by `encodeStored`, which are kept in `bytes`, null for a removal. Throws
/// `UnstorableValue`.
void bindSetting(Statement& statement, const PropertyList* value, Data& bytes) {
    if (!value) {
        statement.bindNull();
        return;
    }
    const auto* text = value->as<std::string>();
    const auto* number = value->as<NSNumber>();
    if (text && text->size() <= maximumStoredSize) {
        statement.bindText(*text);
    } else if (number && number->isInteger() && !number->isUnsigned()) {
        statement.bind(number->int64Value());
    } else if (number && number->isReal() && !std::isnan(number->doubleValue())) {
        statement.bindReal(number->doubleValue());
    } else {
        bytes = encodeStored(*value);
        statement.bindBytes(bytes);
    }
}

SettingContent settingIn(const Statement& row, int column) {
    switch (row.kind(column)) {
    case Statement::Kind::integer:
        return PropertyList(row.integer(column));
    case Statement::Kind::real:
        return PropertyList(row.real(column));
    case Statement::Kind::text:
        return PropertyList(row.text(column));
    case Statement::Kind::bytes: {
        const auto bytes = row.bytes(column);
        return EncodedSetting{Data(bytes.begin(), bytes.end())};
    }
    case Statement::Kind::null:
        break;
    }
    return std::monostate();
}

/// The folder of a database, made safe, and for this process alone while it lives.
struct Place {
    explicit Place(const std::string& path)
        : folder(folderOf(path), folderOf(path) == settingsFolder()
                                     ? PrivateFolder::Policy::close // it is for settings alone
                                     : PrivateFolder::Policy::closeFiles),
          name(path.substr(path.rfind('/') + 1)) {
        folder.create();
        folder.open();
        lock = folder.lock();
    }

    bool hasLog() const {
        const auto status = folder.statusOfAny(name + "-wal");
        return status && status->st_size > 0;
    }

    PrivateFolder folder;
    std::string name;
    FileDescriptor lock;
};

/// Renames the database and its log, and makes an empty one; the new path of the old.
std::string setAsideIn(const Place& place) {
    const std::string path = place.folder.path(place.name);
    std::string aside = path + ".damaged";
    for (int number = 2; const int error = placeItem(path, aside); ++number) {
        if (error != EEXIST || number > 9999)
            throw std::system_error(error, std::generic_category(), path);
        aside = path + ".damaged-" + std::to_string(number);
    }
    ::rename((path + "-wal").c_str(), (aside + "-wal").c_str());
    ::unlink((path + "-shm").c_str());
    place.folder.createFile(place.name);
    return aside;
}

} // namespace

SettingsFile::SettingsFile(const PrivateFolder& folder, const std::string& name, Access access)
    : Database(folder, name, access, longestRow), path_(folder.path(name)),
      writable_(access == Access::readWrite), identity_{device(), node(), 0} {
    if (const auto there = FileIdentity::at(path_))
        identity_.birth = there->birth;
    checkOrigin();
    if (writable_)
        prepare();
    for (const char* query : {readPurged, readRows}) // fails now for what is damaged
        statement(query);
    setCheckpointOnClose(writable_); // now that the file is ours to change
    if (access != Access::immutable)
        stamp_ = Database::stampAddress();
}

void SettingsFile::checkOrigin() {
    const std::int64_t application = integer("PRAGMA application_id");
    const std::int64_t version = integer(versionQuery);
    const std::int64_t objects = integer("SELECT count(*) FROM sqlite_schema");
    if (application == 0 && version == 0 && objects == 0 && writable_)
        return; // new
    if (application != applicationID)
        throw Refusal("it is no database of settings");
    if (version > formatVersion)
        throw Refusal("it was written by a newer version");
    if (version < 1 || objects != 1 || !holdsJust(schema))
        throw Refusal("it is no database of settings");
}

void SettingsFile::prepare() {
    // A killed process loses nothing in this mode. A power failure may undo the last commits, never
    // half of one, and never those before the last checkpoint.
    startLog();
    execute("PRAGMA synchronous = NORMAL");
    if (integer(versionQuery) == formatVersion)
        return;
    Transaction transaction(*this);
    // Another process may have been faster.
    if (integer(versionQuery) == 0) {
        execute(schema);
        execute("INSERT INTO settings VALUES (0, NULL, 0)");
        execute("PRAGMA application_id = " + std::to_string(applicationID));
        execute("PRAGMA user_version = " + std::to_string(formatVersion));
    }
    transaction.commit();
}

bool SettingsFile::isInPlace() const noexcept {
    struct stat status {};
    return ::lstat(path_.c_str(), &status) == 0 && isOf(status);
}

bool SettingsFile::isReplaced() const noexcept {
    struct stat status {};
    return ::lstat(path_.c_str(), &status) == 0 && !isOf(status);
}

void SettingsFile::signal() const noexcept {
    ::utimensat(AT_FDCWD, path_.c_str(), nullptr, AT_SYMLINK_NOFOLLOW);
}

void SettingsFile::readAbove(std::int64_t id, const std::function<void()>& startOver,
                             const RowReader& reader) {
    // One transaction, so that both answers are of the same moment.
    Transaction transaction(*this, Transaction::Kind::reading);
    requireVersion(formatVersion);
    const bool isTooOld = integer(readPurged) > id;
    if (isTooOld)
        startOver();
    {
        Statement rows = statement(readRows);
        rows.bind(isTooOld ? std::int64_t{0} : id);
        while (rows.step()) {
            const std::int64_t row = rows.integer(0);
            if (row > lastIdentifier)
                throw DatabaseFailure(DatabaseFailure::Reason::damage,
                                      "a row has an impossible identifier");
            reader({row, rows.text(1), settingIn(rows, 2)});
        }
    }
    transaction.commit();
}

std::int64_t SettingsFile::write(std::int64_t previous, std::string_view key,
                                 const PropertyList* value) {
    if (key.size() > maximumStoredSize)
        throw UnstorableValue("the key is larger than 256 MiB");
    Data bytes;
    if (previous != 0) {
        Statement update = statement(replacement);
        bindSetting(update.bindText(key), value, bytes);
        if (update.bind(previous).step()) {
            const std::int64_t id = update.integer(0);
            update.step(); // the commit happens with the last step
            return id;
        }
    }
    Statement insert = statement(insertion);
    bindSetting(insert.bindText(key), value, bytes);
    insert.step();
    return lastInserted();
}

std::int64_t SettingsFile::removeAll() {
    Transaction transaction(*this);
    const std::int64_t mark = integer("SELECT max(id) + 1 FROM settings");
    const std::string number = std::to_string(mark);
    execute("DELETE FROM settings WHERE id > 0");
    execute("INSERT INTO settings VALUES (" + number + ", NULL, NULL)");
    execute("UPDATE settings SET value = " + number + " WHERE id = 0");
    transaction.commit();
    return mark;
}

void SettingsFile::compact(const std::vector<std::int64_t>& waste) {
    Transaction transaction(*this);
    for (const std::int64_t id : waste)
        statement("DELETE FROM settings WHERE id = ?1").bind(id).step();
    // The last row stays whatever it is, for it says how far the identifiers have come.
    execute("DELETE FROM settings WHERE id > 0 AND (key IS NULL OR value IS NULL) "
            "AND id < (SELECT max(id) FROM settings)");
    execute("UPDATE settings SET value = (SELECT max(id) FROM settings) WHERE id = 0");
    transaction.commit();
}

std::string SettingsFile::setAside(std::unique_ptr<SettingsFile> damaged) {
    const Place place(damaged->path_);
    const bool isInPlace = damaged->isInPlace();
    damaged->setCheckpointOnClose(false);
    damaged.reset();
    return isInPlace ? setAsideIn(place) : std::string();
}

std::unique_ptr<SettingsFile> SettingsFile::open(const std::string& path, std::string& setAside) {
    const Place place(path);
    const auto attempt = [&](Access access) {
        return std::unique_ptr<SettingsFile>(new SettingsFile(place.folder, place.name, access));
    };
    try {
        return attempt(Access::readWrite);
    } catch (const DatabaseFailure& failure) {
        if (failure.reason == DatabaseFailure::Reason::damage) {
            setAside = setAsideIn(place);
            return attempt(Access::readWrite);
        }
        if (!failure.isOutOfReach())
            throw;
    }
    try {
        return attempt(Access::readOnly);
    } catch (const DatabaseFailure& failure) {
        // Without a log there is nothing that another process could be about to change.
        if (!failure.isOutOfReach() || place.hasLog())
            throw;
        return attempt(Access::immutable);
    }
}

} // namespace zorvan::internal
