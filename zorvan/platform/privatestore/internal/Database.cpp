#include <zorvan/platform/privatestore/internal/Database.h>

#include <zorvan/platform/foundation/internal/percentEscapes.h>
#include <zorvan/platform/privatestore/internal/patience.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <sqlite3.h>
#include <system_error>
#include <unistd.h>

namespace zorvan::privatestore {

namespace {

constexpr int shownSize = 1 << 15; // of the first piece of the shared memory

int primary(int code) { return code & 0xFF; }

DatabaseFailure::Reason reasonOf(int code) {
    using Reason = DatabaseFailure::Reason;
    static constexpr std::pair<int, Reason> reasons[] = {
        {SQLITE_CONSTRAINT, Reason::duplicate},  {SQLITE_FULL, Reason::noRoom},
        {SQLITE_NOMEM, Reason::noMemory},        {SQLITE_TOOBIG, Reason::tooLarge},
        {SQLITE_IOERR, Reason::inputOutput},     {SQLITE_PERM, Reason::notPermitted},
        {SQLITE_READONLY, Reason::notPermitted}, {SQLITE_CANTOPEN, Reason::notOpened},
        {SQLITE_CORRUPT, Reason::damage},        {SQLITE_NOTADB, Reason::damage},
    };
    const auto* found = std::ranges::find(reasons, primary(code), &std::pair<int, Reason>::first);
    return found == std::end(reasons) ? Reason::other : found->second;
}

/// Whether the last that went wrong with a file was that the disk did not give what it has.
bool couldNotBeRead(sqlite3* connection, int whichFile) {
    sqlite3_file* file = nullptr;
    sqlite3_file_control(connection, "main", whichFile, &file);
    int error = 0;
    if (file && file->pMethods)
        file->pMethods->xFileControl(file, SQLITE_FCNTL_LAST_ERRNO, &error);
    return error == EIO || error == ENXIO || error == ERANGE;
}

/// The engine takes bytes that cannot be read for damage.
bool isOfTheDisk(sqlite3* connection, int code) {
    return connection && primary(code) == SQLITE_CORRUPT &&
           (couldNotBeRead(connection, SQLITE_FCNTL_FILE_POINTER) ||
            couldNotBeRead(connection, SQLITE_FCNTL_JOURNAL_POINTER));
}

[[noreturn]] void fail(sqlite3* connection, int code) {
    if (isOfTheDisk(connection, code))
        throw DatabaseFailure(DatabaseFailure::Reason::inputOutput, sqlite3_errstr(SQLITE_IOERR));
    throw DatabaseFailure(reasonOf(code),
                          connection ? sqlite3_errmsg(connection) : sqlite3_errstr(code));
}

std::string immutable(const std::string& path) {
    const auto isPlain = [](char c) { return c != '%' && c != '?' && c != '#'; };
    return "file:" + zorvan::internal::percentEscaped(path, isPlain) + "?immutable=1";
}

/// Bound to a null pointer, what is empty would become NULL.
const char* pointerOf(const void* bytes) { return bytes ? static_cast<const char*>(bytes) : ""; }

} // namespace

Statement::~Statement() {
    if (!statement_)
        return;
    sqlite3_reset(statement_);
    sqlite3_clear_bindings(statement_);
}

void Statement::check(int code) const {
    if (code != SQLITE_OK)
        fail(sqlite3_db_handle(statement_), code);
}

Statement& Statement::bind(std::int64_t value) {
    check(sqlite3_bind_int64(statement_, nextParameter_++, value));
    return *this;
}

Statement& Statement::bindReal(double value) {
    check(sqlite3_bind_double(statement_, nextParameter_++, value));
    return *this;
}

Statement& Statement::bindText(std::string_view text) {
    check(sqlite3_bind_text64(statement_, nextParameter_++, pointerOf(text.data()), text.size(),
                              SQLITE_STATIC, SQLITE_UTF8));
    return *this;
}

Statement& Statement::bindBytes(std::span<const std::byte> bytes) {
    check(sqlite3_bind_blob64(statement_, nextParameter_++, pointerOf(bytes.data()), bytes.size(),
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
        fail(sqlite3_db_handle(statement_), code);
    return code == SQLITE_ROW;
}

Statement::Kind Statement::kind(int column) const {
    return static_cast<Kind>(sqlite3_column_type(statement_, column));
}

std::int64_t Statement::integer(int column) const {
    return sqlite3_column_int64(statement_, column);
}

double Statement::real(int column) const { return sqlite3_column_double(statement_, column); }

std::string_view Statement::text(int column) const {
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
    return {bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
}

std::span<const std::byte> Statement::bytes(int column) const {
    const auto* bytes = static_cast<const std::byte*>(sqlite3_column_blob(statement_, column));
    return {bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
}

void Database::Close::operator()(sqlite3* connection) const noexcept { sqlite3_close(connection); }

void Database::Finalize::operator()(sqlite3_stmt* statement) const noexcept {
    sqlite3_finalize(statement);
}

Database::Database(const PrivateFolder& folder, const std::string& name, Access access,
                   std::size_t longestRow)
    : process_(::getpid()) {
    for (const char* ending : companions)
        folder.statusOfFile(name + ending);
    folder.createFile(name);
    open(folder.path(name), access);
    const auto status = folder.statusOfFile(name);
    if (!status)
        throw std::system_error(ENOENT, std::generic_category(), name);
    file_ = *status;
    configure(longestRow);
}

Database::~Database() {
    if (isOwn())
        return;
    for (auto& [text, statement] : statements_)
        (void)statement.release();
    (void)connection_.release();
}

void Database::open(const std::string& path, Access access) {
    const int mode = access == Access::readWrite ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY;
    const bool isImmutable = access == Access::immutable;
    sqlite3* connection = nullptr;
    const int code = sqlite3_open_v2((isImmutable ? immutable(path) : path).c_str(), &connection,
                                     mode | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_NOFOLLOW |
                                         (isImmutable ? SQLITE_OPEN_URI : 0),
                                     nullptr);
    connection_.reset(connection);
    if (code != SQLITE_OK)
        fail(connection, code);
}

/// The file may have been written by anyone who could: nothing that it says is trusted to be
/// harmless.
void Database::configure(std::size_t longestRow) {
    sqlite3* const connection = connection_.get();
    sqlite3_extended_result_codes(connection, 1);
    sqlite3_busy_timeout(connection, static_cast<int>(patience.count()));
    for (const int option : {SQLITE_DBCONFIG_ENABLE_TRIGGER, SQLITE_DBCONFIG_ENABLE_VIEW,
                             SQLITE_DBCONFIG_TRUSTED_SCHEMA})
        sqlite3_db_config(connection, option, 0, nullptr);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    setCheckpointOnClose(false);
    constexpr std::size_t most = std::numeric_limits<int>::max();
    sqlite3_limit(connection, SQLITE_LIMIT_LENGTH, static_cast<int>(std::min(longestRow, most)));
    execute("PRAGMA cell_size_check = ON; PRAGMA temp_store = MEMORY");
}

bool Database::isOwn() const noexcept { return process_ == ::getpid(); }

void Database::requireOwn() const {
    if (!isOwn())
        throw DatabaseFailure(DatabaseFailure::Reason::other,
                              "this process is a fork of the one that opened it");
}

bool Database::isOf(const struct stat& file) const noexcept {
    return file.st_ino == file_.st_ino && file.st_dev == file_.st_dev;
}

void Database::check(int code) const {
    if (code != SQLITE_OK)
        fail(connection_.get(), code);
}

void Database::startLog() {
    // While several processes open a new database, this one may be told at once that it is busy.
    int code = SQLITE_OK;
    waitFor([&] {
        code =
            sqlite3_exec(connection_.get(), "PRAGMA journal_mode = WAL", nullptr, nullptr, nullptr);
        return primary(code) != SQLITE_BUSY;
    });
    check(code);
}

void Database::setCheckpointOnClose(bool checkpoints) {
    sqlite3_db_config(connection_.get(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, checkpoints ? 0 : 1,
                      nullptr);
}

void Database::checkpoint() {
    requireOwn();
    // For another checkpoint the engine does not wait by itself.
    int code = SQLITE_OK;
    waitFor([&] {
        code = sqlite3_wal_checkpoint_v2(connection_.get(), nullptr, SQLITE_CHECKPOINT_FULL,
                                         nullptr, nullptr);
        return primary(code) != SQLITE_BUSY;
    });
    check(code);
}

const void* Database::stampAddress() {
    // The engine's own mapping is asked for: to open its file beside it would, on closing, drop the
    // locks that the engine holds on it.
    sqlite3_file* file = nullptr;
    sqlite3_file_control(connection_.get(), "main", SQLITE_FCNTL_FILE_POINTER, &file);
    if (!file || !file->pMethods || file->pMethods->iVersion < 2)
        return nullptr;
    void volatile* memory = nullptr;
    const int code = file->pMethods->xShmMap(file, 0, shownSize, 0, &memory);
    if (code != SQLITE_OK && code != SQLITE_READONLY) // mapped, but not to be written
        return nullptr;
    return const_cast<const void*>(memory);
}

void Database::execute(const std::string& statements) {
    requireOwn();
    check(sqlite3_exec(connection_.get(), statements.c_str(), nullptr, nullptr, nullptr));
}

Statement Database::statement(std::string_view text) {
    requireOwn();
    if (const auto known = statements_.find(text); known != statements_.end() && known->second)
        return Statement(known->second.get());
    auto& made = statements_.try_emplace(std::string(text)).first->second;
    sqlite3_stmt* statement = nullptr;
    const int code =
        sqlite3_prepare_v3(connection_.get(), text.data(), static_cast<int>(text.size()),
                           SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
    made.reset(statement);
    check(code);
    return Statement(statement);
}

std::int64_t Database::integer(std::string_view query) {
    Statement result = statement(query);
    return result.step() ? result.integer(0) : 0;
}

bool Database::holdsJust(std::string_view tableDefinition) {
    // What has no text is the index that a table brings along.
    Statement tables = statement("SELECT sql FROM sqlite_schema WHERE sql IS NOT NULL");
    return tables.step() && tables.text(0) == tableDefinition && !tables.step();
}

void Database::requireVersion(std::int64_t version) {
    if (integer("PRAGMA user_version") > version)
        throw DatabaseFailure(DatabaseFailure::Reason::newer, "it was written by a newer version");
}

int Database::changes() const { return sqlite3_changes(connection_.get()); }

std::int64_t Database::lastInserted() const { return sqlite3_last_insert_rowid(connection_.get()); }

bool Database::isTransacting() const noexcept {
    return sqlite3_get_autocommit(connection_.get()) == 0;
}

void Database::rollBack() noexcept {
    if (isOwn())
        sqlite3_exec(connection_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
}

Database::Transaction::Transaction(Database& database, Kind kind)
    : database_(database), isInner_(database.isTransacting()) {
    const char* const beginning = kind == Kind::writing ? "BEGIN IMMEDIATE" : "BEGIN";
    database_.statement(isInner_ ? "SAVEPOINT inner_part" : beginning).step();
}

Database::Transaction::~Transaction() {
    if (isOpen_ && !isInner_)
        database_.rollBack();
    else if (isOpen_ && database_.isOwn())
        sqlite3_exec(database_.connection_.get(), "ROLLBACK TO inner_part; RELEASE inner_part",
                     nullptr, nullptr, nullptr);
}

void Database::Transaction::commit() {
    database_.statement(isInner_ ? "RELEASE inner_part" : "COMMIT").step();
    isOpen_ = false;
}

} // namespace zorvan::privatestore
