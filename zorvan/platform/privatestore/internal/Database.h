#pragma once

#include <zorvan/platform/privatestore/internal/PrivateFolder.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <unordered_map>
#include <utility>

struct sqlite3;
struct sqlite3_stmt;

namespace zorvan::privatestore {

/// What the database engine could not do; the text says why in its words.
struct DatabaseFailure : std::runtime_error {
    enum class Reason {
        duplicate, ///< a row would break a constraint
        noRoom,
        noMemory,
        tooLarge,
        inputOutput,
        notPermitted,
        notOpened,
        damage, ///< the bytes on the disk are no sound database
        newer,  ///< a newer version of the library has taken it over
        other,  ///< it is held by others for too long, or was opened by another process
    };

    DatabaseFailure(Reason reason, const std::string& text) : runtime_error(text), reason(reason) {}
    bool isOutOfReach() const noexcept {
        return reason == Reason::notPermitted || reason == Reason::notOpened;
    }

    Reason reason;
};

/// A statement that is being run; starts afresh the next time it is asked for. What is bound must
/// live as long as it is run. Everything throws `DatabaseFailure`.
class Statement {
public:
    explicit Statement(sqlite3_stmt* statement) noexcept : statement_(statement) {}
    Statement(Statement&& other) noexcept
        : statement_(std::exchange(other.statement_, nullptr)),
          nextParameter_(other.nextParameter_) {}
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    ~Statement();

    /// Each binds the next parameter.
    Statement& bind(std::int64_t value);
    Statement& bindReal(double value);
    Statement& bindText(std::string_view text);
    Statement& bindBytes(std::span<const std::byte> bytes);
    Statement& bindNull();

    /// Whether there is another row.
    bool step();

    enum class Kind { integer = 1, real, text, bytes, null }; // numbered as the engine does
    Kind kind(int column) const;
    std::int64_t integer(int column) const;
    double real(int column) const;
    /// Null for absence.
    std::string_view text(int column) const;
    std::span<const std::byte> bytes(int column) const;

private:
    void check(int code) const;

    sqlite3_stmt* statement_;
    int nextParameter_ = 1;
};

/// A database in a private folder, for one thread at a time. Its bytes may be anyone's: nothing in
/// it gets to run. Everything throws `DatabaseFailure`.
///
/// A connection does not bear being copied into a child process: there it holds no locks, but takes
/// itself to be one of the users of the files. So a child may ask `isOwn` and destroy its copy,
/// which then leaves everything as it is; whatever else it does fails.
class Database {
public:
    enum class Access { readWrite, readOnly, immutable };

    /// Makes an empty file when there is none. No row may be longer than so many bytes. The folder,
    /// which is open, should be locked meanwhile. Throws what `PrivateFolder` does, too.
    Database(const PrivateFolder& folder, const std::string& name, Access access,
             std::size_t longestRow);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    /// The endings of the files that may stand beside a database.
    static constexpr const char* companions[] = {"-wal", "-shm", "-journal"};

    /// Whether this process has opened it.
    bool isOwn() const noexcept;
    /// Whether that is the file which was opened.
    bool isOf(const struct stat& file) const noexcept;
    dev_t device() const noexcept { return file_.st_dev; }
    ino_t node() const noexcept { return file_.st_ino; }

    /// Every other writer is seen, and the log is begun that lets others read while one writes.
    void startLog();
    /// Whether closing the last connection moves what stands in the log into the database; it does
    /// not unless it is told to.
    void setCheckpointOnClose(bool checkpoints);
    /// Moves the log into the database and onto the disk. Waits for others that do or read.
    void checkpoint();
    /// Where the stamp can be read; null when the database is not in WAL mode. Call after a read.
    /// Lives as long as the connection.
    const void* stampAddress();

    void execute(const std::string& statements);
    /// Compiled once for each text.
    Statement statement(std::string_view text);
    /// The first number of the first row, or 0.
    std::int64_t integer(std::string_view query);
    /// Whether there is this table and nothing else.
    bool holdsJust(std::string_view tableDefinition);
    /// Throws when its user version is higher than that, by the hand of a newer version.
    void requireVersion(std::int64_t version);
    /// Rows changed by the last statement.
    int changes() const;
    /// The identifier of the last row that was put in.
    std::int64_t lastInserted() const;

    /// Whether a transaction is open.
    bool isTransacting() const noexcept;
    void begin() { execute("BEGIN IMMEDIATE"); }
    void commit() { execute("COMMIT"); }
    void rollBack() noexcept;

    /// Everything until `commit`, or nothing. One within another is a part of it.
    class Transaction {
    public:
        enum class Kind { reading, writing };
        explicit Transaction(Database& database, Kind kind = Kind::writing);
        Transaction(const Transaction&) = delete;
        Transaction& operator=(const Transaction&) = delete;
        ~Transaction();
        void commit();

    private:
        Database& database_;
        const bool isInner_;
        bool isOpen_ = true;
    };

private:
    struct Close {
        void operator()(sqlite3* connection) const noexcept;
    };
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const noexcept;
    };
    struct Hash : std::hash<std::string_view> {
        using is_transparent = void;
    };

    void open(const std::string& path, Access access);
    void configure(std::size_t longestRow);
    void requireOwn() const;
    void check(int code) const;

    std::unique_ptr<sqlite3, Close> connection_;
    std::unordered_map<std::string, std::unique_ptr<sqlite3_stmt, Finalize>, Hash, std::equal_to<>>
        statements_;
    struct stat file_ {};
    const pid_t process_;
};

} // namespace zorvan::privatestore
