#include <zorvan/platform/settingsdatabase/internal/SettingsFile.h>

#include <zorvan/platform/settingsdatabase/internal/SettingsPlace.h>

#include <sqlite3.h>

#include <fcntl.h>
#include <sys/stat.h>

namespace zorvan::internal {

namespace {

using Access = SQLiteConnection::Access;

// "Zset". What `file` shows of the database, and how it is told from those of others.
constexpr std::int64_t applicationID = 0x5A736574;
constexpr std::int64_t formatVersion = 1;

/// No row gets here by counting; above the last number that there is the engine gives any.
constexpr std::int64_t lastIdentifier = std::int64_t{1} << 62;

/// The row 0 has no key; its value is the number below which rows may have vanished.
constexpr char schema[] = "CREATE TABLE settings(id INTEGER PRIMARY KEY, key TEXT, value)";

bool isOutOfReach(const SQLiteFailure& failure) {
    const int primary = failure.code & 0xFF;
    return primary == SQLITE_CANTOPEN || primary == SQLITE_READONLY || primary == SQLITE_PERM;
}

} // namespace

SettingsFile::SettingsFile(const std::string& path, Access access)
    : path_(path), writable_(access == Access::readWrite), connection_(path, access) {
    // Until it is known that the file is ours to change.
    connection_.setCheckpointOnClose(false);
    struct stat status {};
    if (::lstat(path.c_str(), &status) == 0) {
        device_ = status.st_dev;
        inode_ = status.st_ino;
    }
    struct statx birth {};
    if (::statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW, STATX_BTIME, &birth) == 0 &&
        (birth.stx_mask & STATX_BTIME) != 0) {
        bornSeconds_ = birth.stx_btime.tv_sec;
        bornNanoseconds_ = birth.stx_btime.tv_nsec;
    }
    checkOrigin();
    if (writable_)
        prepare();
    read_.emplace(connection_, "SELECT id, key, value FROM settings WHERE id > ?1 ORDER BY id");
    readPurged_.emplace(connection_, "SELECT value FROM settings WHERE id = 0");
    if (writable_) {
        // Without one given, the engine takes the identifier above all others.
        insert_.emplace(connection_, "INSERT INTO settings(key, value) VALUES (?1, ?2)");
        update_.emplace(connection_, "UPDATE settings SET id = (SELECT max(id) FROM settings) + 1, "
                                     "value = ?2 WHERE id = ?3 AND key = ?1 RETURNING id");
        connection_.setCheckpointOnClose(true);
    }
    if (access != Access::immutable)
        stamp_ = connection_.stampAddress();
}

void SettingsFile::checkOrigin() {
    const std::int64_t application = connection_.integer("PRAGMA application_id");
    const std::int64_t version = connection_.integer("PRAGMA user_version");
    const std::int64_t objects = connection_.integer("SELECT count(*) FROM sqlite_schema");
    if (application == 0 && version == 0 && objects == 0 && writable_)
        return; // new
    if (application != applicationID)
        throw RefusedFile("it is no database of settings");
    if (version > formatVersion)
        throw RefusedFile("it was written by a newer version");
    SQLiteStatement query(connection_, "SELECT sql FROM sqlite_schema");
    if (version < 1 || objects != 1 || !query.step() || query.text(0) != schema)
        throw RefusedFile("it is no database of settings");
}

void SettingsFile::prepare() {
    // A killed process loses nothing in this mode. A power failure may undo the last commits, never
    // half of one, and never those before the last checkpoint.
    connection_.execute("PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL;"
                        "PRAGMA temp_store = MEMORY");
    if (connection_.integer("PRAGMA user_version") == formatVersion)
        return;
    begin();
    try {
        // Another process may have been faster.
        if (connection_.integer("PRAGMA user_version") == 0) {
            connection_.execute(schema);
            connection_.execute("INSERT INTO settings VALUES (0, NULL, 0)");
            connection_.execute(
                ("PRAGMA application_id = " + std::to_string(applicationID)).c_str());
            connection_.execute(("PRAGMA user_version = " + std::to_string(formatVersion)).c_str());
        }
        commit();
    } catch (...) {
        rollBack();
        throw;
    }
}

bool SettingsFile::isInPlace() const noexcept {
    struct stat status {};
    return ::lstat(path_.c_str(), &status) == 0 && status.st_dev == device_ &&
           status.st_ino == inode_;
}

bool SettingsFile::isReplaced() const noexcept {
    struct stat status {};
    return ::lstat(path_.c_str(), &status) == 0 && !isInPlace();
}

