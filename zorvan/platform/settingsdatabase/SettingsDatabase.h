#pragma once

#include <zorvan/platform/foundation/PropertyList.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zorvan {

/// The settings of one domain: property-list values by key, kept in a database that several
/// processes may read and write at once.
///
/// Values are read from memory. A read notices in a few nanoseconds whether another process has
/// written since, and takes in what changed, and only that, before it answers.
///
/// **What a write promises.** When it returns true, the value is in the database: it survives the
/// end of this process, however it comes, and every process reads it from then on. After a power
/// failure the database is whole, but the last writes may be undone, in order, as far back as the
/// last `synchronize` that returned true, the last time a process closed the database, or some
/// thousand writes.
///
/// **When it cannot keep it.** With a full disk, a folder that cannot be written, or a database
/// held by another process for five seconds, a write returns false and the value is kept in memory:
/// this process reads it, others do not, and every later write and `synchronize` tries again to
/// store it. A write is never half done.
///
/// **Files.** The database, its log and its shared memory are 0600. Folders that are made are 0700,
/// and so becomes `settingsFolder()`; another folder that is there stays as it is, and must not be
/// writable for others. Nothing is read or written when one of them is a symbolic link, belongs to
/// another user or has a second name, when the database is from a newer version of this library, or
/// is no database of settings; it is left as it is, and the domain lives in memory. A damaged
/// database is renamed to "NAME.damaged"
/// ("NAME.damaged-2", ...) and a new one is begun; when the damage shows only while the process
/// runs, with the values in memory.
///
/// **Processes.** `fork` without a new program works: databases are closed while the process forks,
/// and opened again by whoever uses them next, parent and child each for themselves. Only a child
/// that is made within the function of `transact` keeps what it writes in memory. When the process
/// ends they are closed, and opened again for what still comes.
///
/// Safe from every thread.
class SettingsDatabase : public std::enable_shared_from_this<SettingsDatabase> {
public:
    /// What went wrong, as one line: the path, ": ", and why.
    using ProblemHandler = std::function<void(const std::string& problem)>;
    /// A key and its new value; without one, the key is removed.
    using Change = std::pair<std::string, std::optional<PropertyList>>;
    using Value = std::shared_ptr<const PropertyList>; ///< Never changes; null for none.

    /// How many bytes the stored form of one value may have: 256 MiB. What is larger, or deeper
    /// than 512 arrays and dictionaries, is kept in memory only and not tried again.
    static constexpr std::size_t maximumValueSize = std::size_t{256} << 20;

    /// The database at a path; the same object for everyone in the process as long as one holds it.
    /// Never null: what cannot be opened lives in memory.
    static std::shared_ptr<SettingsDatabase> open(const std::string& path);

    /// One that is nowhere but in memory, and of this object only.
    static std::shared_ptr<SettingsDatabase> inMemory();

    /// The database of a domain in the user's `settingsFolder`.
    static std::shared_ptr<SettingsDatabase> ofDomain(std::string_view name);

    /// Has problems told to the handler instead of `LibraryLog`; an empty one restores that. Each
    /// is told once as long as it lasts. The handler is called on the thread that met the problem
    /// and may use settings.
    static void setProblemHandler(ProblemHandler handler);

    /// Closes the database when nobody else in the process holds it.
    ~SettingsDatabase();
    SettingsDatabase(const SettingsDatabase&) = delete;
    SettingsDatabase& operator=(const SettingsDatabase&) = delete;

    /// The value under the key, as it was at that moment; null when there is none.
    Value value(std::string_view key);

    /// Everything.
    PropertyList::Dictionary contents();

    /// Whether it is in the database. What would change nothing writes nothing.
    /// @{
    bool set(std::string_view key, PropertyList value);
    bool remove(std::string_view key);
    /// @}

    /// All of it, or after a failure none of it, is in the database.
    bool apply(std::vector<Change> changes);

    /// As `apply` for every key.
    bool removeAll();

    /// What became of a transaction.
    enum class Outcome {
        stored,  ///< or there was nothing to change
        kept,    ///< in memory, where there is no database that could be written
        refused, ///< nothing was changed: the database is held by another process, or has no room
    };
    /// Has the function read and write this database in one transaction: all of what it writes is
    /// stored, or none of it, and nobody else writes in between. What it reads is what there is,
    /// with its own writes; other threads go on reading what was. When it throws, nothing is
    /// changed, and what it throws is thrown. It is called at most once, on this thread, and should
    /// be quick, since others wait for it. One within another is a part of it. Two databases must
    /// always be nested in the same order.
    Outcome transact(const std::function<void()>& function);

    /// What another process changed: a key, and its values then and now; null for none.
    struct Followed {
        std::string key; ///< Which one.
        /// Null for none.
        /// @{
        Value before, after;
        /// @}
    };
    /// Is told what changed.
    using Follower = std::function<void(const std::vector<Followed>&)>;
    /// Has the follower told, once each and in order, of what other processes change from now on,
    /// until the result is released; which may still be told then, on another thread. Of changes of
    /// one key that follow each other faster than they are read, the last one is told. What this
    /// process writes is not told.
    ///
    /// The follower is called on any thread and while the database is held: it must be quick, must
    /// not throw, and must not use settings.
    [[nodiscard]] std::shared_ptr<const void> follow(Follower follower);

    /// Stores what is only in memory and brings the database to the disk, so that a power failure
    /// undoes nothing. Whether all of that succeeded.
    bool synchronize();

    /// What is wrong now; absent when all is well.
    std::optional<std::string> problem();

private:
    class Core;
    explicit SettingsDatabase(std::string path);

    const std::shared_ptr<Core> core_;
};

} // namespace zorvan
