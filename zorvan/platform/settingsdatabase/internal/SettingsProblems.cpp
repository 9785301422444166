#include <zorvan/platform/settingsdatabase/internal/SettingsCore.h>

#include <system_error>

namespace zorvan {

using internal::SettingsFile;
using privatestore::DatabaseFailure;
using privatestore::Refusal;

void SettingsDatabase::Core::meet(const DatabaseFailure& failure, const char* consequence) {
    if (failure.reason == DatabaseFailure::Reason::damage && file_ && file_->isWritable() &&
        !beginsAnew_) {
        beginAnew();
        return;
    }
    note(failure.what() + std::string(consequence));
    const bool isTakenOver = failure.reason == DatabaseFailure::Reason::newer;
    // The engine goes on with reading when a file could not be opened for writing, be it by chance.
    const bool isStuck =
        failure.reason == DatabaseFailure::Reason::notPermitted && file_ && file_->isWritable();
    if (file_ && (isTakenOver || isStuck || known_ != file_->identity())) // not even read
        close();
}

/// With what is in memory.
void SettingsDatabase::Core::beginAnew() {
    {
        const std::lock_guard hold(holding_);
        memory_.keepEverything();
        stampAddress_ = nullptr;
    }
    beginsAnew_ = true;
    try {
        const std::string aside = SettingsFile::setAside(std::move(file_));
        if (!aside.empty())
            note("it was damaged and is set aside as " + aside);
        open();
        if (file_ && file_->isWritable())
            store({});
    } catch (const std::system_error& error) {
        note("it is damaged and cannot be set aside: " + error.code().message() + keptInMemory);
    } catch (const Refusal& refusal) {
        note(refusal.what() + std::string(keptInMemory));
    }
    beginsAnew_ = false;
}

void SettingsDatabase::Core::note(const std::string& problem) {
    if (path_.empty())
        return;
    const std::lock_guard hold(holding_);
    const std::string line = path_ + ": " + problem;
    if (problem_ == line)
        return;
    problem_ = line;
    untold_.push_back(line);
}

void SettingsDatabase::Core::allIsWell() {
    const std::lock_guard hold(holding_);
    if (memory_.pending().empty())
        problem_.reset();
}

std::optional<std::string> SettingsDatabase::Core::problem() {
    const std::lock_guard hold(holding_);
    return problem_;
}

} // namespace zorvan