void SettingsFile::signal() const noexcept {
    ::utimensat(AT_FDCWD, path_.c_str(), nullptr, AT_SYMLINK_NOFOLLOW);
}

void SettingsFile::readAbove(std::int64_t id, const std::function<void()>& startOver,
                             const RowReader& reader) {
    // One transaction, so that both answers are of the same moment.
    const bool isWithin = isTransacting();
    if (!isWithin)
        connection_.execute("BEGIN");
    try {
        std::int64_t purged = 0;
        {
            const StatementUse use(*readPurged_);
            if (readPurged_->step())
                purged = readPurged_->integer(0);
        }
        const bool isTooOld = purged > id;
        if (isTooOld)
            startOver();
        {
            const StatementUse use(*read_);
            read_->bind(1, isTooOld ? std::int64_t{0} : id);
            while (read_->step()) {
                const std::int64_t row = read_->integer(0);
                if (row > lastIdentifier)
                    throw SQLiteFailure(SQLITE_CORRUPT, "a row has an impossible identifier");
                reader({row, read_->text(1), read_->setting(2)});
            }
        }
        if (!isWithin)
            commit();
    } catch (...) {
        if (!isWithin)
            rollBack();
        throw;
    }
}

std::int64_t SettingsFile::write(std::int64_t previous, std::string_view key,
                                 const PropertyList* value) {
    if (previous != 0) {
        const StatementUse use(*update_);
        update_->bind(1, key);
        update_->bindSetting(2, value);
        update_->bind(3, previous);
        if (update_->step()) {
            const std::int64_t id = update_->integer(0);
            update_->step(); // the commit happens with the last step
            return id;
        }
    }
    const StatementUse use(*insert_);
    insert_->bind(1, key);
    insert_->bindSetting(2, value);
    insert_->step();
    return sqlite3_last_insert_rowid(connection_.handle());
}

std::int64_t SettingsFile::removeAll() {
    begin();
    try {
        const std::int64_t mark = connection_.integer("SELECT max(id) + 1 FROM settings");
        const std::string number = std::to_string(mark);
        connection_.execute("DELETE FROM settings WHERE id > 0");
        connection_.execute(("INSERT INTO settings VALUES (" + number + ", NULL, NULL)").c_str());
        connection_.execute(("UPDATE settings SET value = " + number + " WHERE id = 0").c_str());
        commit();
        return mark;
    } catch (...) {
        rollBack();
        throw;
    }
}

void SettingsFile::compact(const std::vector<std::int64_t>& waste) {
    begin();
    try {
        SQLiteStatement remove(connection_, "DELETE FROM settings WHERE id = ?1");
        for (const std::int64_t id : waste) {
            const StatementUse use(remove);
            remove.bind(1, id);
            remove.step();
        }
        // The last row stays whatever it is, for it says how far the identifiers have come.
        connection_.execute("DELETE FROM settings WHERE id > 0 AND (key IS NULL OR value IS NULL) "
                            "AND id < (SELECT max(id) FROM settings)");
        connection_.execute(
            "UPDATE settings SET value = (SELECT max(id) FROM settings) WHERE id = 0");
        commit();
    } catch (...) {
        rollBack();
        throw;
    }
}

void SettingsFile::rollBack() noexcept {
    sqlite3_exec(connection_.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
}

std::string SettingsFile::setAside(std::unique_ptr<SettingsFile> damaged) {
    SettingsPlace place(damaged->path_);
    const bool isInPlace = damaged->isInPlace();
    damaged->connection_.setCheckpointOnClose(false);
    damaged.reset();
    return isInPlace ? place.setAside() : std::string();
}

std::unique_ptr<SettingsFile> SettingsFile::open(const std::string& path, std::string& setAside) {
    SettingsPlace place(path);
    const auto attempt = [&](Access access) {
        return std::unique_ptr<SettingsFile>(new SettingsFile(place.path(), access));
    };
    try {
        return attempt(Access::readWrite);
    } catch (const SQLiteFailure& failure) {
        if (failure.isDamage()) {
            setAside = place.setAside();
            return attempt(Access::readWrite);
        }
        if (!isOutOfReach(failure))
            throw;
    }
    try {
        return attempt(Access::readOnly);
    } catch (const SQLiteFailure& failure) {
        // Without a log there is nothing that another process could be about to change.
        if (!isOutOfReach(failure) || place.hasLog())
            throw;
        return attempt(Access::immutable);
    }
}

} // namespace zorvan::internal
