#pragma once

#include <zorvan/platform/foundation/Data.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unordered_map>
#include <utility>

struct sqlite3;
struct sqlite3_stmt;

namespace zorvan::security {

class PrivateFolder;

/// A statement that is being run; starts afresh the next time it is asked for. What is bound must
/// live as long as it is run.
class Statement {
public:
    explicit Statement(sqlite3_stmt* statement) noexcept : statement_(statement) {}
    Statement(Statement&& other) noexcept : statement_(std::exchange(other.statement_, nullptr)) {}
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    ~Statement();

    /// Each binds the next parameter.
    Statement& bind(std::int64_t value);
    Statement& bindText(std::string_view text);
    Statement& bindBytes(std::span<const std::byte> bytes);
    Statement& bindNull();

    /// Whether there is another row. Throws `Failure`, with `errSecDuplicateItem` for a broken
    /// constraint.
    bool step();

    std::int64_t integer(int column) const;
    bool isText(int column) const;
    bool isBytes(int column) const;
    std::span<const std::byte> bytes(int column) const;

private:
    void check(int code) const;

    sqlite3_stmt* statement_;
    int nextParameter_ = 1;
};

/// The database of the items in a folder, for one thread at a time. Everything throws `Failure`.
class Database {
public:
    /// Makes the file when there is none.
    explicit Database(const PrivateFolder& folder);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    /// Whether a file is there. It has to be the user's alone.
    static bool exists(const PrivateFolder& folder);
    /// Whether the file that is open is still the one in the folder.
    bool isInPlace(const PrivateFolder& folder) const;

    Statement statement(const std::string& text);
    /// Rows changed by the last statement.
    int changes() const;

    /// Whether a transaction is open.
    bool isTransacting() const;

    /// Everything until `commit`, or nothing. One within another is a part of it.
    class Transaction {
    public:
        explicit Transaction(Database& database);
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

    void configure();
    void setJournal();
    void prepareSchema();
    void upgrade();
    bool holdsJust(const char* tableDefinition);
    void execute(const char* text);
    std::int64_t number(const char* query);

    std::unique_ptr<sqlite3, Close> connection_;
    std::unordered_map<std::string, std::unique_ptr<sqlite3_stmt, Finalize>> statements_;
    struct stat file_ {};
};

} // namespace zorvan::security
