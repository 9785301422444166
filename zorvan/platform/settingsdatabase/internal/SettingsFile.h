#pragma once

#include <zorvan/platform/foundation/internal/FileIdentity.h>
#include <zorvan/platform/privatestore/internal/Database.h>
#include <zorvan/platform/settingsdatabase/internal/SettingRows.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zorvan::internal {

/// The table of a domain on the disk.
///
/// A row is a key, its value, or no value when the key was removed, and an identifier. Every write
/// gives the row it concerns a new identifier above all others, so that "what has changed since" is
/// the end of the table. When a key has several rows, which two processes can bring about, the one
/// with the highest identifier counts and the others are waste.
///
/// Everything throws `DatabaseFailure`.
class SettingsFile : public privatestore::Database {
public:
    struct Row {
        std::int64_t id = 0;
        std::string_view key; // null for the marks that have no key
        SettingContent content;
    };
    using RowReader = std::function<void(Row&&)>;

    /// Opens the database at the path, makes it when there is none. The folder is made too. A
    /// database that is damaged is renamed (see `setAside`) and begun anew. A database that this
    /// process may not write opens for reading.
    ///
    /// Throws `Refusal` and `std::system_error`, too.
    static std::unique_ptr<SettingsFile> open(const std::string& path, std::string& setAside);

    /// Closes a file that turned out to be damaged, renames it with its log to "NAME.damaged",
    /// "NAME.damaged-2" and so on, and returns the new path. Empty when another process has done so
    /// already. Throws `Refusal` and `std::system_error`.
    static std::string setAside(std::unique_ptr<SettingsFile> damaged);

    bool isWritable() const noexcept { return writable_; }

    /// Whether the path still leads to the file that was opened.
    bool isInPlace() const noexcept;
    /// Whether the path leads to another file.
    bool isReplaced() const noexcept;
    /// Tells this file from others.
    const FileIdentity& identity() const noexcept { return identity_; }

    /// Rows above an identifier, in their order. Calls `startOver` first, and gives all rows, when
    /// rows below may have vanished without a trace since that identifier was the last. May be used
    /// within a transaction.
    void readAbove(std::int64_t id, const std::function<void()>& startOver,
                   const RowReader& reader);

    /// Writes the value under the key, or its removal. `previous` is the identifier of the row that
    /// the key has, 0 for none. The result is the new identifier.
    std::int64_t write(std::int64_t previous, std::string_view key, const PropertyList* value);

    /// Removes every row; the result is the identifier of the mark that tells others.
    std::int64_t removeAll();

    /// Removes rows by their identifiers, and rows of removed keys. Who has seen less than what
    /// there is now reads everything.
    void compact(const std::vector<std::int64_t>& waste);

    /// Shows those who watch the file that something was committed. The engine's own writing comes
    /// before a commit can be seen.
    void signal() const noexcept;

    /// Where the stamp of the content is; null when there is no way to tell.
    const void* stampAddress() const noexcept { return stamp_; }

private:
    SettingsFile(const privatestore::PrivateFolder& folder, const std::string& name, Access access);
    void prepare();
    void checkOrigin();

    std::string path_;
    bool writable_;
    FileIdentity identity_;
    const void* stamp_ = nullptr;
};

} // namespace zorvan::internal
