#pragma once

#include <zorvan/platform/settingsdatabase/SettingsDatabase.h>
#include <zorvan/platform/settingsdatabase/internal/SettingsFile.h>
#include <zorvan/platform/settingsdatabase/internal/SettingsMemory.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace zorvan {

/// Keeps the memory of a domain and its file in step.
class SettingsDatabase::Core {
public:
    explicit Core(std::string path);
    ~Core();

    Value value(std::string_view key);
    PropertyList::Dictionary contents();
    bool write(std::vector<std::pair<std::string, Value>> changes);
    bool removeAll();
    bool synchronize();
    std::optional<std::string> problem();

    /// Tells the problems that were met since. Not to be called with a lock held.
    void tell();

private:
    using Changes = std::vector<std::pair<std::string, Value>>;
    using Clock = std::chrono::steady_clock;

    // With `holding_` held:
    bool isStale() const noexcept;

    // With `using_` held:
    bool isOwnProcess();
    void catchUp();
    void refresh();
    void compact(const std::vector<std::int64_t>& waste);
    void open();
    void close();
    bool makeWritable(bool atOnce);
    void reopenIfReplaced();
    void dropUnchanged(Changes& changes);
    bool store(const Changes& changes);
    std::int64_t storeAll(const Changes& changes, std::vector<std::int64_t>& rows);
    void advance(std::int64_t firstRow, std::int64_t lastRow);
    void keep(const Changes& changes, const Value* unstorable);
    void meet(const internal::SQLiteFailure& failure);
    void beginAnew();
    void note(const std::string& problem);
    void allIsWell();

    const std::string path_;

    std::mutex using_; // the file; before `holding_`
    std::unique_ptr<internal::SettingsFile> file_;
    pid_t process_;
    std::int64_t lastRow_ = 0;
    std::optional<Clock::time_point> lastAttempt_;
    bool beginsAnew_ = false;

    std::mutex holding_; // what follows
    internal::SettingsMemory memory_;
    const void* stampAddress_ = nullptr;
    internal::WALStamp seen_;
    std::optional<std::string> problem_;
    std::vector<std::string> untold_;
};

} // namespace zorvan
