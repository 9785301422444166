#include <zorvan/platform/settingsdatabase/SettingsDatabase.h>

#include <zorvan/platform/foundation/LibraryLog.h>
#include <zorvan/platform/settingsdatabase/SettingsFolder.h>
#include <zorvan/platform/settingsdatabase/internal/SettingsCore.h>
#include <zorvan/platform/settingsdatabase/internal/SettingsProcess.h>

#include <mutex>
#include <utility>

namespace zorvan {

using internal::OpenDatabases;

namespace {

/// A result, when what went wrong has been told.
template <class Core, class Result>
Result told(Core& core, Result result) {
    core.tell();
    return result;
}

} // namespace

SettingsDatabase::SettingsDatabase(std::string path)
    : core_(std::make_shared<Core>(std::move(path))) {}

SettingsDatabase::~SettingsDatabase() = default;

std::shared_ptr<SettingsDatabase> SettingsDatabase::open(const std::string& path) {
    OpenDatabases& shared = OpenDatabases::shared();
    std::shared_ptr<SettingsDatabase> database;
    {
        const std::lock_guard lock(shared.mutex);
        std::weak_ptr<SettingsDatabase>& known = shared.byPath[path];
        database = known.lock();
        if (!database) {
            std::erase_if(shared.byPath, [&path](const auto& entry) {
                return entry.first != path && entry.second.expired();
            });
            database.reset(new SettingsDatabase(path));
            known = database;
        }
    }
    database->core_->tell();
    return database;
}

std::shared_ptr<SettingsDatabase> SettingsDatabase::inMemory() {
    return std::shared_ptr<SettingsDatabase>(new SettingsDatabase(""));
}

std::shared_ptr<SettingsDatabase> SettingsDatabase::ofDomain(std::string_view name) {
    const std::optional<std::string> path = settingsPath(name);
    // A path that leads nowhere: the domain lives in memory, and says so.
    return open(path ? *path : "/dev/null/" + std::string(name));
}

void SettingsDatabase::setProblemHandler(ProblemHandler handler) {
    const std::lock_guard lock(OpenDatabases::shared().mutex);
    OpenDatabases::shared().handler = std::move(handler);
}

void SettingsDatabase::Core::tell() {
    std::vector<std::string> problems;
    {
        const std::lock_guard hold(holding_);
        problems.swap(untold_);
    }
    if (problems.empty())
        return;
    ProblemHandler handler;
    {
        const std::lock_guard lock(OpenDatabases::shared().mutex);
        handler = OpenDatabases::shared().handler;
    }
    for (const std::string& problem : problems)
        if (handler)
            handler(problem);
        else
            LibraryLog::write({LibraryLog::Level::warning, "settings", problem});
}

SettingsDatabase::Value SettingsDatabase::value(std::string_view key) {
    // A problem that a read meets is told by the next call that is not one, to keep reads short.
    return core_->value(key);
}

PropertyList::Dictionary SettingsDatabase::contents() { return told(*core_, core_->contents()); }

bool SettingsDatabase::set(std::string_view key, PropertyList value) {
    std::vector<Change> change;
    change.emplace_back(key, std::move(value));
    return apply(std::move(change));
}

bool SettingsDatabase::remove(std::string_view key) {
    return apply({{std::string(key), std::nullopt}});
}

bool SettingsDatabase::apply(std::vector<Change> changes) {
    std::vector<std::pair<std::string, Value>> shared;
    for (auto& [key, value] : changes)
        shared.emplace_back(std::move(key),
                            value ? std::make_shared<const PropertyList>(std::move(*value))
                                  : Value());
    return told(*core_, core_->write(std::move(shared)));
}

bool SettingsDatabase::removeAll() { return told(*core_, core_->removeAll()); }

SettingsDatabase::Outcome SettingsDatabase::transact(const std::function<void()>& function) {
    return told(*core_, core_->transact(function));
}

std::shared_ptr<const void> SettingsDatabase::follow(Follower follower) {
    const auto number = core_->follow(std::move(follower));
    core_->tell();
    return {this, [database = shared_from_this(), number](const void*) {
                database->core_->unfollow(number);
            }};
}

bool SettingsDatabase::synchronize() { return told(*core_, core_->synchronize()); }

std::optional<std::string> SettingsDatabase::problem() { return core_->problem(); }

} // namespace zorvan
