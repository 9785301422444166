#include <zorvan/platform/settingsdatabase/internal/SettingsProcess.h>

#include <zorvan/platform/foundation/internal/ForkParticipant.h>
#include <zorvan/platform/settingsdatabase/internal/SettingsCore.h>

#include <set>
#include <unistd.h>
#include <utility>

namespace zorvan {

using internal::FileWatch;
using internal::OpenDatabases;

OpenDatabases& OpenDatabases::shared() {
    static OpenDatabases& databases = *new OpenDatabases;
    return databases;
}

/// All there are in the process. Never destroyed.
struct SettingsDatabase::Core::Process {
    std::mutex mutex; // after that of the open databases, before those of each
    std::set<Core*> cores;
    std::atomic<bool> hasEnded = false;

    static Process& shared() {
        static Process& process = *new Process;
        static const AtEnd atEnd;
        return process;
    }

    /// Whether nobody uses any of them from here on, but for a transaction that forks.
    bool tryToHold() {
        for (auto core = cores.begin(); core != cores.end(); ++core) {
            if ((*core)->holdForFork())
                continue;
            while (core != cores.begin())
                (*--core)->letGoForFork();
            return false;
        }
        return true;
    }

private:
    /// Closes the databases, so that their logs are gone.
    struct AtEnd {
        ~AtEnd() {
            Process& process = shared();
            process.hasEnded = true;
            const std::lock_guard lock(process.mutex);
            for (Core* const core : process.cores)
                core->end();
        }
    };
};

class SettingsDatabase::Core::AtFork final : public internal::ForkParticipant {
    bool tryToHold() override {
        std::unique_lock opening(OpenDatabases::shared().mutex, std::try_to_lock);
        std::unique_lock joining(Process::shared().mutex, std::try_to_lock);
        if (!opening || !joining || !Process::shared().tryToHold())
            return false;
        opening.release();
        joining.release();
        return true;
    }
    void letGo() override {
        for (Core* const core : Process::shared().cores)
            core->letGoForFork();
        Process::shared().mutex.unlock();
        OpenDatabases::shared().mutex.unlock();
    }
    void prepare() override {
        for (Core* const core : Process::shared().cores)
            core->prepareFork();
    }
    void lock() override {
        for (Core* const core : Process::shared().cores)
            core->lockForFork();
        FileWatch::shared().lock();
    }
    void end(bool isChild) override {
        if (isChild)
            FileWatch::shared().forgetInChild();
        FileWatch::shared().unlock();
        for (Core* const core : Process::shared().cores)
            core->endFork(isChild);
        letGo();
    }

    static AtFork shared_;
    static const Joined joined_;
};

constinit SettingsDatabase::Core::AtFork SettingsDatabase::Core::AtFork::shared_;
const internal::ForkParticipant::Joined SettingsDatabase::Core::AtFork::joined_(shared_);

void SettingsDatabase::Core::join() {
    Process& process = Process::shared();
    const std::lock_guard lock(process.mutex);
    process.cores.insert(this);
}

void SettingsDatabase::Core::leave() {
    Process& process = Process::shared();
    const std::lock_guard lock(process.mutex);
    process.cores.erase(this);
}

bool SettingsDatabase::Core::hasEnded() noexcept { return Process::shared().hasEnded; }

/// Closes the file until it is used. What is known of it stays.
void SettingsDatabase::Core::park() {
    if (!file_ || !isOwnProcess())
        return;
    setParked(true);
    close();
}

void SettingsDatabase::Core::unpark() {
    {
        const std::lock_guard hold(holding_);
        if (!isParked_)
            return;
    }
    open();
    setParked(false);
    watch();
}

bool SettingsDatabase::Core::holdForFork() {
    isForkedWithin_ = isTransacting();
    return isForkedWithin_ || using_.try_lock();
}

void SettingsDatabase::Core::letGoForFork() {
    if (!isForkedWithin_)
        using_.unlock();
}

/// A connection cannot be taken along into a child process: its locks stay behind, and what it has
/// mapped is cut short by others, who do not know of the child.
void SettingsDatabase::Core::prepareFork() {
    if (isForkedWithin_)
        return;
    if (file_ && isOwnProcess())
        file_->setCheckpointOnClose(false); // which is quick
    park();
}

void SettingsDatabase::Core::lockForFork() {
    holding_.lock();
    following_.lock();
}

void SettingsDatabase::Core::endFork(bool isChild) {
    if (isChild) {
        stampAddress_ = nullptr;
        watch_ = 0;
        if (!isForkedWithin_)
            process_ = ::getpid();
    }
    following_.unlock();
    holding_.unlock();
}

void SettingsDatabase::Core::end() {
    if (isTransacting())
        return;
    const std::unique_lock use(using_, std::try_to_lock); // another thread may still use it
    if (!use.owns_lock())
        return;
    storeAtEnd();
    park();
}

} // namespace zorvan
