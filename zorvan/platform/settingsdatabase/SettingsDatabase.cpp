#include <zorvan/platform/settingsdatabase/SettingsDatabase.h>

#include <zorvan/platform/settingsdatabase/SettingsFolder.h>
#include <zorvan/platform/settingsdatabase/internal/SettingsCore.h>

#include <cstdio>
#include <map>
#include <mutex>
#include <utility>

namespace zorvan {

namespace {

/// Of the process. Never destroyed, since settings may be used while the program ends.
struct Shared {
    std::mutex mutex;
    std::map<std::string, std::weak_ptr<SettingsDatabase>, std::less<>> databases;
    SettingsDatabase::ProblemHandler handler;

    static Shared& instance() {
        static Shared& shared = *new Shared;
        return shared;
    }
};

void writeToStandardError(const std::string& problem) {
    std::fprintf(stderr, "%s\n", problem.c_str());
}

} // namespace

SettingsDatabase::SettingsDatabase(std::string path)
    : core_(std::make_unique<Core>(std::move(path))) {}

SettingsDatabase::~SettingsDatabase() = default;

std::shared_ptr<SettingsDatabase> SettingsDatabase::open(const std::string& path) {
    Shared& shared = Shared::instance();
    std::shared_ptr<SettingsDatabase> database;
    {
        const std::lock_guard lock(shared.mutex);
        std::weak_ptr<SettingsDatabase>& known = shared.databases[path];
        database = known.lock();
        if (!database) {
            std::erase_if(shared.databases, [&path](const auto& entry) {
                return entry.first != path && entry.second.expired();
            });
            database.reset(new SettingsDatabase(path));
            known = database;
        }
    }
    database->core_->tell();
    return database;
}

std::shared_ptr<SettingsDatabase> SettingsDatabase::ofDomain(std::string_view name) {
    const std::optional<std::string> path = settingsPath(name);
    // A path that leads nowhere: the domain lives in memory, and says so.
    return open(path ? *path : "/dev/null/" + std::string(name));
}

void SettingsDatabase::setProblemHandler(ProblemHandler handler) {
    const std::lock_guard lock(Shared::instance().mutex);
    Shared::instance().handler = std::move(handler);
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
        const std::lock_guard lock(Shared::instance().mutex);
        handler = Shared::instance().handler;
    }
    for (const std::string& problem : problems)
        handler ? handler(problem) : writeToStandardError(problem);
}

SettingsDatabase::Value SettingsDatabase::value(std::string_view key) {
    // A problem that a read meets is told by the next call that is not one, to keep reads short.
    return core_->value(key);
}

PropertyList::Dictionary SettingsDatabase::contents() {
    PropertyList::Dictionary all = core_->contents();
    core_->tell();
    return all;
}

bool SettingsDatabase::set(std::string_view key, PropertyList value) {
    std::vector<std::pair<std::string, Value>> change;
    change.emplace_back(key, std::make_shared<const PropertyList>(std::move(value)));
    const bool isStored = core_->write(std::move(change));
    core_->tell();
    return isStored;
}

bool SettingsDatabase::remove(std::string_view key) {
    std::vector<std::pair<std::string, Value>> change;
    change.emplace_back(key, Value());
    const bool isStored = core_->write(std::move(change));
    core_->tell();
    return isStored;
}

bool SettingsDatabase::apply(std::vector<Change> changes) {
    std::vector<std::pair<std::string, Value>> shared;
    for (auto& [key, value] : changes)
        shared.emplace_back(std::move(key),
                            value ? std::make_shared<const PropertyList>(std::move(*value))
                                  : Value());
    const bool isStored = core_->write(std::move(shared));
    core_->tell();
    return isStored;
}

bool SettingsDatabase::removeAll() {
    const bool isStored = core_->removeAll();
    core_->tell();
    return isStored;
}

bool SettingsDatabase::synchronize() {
    const bool isStored = core_->synchronize();
    core_->tell();
    return isStored;
}

std::optional<std::string> SettingsDatabase::problem() { return core_->problem(); }

} // namespace zorvan
