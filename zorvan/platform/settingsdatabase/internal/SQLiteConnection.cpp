#include <zorvan/platform/settingsdatabase/internal/SQLiteConnection.h>

#include <zorvan/platform/foundation/internal/percentEscapes.h>
#include <zorvan/platform/settingsdatabase/internal/StoredValue.h>

#include <sqlite3.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <span>
#include <thread>

namespace zorvan::internal {

namespace {

/// How long a write waits for another process that is writing.
constexpr int busyMilliseconds = 5000;

constexpr int shownSize = 1 << 15; // of the first piece of the shared memory

std::string uriOf(const std::string& path) {
    const auto isPlain = [](char c) { return c != '%' && c != '?' && c != '#'; };
    return "file:" + internal::percentEscaped(path, isPlain) + "?immutable=1";
}

std::span<const std::byte> blob(sqlite3_stmt* statement, int column) {
    const auto* bytes = static_cast<const std::byte*>(sqlite3_column_blob(statement, column));
    return {bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement, column))};
}

} // namespace

bool SQLiteFailure::isDamage() const noexcept {
    const int primary = code & 0xFF;
    return primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB;
}

SQLiteConnection::SQLiteConnection(const std::string& path, Access access) {
    int flags = SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_NOFOLLOW;
    flags |= access == Access::readWrite ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY;
    std::string name = path;
    if (access == Access::immutable) {
        flags |= SQLITE_OPEN_URI;
        name = uriOf(path);
    }
    const int code = sqlite3_open_v2(name.c_str(), &handle_, flags, nullptr);
    if (code != SQLITE_OK) {
        const SQLiteFailure failure(handle_ ? sqlite3_extended_errcode(handle_) : code,
                                    handle_ ? sqlite3_errmsg(handle_) : sqlite3_errstr(code));
        sqlite3_close(handle_);
        throw failure;
    }
    sqlite3_extended_result_codes(handle_, 1);
    sqlite3_busy_timeout(handle_, busyMilliseconds);
    // The file may come from anywhere: nothing in it gets to run.
    for (const int option : {SQLITE_DBCONFIG_ENABLE_TRIGGER, SQLITE_DBCONFIG_ENABLE_VIEW,
                             SQLITE_DBCONFIG_TRUSTED_SCHEMA})
        sqlite3_db_config(handle_, option, 0, nullptr);
    sqlite3_db_config(handle_, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
}

SQLiteConnection::~SQLiteConnection() { sqlite3_close_v2(handle_); }

void SQLiteConnection::fail(int code) const { throw SQLiteFailure(code, sqlite3_errmsg(handle_)); }

void SQLiteConnection::execute(const char* statements) {
    const int code = sqlite3_exec(handle_, statements, nullptr, nullptr, nullptr);
    if (code != SQLITE_OK)
        fail(code);
}

std::int64_t SQLiteConnection::integer(const char* query) {
    SQLiteStatement statement(*this, query);
    return statement.step() ? statement.integer(0) : 0;
}

void SQLiteConnection::setCheckpointOnClose(bool checkpoints) {
    sqlite3_db_config(handle_, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, checkpoints ? 0 : 1, nullptr);
}

void SQLiteConnection::checkpoint() {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::milliseconds(busyMilliseconds);
    for (;;) {
        const int code =
            sqlite3_wal_checkpoint_v2(handle_, nullptr, SQLITE_CHECKPOINT_FULL, nullptr, nullptr);
        if (code == SQLITE_OK)
            return;
        // For another checkpoint the engine does not wait by itself.
        if ((code & 0xFF) != SQLITE_BUSY || Clock::now() >= end)
            fail(code);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

bool SQLiteConnection::isTransacting() const noexcept {
    return sqlite3_get_autocommit(handle_) == 0;
}

const void* SQLiteConnection::stampAddress() {
    // The engine's own mapping is asked for: to open its file beside it would, on closing, drop the
    // locks that the engine holds on it.
    sqlite3_file* file = nullptr;
    sqlite3_file_control(handle_, "main", SQLITE_FCNTL_FILE_POINTER, &file);
    if (!file || !file->pMethods || file->pMethods->iVersion < 2)
        return nullptr;
    void volatile* memory = nullptr;
    const int code = file->pMethods->xShmMap(file, 0, shownSize, 0, &memory);
    if (code != SQLITE_OK && code != SQLITE_READONLY) // mapped, but not to be written
        return nullptr;
    return const_cast<const void*>(memory);
}

WALStamp readStamp(const void* address) noexcept {
    // The layout of the shared memory is part of the documented file format: the number of commits
    // is at byte 8, the checksum of the header at byte 40.
    auto* bytes = static_cast<std::byte*>(const_cast<void*>(address));
    std::atomic_ref<std::uint32_t> changes(*reinterpret_cast<std::uint32_t*>(bytes + 8));
    std::atomic_ref<std::uint64_t> checksum(*reinterpret_cast<std::uint64_t*>(bytes + 40));
    return {changes.load(std::memory_order_acquire), checksum.load(std::memory_order_acquire)};
}

SQLiteStatement::SQLiteStatement(SQLiteConnection& connection, const char* text)
    : connection_(connection) {
    const int code = sqlite3_prepare_v3(connection.handle(), text, -1, SQLITE_PREPARE_PERSISTENT,
                                        &statement_, nullptr);
    if (code != SQLITE_OK)
        connection.fail(code);
}

SQLiteStatement::~SQLiteStatement() { sqlite3_finalize(statement_); }

void SQLiteStatement::bind(int index, std::int64_t value) {
    sqlite3_bind_int64(statement_, index, value);
}

void SQLiteStatement::bind(int index, std::string_view text) {
    // A null pointer would stand for absence.
    const char* bytes = text.empty() ? "" : text.data();
    const int code =
        sqlite3_bind_text64(statement_, index, bytes, text.size(), SQLITE_STATIC, SQLITE_UTF8);
    if (code != SQLITE_OK)
        connection_.fail(code);
}

void SQLiteStatement::bindSetting(int index, const PropertyList* value) {
    if (!value) {
        sqlite3_bind_null(statement_, index);
        return;
    }
    const auto* text = value->as<std::string>();
    const auto* number = value->as<NSNumber>();
    if (text && text->size() <= maximumStoredSize) {
        bind(index, *text);
    } else if (number && number->isInteger() && !number->isUnsigned()) {
        bind(index, number->int64Value());
    } else if (number && number->isReal() && !std::isnan(number->doubleValue())) {
        sqlite3_bind_double(statement_, index, number->doubleValue());
    } else {
        bound_ = encodeStored(*value);
        const int code =
            sqlite3_bind_blob64(statement_, index, bound_.data(), bound_.size(), SQLITE_STATIC);
        if (code != SQLITE_OK)
            connection_.fail(code);
    }
}

bool SQLiteStatement::step() {
    const int code = sqlite3_step(statement_);
    if (code != SQLITE_ROW && code != SQLITE_DONE)
        connection_.fail(code);
    return code == SQLITE_ROW;
}

void SQLiteStatement::reset() noexcept {
    sqlite3_reset(statement_);
    sqlite3_clear_bindings(statement_);
    bound_ = {};
}

std::int64_t SQLiteStatement::integer(int column) const {
    return sqlite3_column_int64(statement_, column);
}

std::string_view SQLiteStatement::text(int column) const {
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
    return {bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
}

SettingContent SQLiteStatement::setting(int column) const {
    switch (sqlite3_column_type(statement_, column)) {
    case SQLITE_INTEGER:
        return PropertyList(integer(column));
    case SQLITE_FLOAT:
        return PropertyList(sqlite3_column_double(statement_, column));
    case SQLITE_TEXT:
        return PropertyList(text(column));
    case SQLITE_BLOB: {
        const auto bytes = blob(statement_, column);
        return EncodedSetting{Data(bytes.begin(), bytes.end())};
    }
    default:
        return std::monostate();
    }
}

} // namespace zorvan::internal
