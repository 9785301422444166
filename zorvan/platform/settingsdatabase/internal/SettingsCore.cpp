#include <zorvan/platform/settingsdatabase/internal/SettingsCore.h>

#include <zorvan/platform/settingsdatabase/internal/StoredValue.h>

#include <algorithm>
#include <system_error>
#include <unistd.h>
#include <unordered_map>
#include <utility>

namespace zorvan {

using internal::RefusedFile;
using internal::SettingsFile;
using internal::SQLiteFailure;
using internal::UnstorableValue;
using internal::WALStamp;

namespace {

/// How long after a failure a write tries to open the database again.
constexpr std::chrono::seconds betweenAttempts{1};

/// From how many removed keys on their rows are cleared away, when they are half of all.
constexpr std::size_t manyRemoved = 1000;

constexpr char inMemory[] = "; changes are kept in memory";

} // namespace

SettingsDatabase::Core::Core(std::string path) : path_(std::move(path)), process_(::getpid()) {
    const std::lock_guard use(using_);
    open();
}

SettingsDatabase::Core::~Core() {
    const std::lock_guard use(using_);
    if (memory_.hasStorablePending() && isOwnProcess() && makeWritable(true))
        store({});
    close();
}

// Reading.

bool SettingsDatabase::Core::isStale() const noexcept {
    return stampAddress_ && internal::readStamp(stampAddress_) != seen_;
}

SettingsDatabase::Value SettingsDatabase::Core::value(std::string_view key) {
    {
        const std::lock_guard hold(holding_);
        if (!isStale())
            return memory_.value(key);
    }
    {
        const std::lock_guard use(using_);
        catchUp();
    }
    const std::lock_guard hold(holding_);
    return memory_.value(key);
}

PropertyList::Dictionary SettingsDatabase::Core::contents() {
    const std::lock_guard use(using_);
    catchUp();
    const std::lock_guard hold(holding_);
    return memory_.contents();
}

/// A connection cannot be taken along into a child process: its locks stay behind.
bool SettingsDatabase::Core::isOwnProcess() {
    if (process_ == ::getpid())
        return true;
    const std::lock_guard hold(holding_);
    stampAddress_ = nullptr;
    return false;
}

void SettingsDatabase::Core::catchUp() {
    {
        const std::lock_guard hold(holding_);
        if (!isStale())
            return;
    }
    if (!file_ || !isOwnProcess())
        return;
    try {
        refresh();
    } catch (const SQLiteFailure& failure) {
        meet(failure);
    }
}

void SettingsDatabase::Core::refresh() {
    // Read first: a commit during the reading makes it stale again.
    const void* address = file_->stampAddress();
    const WALStamp stamp = address ? internal::readStamp(address) : WALStamp();
    const bool isFirst = lastRow_ == 0;
    bool startsOver = false;
    std::int64_t last = lastRow_;
    internal::SettingRows rows;
    std::vector<std::int64_t> waste;
    file_->readAbove(
        lastRow_, [&] { startsOver = true; },
        [&](SettingsFile::Row&& row) {
            last = row.id;
            if (!row.key.data())
                return;
            if (const std::int64_t replaced = rows.put(row.key, row.id, std::move(row.content));
                replaced != 0 && isFirst)
                waste.push_back(replaced);
        });

    {
        const std::lock_guard hold(holding_);
        if (startsOver)
            memory_.forgetRows();
        memory_.take(std::move(rows));
        stampAddress_ = address;
        seen_ = stamp;
    }
    lastRow_ = last;
    if (isFirst && file_->isWritable())
        compact(waste);
}

void SettingsDatabase::Core::compact(const std::vector<std::int64_t>& waste) {
    const bool isMuch = memory_.removed() > manyRemoved && memory_.removed() > memory_.size() / 2;
    if (waste.empty() && !isMuch)
        return;
    try {
        file_->compact(waste);
        const std::lock_guard hold(holding_);
        memory_.forgetRemoved();
    } catch (const SQLiteFailure&) {
        // It is housekeeping: what matters is told when it is met by a write.
    }
}

// The file.

void SettingsDatabase::Core::open() {
    lastAttempt_ = Clock::now();
    try {
        std::string aside;
        file_ = SettingsFile::open(path_, aside);
        if (!aside.empty())
            note("it was damaged and is set aside as " + aside);
        lastRow_ = 0;
        {
            const std::lock_guard hold(holding_);
            memory_.forgetRows();
        }
        refresh();
    } catch (const RefusedFile& refusal) {
        note(refusal.what() + std::string(inMemory));
    } catch (const std::system_error& error) {
        note(error.code().message() + inMemory);
    } catch (const SQLiteFailure& failure) {
        meet(failure);
    }
}

void SettingsDatabase::Core::close() {
    {
        const std::lock_guard hold(holding_);
        stampAddress_ = nullptr;
    }
    if (process_ != ::getpid())
        (void)file_.release();
    file_.reset();
}

/// Whether there is a file that can be written; tries to get one when that failed before.
bool SettingsDatabase::Core::makeWritable(bool atOnce) {
    if (!isOwnProcess()) {
        note(std::string("this process is a fork of the one that opened it") + inMemory);
        return false;
    }
    reopenIfReplaced();
    if (file_ && file_->isWritable())
        return true;
    if (atOnce || !lastAttempt_ || Clock::now() - *lastAttempt_ >= betweenAttempts) {
        close();
        open();
    }
    if (file_ && !file_->isWritable())
        note(std::string("it cannot be written") + inMemory);
    return file_ && file_->isWritable();
}

void SettingsDatabase::Core::reopenIfReplaced() {
    if (!file_ || file_->isInPlace())
        return;
    close();
    open();
}

// Writing.

bool SettingsDatabase::Core::write(Changes changes) {
    const std::lock_guard use(using_);
    catchUp();
    dropUnchanged(changes);
    if (changes.empty())
        return true;
    if (makeWritable(false))
        return store(changes);
    keep(changes, nullptr);
    return false;
}

void SettingsDatabase::Core::dropUnchanged(Changes& changes) {
    const auto isUnchanged = [this](const auto& change) {
        if (memory_.isPending(change.first))
            return false;
        const std::lock_guard hold(holding_);
        const Value old = memory_.value(change.first);
        return old && change.second ? internal::isIdentical(*old, *change.second)
                                    : old == change.second;
    };
    // In a batch a key may stand twice, and the last one counts.
    if (changes.size() == 1 && isUnchanged(changes.front()))
        changes.clear();
}

bool SettingsDatabase::Core::store(const Changes& changes) {
    Changes all;
    for (const auto& [key, pending] : memory_.pending())
        if (pending.isStorable)
            all.emplace_back(key, pending.value);
    all.insert(all.end(), changes.begin(), changes.end());
    if (all.empty())
        return true;

    std::vector<std::int64_t> rows;
    try {
        const std::int64_t last = storeAll(all, rows);
        {
            const std::lock_guard hold(holding_);
            for (std::size_t i = 0; i < all.size(); ++i)
                memory_.stored(all[i].first, all[i].second, rows[i]);
        }
        advance(rows.front(), last);
        allIsWell();
        compact({});
        return true;
    } catch (const UnstorableValue& reason) {
        file_->rollBack();
        // Of the rows that went in before, there are as many as it was the turn of the next.
        keep(all, &all[rows.size()].second);
        note(all[rows.size()].first + ": " + reason.what() + inMemory);
    } catch (const SQLiteFailure& failure) {
        file_->rollBack();
        keep(all, nullptr);
        meet(failure);
    }
    return memory_.pending().empty(); // when a new database took it
}

/// In one transaction. The row of each change, and the last of them.
std::int64_t SettingsDatabase::Core::storeAll(const Changes& changes,
                                              std::vector<std::int64_t>& rows) {
    const auto storeOne = [&](const auto& change, std::int64_t previous) {
        rows.push_back(file_->write(previous, change.first, change.second.get()));
    };
    if (changes.size() == 1) { // is a transaction by itself
        storeOne(changes.front(), memory_.row(changes.front().first));
        return rows.back();
    }
    std::unordered_map<std::string_view, std::int64_t> written;
    written.reserve(changes.size());
    file_->begin();
    for (const auto& change : changes) {
        const auto found = written.find(change.first);
        storeOne(change, found == written.end() ? memory_.row(change.first) : found->second);
        written[change.first] = rows.back();
    }
    file_->commit();
    return rows.back();
}

/// Takes notice of our own commit. When nobody else committed since what we had seen, there is
/// nothing to read.
void SettingsDatabase::Core::advance(std::int64_t firstRow, std::int64_t lastRow) {
    if (firstRow != lastRow_ + 1) {
        try {
            refresh();
        } catch (const SQLiteFailure& failure) {
            meet(failure);
        }
        return;
    }
    lastRow_ = lastRow;
    const std::lock_guard hold(holding_);
    if (!stampAddress_)
        return;
    const WALStamp now = internal::readStamp(stampAddress_);
    if (now.changes == seen_.changes + 1)
        seen_ = now;
}

void SettingsDatabase::Core::keep(const Changes& changes, const Value* unstorable) {
    const std::lock_guard hold(holding_);
    for (const auto& [key, value] : changes)
        memory_.keep(key, value, &value != unstorable);
}

bool SettingsDatabase::Core::removeAll() {
    const std::lock_guard use(using_);
    catchUp();
    if (makeWritable(false)) {
        try {
            const std::int64_t mark = file_->removeAll();
            {
                const std::lock_guard hold(holding_);
                memory_.clear();
            }
            advance(mark, mark);
            allIsWell();
            return true;
        } catch (const SQLiteFailure& failure) {
            meet(failure);
        }
    }
    Changes removals;
    {
        const std::lock_guard hold(holding_);
        for (const auto& entry : memory_.contents())
            removals.emplace_back(entry.first, Value());
    }
    keep(removals, nullptr);
    return false;
}

bool SettingsDatabase::Core::synchronize() {
    const std::lock_guard use(using_);
    catchUp();
    if (!makeWritable(true) || !store({}))
        return false;
    try {
        file_->checkpoint();
    } catch (const SQLiteFailure& failure) {
        meet(failure);
        return false;
    }
    return memory_.pending().empty();
}

// Problems.

void SettingsDatabase::Core::meet(const SQLiteFailure& failure) {
    if (failure.isDamage() && file_ && file_->isWritable() && !beginsAnew_) {
        beginAnew();
        return;
    }
    note(failure.what() + std::string(inMemory));
    if (lastRow_ == 0) // not even read
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
        note("it is damaged and cannot be set aside: " + error.code().message() + inMemory);
    } catch (const RefusedFile& refusal) {
        note(refusal.what() + std::string(inMemory));
    }
    beginsAnew_ = false;
}

void SettingsDatabase::Core::note(const std::string& problem) {
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
