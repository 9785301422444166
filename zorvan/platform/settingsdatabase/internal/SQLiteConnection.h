#pragma once

#include <zorvan/platform/settingsdatabase/internal/SettingRows.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace zorvan::internal {

/// What the database engine could not do: its extended code, and why in its words.
struct SQLiteFailure : std::runtime_error {
    SQLiteFailure(int code, const std::string& text) : runtime_error(text), code(code) {}
    /// The bytes on the disk are no sound database.
    bool isDamage() const noexcept;
    int code;
};

/// What the shared memory of a database in WAL mode says of its content: one number that grows with
/// every commit, and a checksum that changes with everything else. Two loads, no lock, no call.
struct WALStamp {
    std::uint32_t changes = 0;
    std::uint64_t checksum = 0;
    friend bool operator==(const WALStamp&, const WALStamp&) = default;
};

/// One connection, for one thread at a time. Everything throws `SQLiteFailure`.
class SQLiteConnection {
public:
    enum class Access { readWrite, readOnly, immutable };

    /// The path must hold no symbolic link.
    SQLiteConnection(const std::string& path, Access access);
    ~SQLiteConnection();
    SQLiteConnection(const SQLiteConnection&) = delete;
    SQLiteConnection& operator=(const SQLiteConnection&) = delete;

    void execute(const char* statements);
    std::int64_t integer(const char* query);

    /// Whether closing the last connection moves what stands in the log into the database.
    void setCheckpointOnClose(bool checkpoints);

    /// Moves the log into the database and onto the disk. Waits for others that do or read.
    void checkpoint();

    bool isTransacting() const noexcept;

    /// Where the stamp can be read; null when the database is not in WAL mode. Call after a read.
    /// Lives as long as the connection.
    const void* stampAddress();

    sqlite3* handle() const noexcept { return handle_; }
    [[noreturn]] void fail(int code) const;

private:
    sqlite3* handle_ = nullptr;
};

WALStamp readStamp(const void* address) noexcept;

/// A compiled statement.
class SQLiteStatement {
public:
    SQLiteStatement(SQLiteConnection& connection, const char* text);
    ~SQLiteStatement();
    SQLiteStatement(const SQLiteStatement&) = delete;
    SQLiteStatement& operator=(const SQLiteStatement&) = delete;

    // What is bound must live until the statement is reset.
    void bind(int index, std::int64_t value);
    void bind(int index, std::string_view text);
    /// A setting: integers, reals and texts as the engine's own, what it has not as a blob by
    /// `encodeStored`; null for absence. Throws `UnstorableValue`.
    void bindSetting(int index, const PropertyList* value);

    /// Whether there is a row.
    bool step();
    void reset() noexcept;

    std::int64_t integer(int column) const;
    /// Null for absence.
    std::string_view text(int column) const;
    /// A removal for a null.
    SettingContent setting(int column) const;

private:
    SQLiteConnection& connection_;
    sqlite3_stmt* statement_ = nullptr;
    Data bound_;
};

/// Resets the statement at the end of a scope, whatever happens in it.
class StatementUse {
public:
    explicit StatementUse(SQLiteStatement& statement) : statement_(statement) {}
    ~StatementUse() { statement_.reset(); }
    StatementUse(const StatementUse&) = delete;
    StatementUse& operator=(const StatementUse&) = delete;

private:
    SQLiteStatement& statement_;
};

} // namespace zorvan::internal
