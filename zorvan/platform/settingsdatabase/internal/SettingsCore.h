#pragma once

#include <zorvan/platform/privatestore/internal/WALStamp.h>
#include <zorvan/platform/settingsdatabase/SettingsDatabase.h>
#include <zorvan/platform/settingsdatabase/internal/FileWatch.h>
#include <zorvan/platform/settingsdatabase/internal/SettingsFile.h>
#include <zorvan/platform/settingsdatabase/internal/SettingsMemory.h>
#include <zorvan/platform/settingsdatabase/internal/SettingsOverlay.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <thread>
#include <vector>

namespace zorvan {

/// Keeps the memory of a domain and its file in step.
class SettingsDatabase::Core : public std::enable_shared_from_this<Core> {
public:
    /// An empty path is nowhere.
    explicit Core(std::string path);
    ~Core();

    Value value(std::string_view key);
    PropertyList::Dictionary contents();
    bool write(std::vector<std::pair<std::string, Value>> changes);
    bool removeAll();
    bool synchronize();
    std::optional<std::string> problem();
    Outcome transact(const std::function<void()>& function);

    using FollowerNumber = std::uint64_t;
    FollowerNumber follow(Follower follower);
    void unfollow(FollowerNumber number);

    // Around a fork, which finds nothing half done: the file is closed until it is used next.
    /// False when somebody uses it now; but within this thread's transaction it is held anyway.
    bool holdForFork();
    void letGoForFork();
    void prepareFork();
    void lockForFork();
    void endFork(bool isChild);
    /// At the end of the process the same; what is in memory is stored before.
    void end();

    /// Tells the problems that were met since. Not to be called with a lock held.
    void tell();

    /// Whether this thread is within the function of a transaction.
    bool isTransacting();

private:
    using Changes = internal::SettingsOverlay::Changes;
    static constexpr char keptInMemory[] = "; changes are kept in memory";
    using Clock = std::chrono::steady_clock;
    using Rows = internal::SettingRows;

    struct Transaction {
        std::thread::id thread;
        internal::SettingsOverlay written;
    };
    /// What is read of the file at once.
    struct Reading {
        bool startsOver = false;
        bool isOtherFile = false;
        std::int64_t last = 0;
        Rows rows = {};
        std::vector<std::int64_t> waste = {};
    };

    // With `holding_` held:
    bool isStale() const noexcept;
    internal::SettingsOverlay* ownOverlay();
    std::vector<Followed> differences(Reading& reading);

    // With `using_` held:
    bool isOwnProcess();
    void catchUp();
    void refresh(bool isOtherFile = false);
    Reading read(bool isOtherFile);
    void compact(const std::vector<std::int64_t>& waste);
    void open();
    void close();
    void reopen();
    void setParked(bool isParked);
    void park();
    void unpark();
    bool begin();
    Changes collect(const std::function<void()>& function);
    Outcome commit(Changes changes);
    Outcome transactWithin(const std::function<void()>& function);
    bool isUnchanged(const Changes::value_type& change);
    void tellFollowers(const std::vector<Followed>& changes);
    void watch();
    /// Something happened to the file.
    void lookAt(bool isPlaced);
    bool makeWritable(bool atOnce);
    Changes afterPending(const Changes& changes);
    bool store(const Changes& changes);
    void storeAll(const Changes& changes, bool isBegun, std::vector<std::int64_t>& rows);
    void writeAll(const Changes& changes, bool isBegun, std::vector<std::int64_t>& rows);
    void advance(std::int64_t firstRow, std::int64_t lastRow);
    void keep(const Changes& changes, const Value* unstorable);
    void meet(const privatestore::DatabaseFailure& failure, const char* consequence);
    void beginAnew();
    void note(const std::string& problem);
    void allIsWell();

    // Among all of the process:
    struct Process;
    class AtFork;
    void join();
    void leave();
    static bool hasEnded() noexcept;
    void storeAtEnd();

    const std::string path_;

    std::mutex using_; // the file; before `holding_`
    std::unique_ptr<internal::SettingsFile> file_;
    std::optional<internal::FileIdentity> known_; // the file that the memory is of
    pid_t process_;
    std::int64_t lastRow_ = 0;
    std::optional<Clock::time_point> lastAttempt_;
    bool beginsAnew_ = false;

    std::mutex holding_; // what follows
    internal::SettingsMemory memory_;
    const void* stampAddress_ = nullptr;
    privatestore::WALStamp seen_;
    bool isParked_ = false;                  // the file has to be opened before anything is read
    std::optional<Transaction> transaction_; // changed with `using_` held
    bool isForkedWithin_ = false;            // a transaction, during a fork
    std::optional<std::string> problem_;
    std::vector<std::string> untold_;

    std::mutex following_; // what follows; after `using_`
    std::map<FollowerNumber, Follower> followers_;
    std::atomic<bool> isFollowed_ = false;
    FollowerNumber lastFollower_ = 0;
    internal::FileWatch::Number watch_ = 0; // 0 for none
};

} // namespace zorvan
