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
/// **Files.** The folder is 0700, the database, its log and its shared memory are 0600. Nothing is
/// read or written when one of them is a symbolic link or belongs to another user, when the
/// database is from a newer version of this library, or is no database of settings; it is left as
/// it is, and the domain lives in memory. A damaged database is renamed to "NAME.damaged"
/// ("NAME.damaged-2", ...) and a new one is begun; when the damage shows only while the process
/// runs, with the values in memory.
///
/// A child that `fork` made, while no other thread used settings, and that runs no new program
/// reads what there was, and keeps what it writes in memory.
///
/// Safe from every thread.
class SettingsDatabase {
public:
    /// What went wrong, as one line: the path, ": ", and why.
    using ProblemHandler = std::function<void(const std::string& problem)>;
    /// A key and its new value; without one, the key is removed.
    using Change = std::pair<std::string, std::optional<PropertyList>>;
    using Value = std::shared_ptr<const PropertyList>;

    /// How many bytes the stored form of one value may have: 256 MiB. What is larger, or deeper
    /// than 512 arrays and dictionaries, is kept in memory only and not tried again.
    static constexpr std::size_t maximumValueSize = std::size_t{256} << 20;

    /// The database at a path; the same object for everyone in the process as long as one holds it.
    /// Never null: what cannot be opened lives in memory.
    static std::shared_ptr<SettingsDatabase> open(const std::string& path);

    /// The database of a domain in the user's `settingsFolder`.
    static std::shared_ptr<SettingsDatabase> ofDomain(std::string_view name);

    /// Has problems told to the handler instead of written to standard error; an empty one restores
    /// that. Each is told once as long as it lasts. The handler is called on the thread that met
    /// the problem and may use settings.
    static void setProblemHandler(ProblemHandler handler);

    ~SettingsDatabase();
    SettingsDatabase(const SettingsDatabase&) = delete;
    SettingsDatabase& operator=(const SettingsDatabase&) = delete;

    /// The value under the key, as it was at that moment; null when there is none.
    Value value(std::string_view key);

    /// Everything.
    PropertyList::Dictionary contents();

    /// Whether it is in the database. What would change nothing writes nothing.
    bool set(std::string_view key, PropertyList value);
    bool remove(std::string_view key);

    /// All of it, or after a failure none of it, is in the database.
    bool apply(std::vector<Change> changes);

    bool removeAll();

    /// Stores what is only in memory and brings the database to the disk, so that a power failure
    /// undoes nothing. Whether all of that succeeded.
    bool synchronize();

    /// What is wrong now; absent when all is well.
    std::optional<std::string> problem();

private:
    class Core;
    explicit SettingsDatabase(std::string path);

    const std::unique_ptr<Core> core_;
};

} // namespace zorvan
