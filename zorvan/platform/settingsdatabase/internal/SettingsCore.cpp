#include <zorvan/platform/settingsdatabase/internal/SettingsCore.h>

#include <zorvan/platform/foundation/internal/KeyedHash.h>
#include <zorvan/platform/settingsdatabase/internal/StoredValue.h>

#include <system_error>
#include <unistd.h>
#include <unordered_map>
#include <utility>

namespace zorvan {

using internal::SettingsFile;
using internal::UnstorableValue;
using privatestore::DatabaseFailure;
using privatestore::Refusal;
using privatestore::WALStamp;

namespace {

/// How long after a failure a write tries to open the database again.
constexpr std::chrono::seconds betweenAttempts{1};

/// From how many removed keys on their rows are cleared away, when they are half of all.
constexpr std::size_t manyRemoved = 1000;

constexpr char notOnDisk[] = "; the last changes may not be on the disk";

} // namespace

SettingsDatabase::Core::Core(std::string path) : path_(std::move(path)), process_(::getpid()) {
    join();
    try {
        const std::lock_guard use(using_);
        open();
    } catch (...) {
        leave();
        throw;
    }
}

SettingsDatabase::Core::~Core() {
    {
        const std::lock_guard use(using_);
        storeAtEnd();
        close();
    }
    leave();
}

void SettingsDatabase::Core::storeAtEnd() {
    if (memory_.hasStorablePending() && isOwnProcess() && makeWritable(true))
        store({});
}

// Reading.

bool SettingsDatabase::Core::isStale() const noexcept {
    return isParked_ || (stampAddress_ && privatestore::readStamp(stampAddress_) != seen_);
}

SettingsDatabase::Value SettingsDatabase::Core::value(std::string_view key) {
    {
        const std::lock_guard hold(holding_);
        const auto* written = ownOverlay();
        if (const Value* own = written ? written->find(key) : nullptr)
            return *own;
        if (written || !isStale())
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
    {
        const std::lock_guard hold(holding_);
        if (const auto* written = ownOverlay())
            return memory_.contents(written->changes());
    }
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
    unpark();
    if (!file_ || !isOwnProcess())
        return;
    try {
        refresh();
    } catch (const DatabaseFailure& failure) {
        meet(failure, keptInMemory);
    }
}

SettingsDatabase::Core::Reading SettingsDatabase::Core::read(bool isOtherFile) {
    Reading reading{.startsOver = isOtherFile, .isOtherFile = isOtherFile, .last = lastRow_};
    file_->readAbove(
        lastRow_, [&] { reading.startsOver = true; },
        [&](SettingsFile::Row&& row) {
            reading.last = row.id;
            if (!row.key.data())
                return;
            const std::int64_t replaced = reading.rows.put(row.key, row.id, std::move(row.content));
            if (replaced != 0 && lastRow_ == 0)
                reading.waste.push_back(replaced);
        });
    return reading;
}

void SettingsDatabase::Core::refresh(bool isOtherFile) {
    // Read first: a commit during the reading makes it stale again.
    const void* address = file_->stampAddress();
    const WALStamp stamp = address ? privatestore::readStamp(address) : WALStamp();
    const bool isFirst = lastRow_ == 0;
    Reading reading = read(isOtherFile);
    std::vector<Followed> changes;
    {
        const std::lock_guard hold(holding_);
        changes = differences(reading);
        if (reading.startsOver)
            memory_.forgetRows();
        memory_.take(std::move(reading.rows));
        stampAddress_ = address;
        seen_ = stamp;
    }
    lastRow_ = reading.last;
    tellFollowers(changes);
    if (isFirst && file_->isWritable() && !file_->isTransacting())
        compact(reading.waste);
}

void SettingsDatabase::Core::compact(const std::vector<std::int64_t>& waste) {
    const bool isMuch = memory_.removed() > manyRemoved && memory_.removed() > memory_.size() / 2;
    if (!file_ || (waste.empty() && !isMuch)) // closed when what we wrote could not be read
        return;
    try {
        file_->compact(waste);
        const std::lock_guard hold(holding_);
        memory_.forgetRemoved();
    } catch (const DatabaseFailure&) {
        // It is housekeeping: what matters is told when it is met by a write.
    }
}

// The file.

void SettingsDatabase::Core::open() {
    if (path_.empty())
        return;
    lastAttempt_ = Clock::now();
    try {
        std::string aside;
        file_ = SettingsFile::open(path_, aside);
        if (!aside.empty())
            note("it was damaged and is set aside as " + aside);
        const bool isOther = known_ != file_->identity();
        if (isOther)
            lastRow_ = 0;
        refresh(isOther);
        known_ = file_->identity();
    } catch (const Refusal& refusal) {
        note(refusal.what() + std::string(keptInMemory));
    } catch (const std::system_error& error) {
        note(error.code().message() + keptInMemory);
    } catch (const DatabaseFailure& failure) {
        meet(failure, keptInMemory);
    }
}

void SettingsDatabase::Core::close() {
    {
        const std::lock_guard hold(holding_);
        stampAddress_ = nullptr;
    }
    file_.reset();
}

/// Meanwhile readers wait, so that nobody reads what was there before.
void SettingsDatabase::Core::reopen() {
    setParked(true);
    close();
    open();
    setParked(false);
}

void SettingsDatabase::Core::setParked(bool isParked) {
    const std::lock_guard hold(holding_);
    isParked_ = isParked;
}

/// Whether there is a file that can be written; tries to get one when that failed before.
bool SettingsDatabase::Core::makeWritable(bool atOnce) {
    if (!isOwnProcess()) {
        note(std::string("this process is a fork of the one that opened it") + keptInMemory);
        return false;
    }
    if (file_ && !file_->isInPlace())
        reopen();
    if (file_ && file_->isWritable())
        return true;
    if (atOnce || !lastAttempt_ || Clock::now() - *lastAttempt_ >= betweenAttempts)
        reopen();
    if (file_ && !file_->isWritable())
        note(std::string("it cannot be written") + keptInMemory);
    return file_ && file_->isWritable();
}

// Writing.

bool SettingsDatabase::Core::write(Changes changes) {
    {
        const std::lock_guard hold(holding_);
        if (auto* written = ownOverlay()) {
            for (auto& [key, value] : changes)
                written->put(key, std::move(value));
            return true;
        }
    }
    const std::lock_guard use(using_);
    catchUp();
    // In a batch a key may stand twice, and the last one counts.
    if (changes.size() == 1 && isUnchanged(changes.front()))
        changes.clear();
    if (changes.empty())
        return true;
    if (makeWritable(false))
        return store(changes);
    keep(changes, nullptr);
    return false;
}

bool SettingsDatabase::Core::isUnchanged(const Changes::value_type& change) {
    if (memory_.isPending(change.first))
        return false;
    const std::lock_guard hold(holding_);
    const Value old = memory_.value(change.first);
    return old && change.second ? internal::isIdentical(*old, *change.second)
                                : old == change.second;
}

/// What was kept in memory is written before what comes later.
SettingsDatabase::Core::Changes SettingsDatabase::Core::afterPending(const Changes& changes) {
    Changes all;
    for (const auto& [key, pending] : memory_.pending())
        if (pending.isStorable)
            all.emplace_back(key, pending.value);
    all.insert(all.end(), changes.begin(), changes.end());
    return all;
}

bool SettingsDatabase::Core::store(const Changes& changes) {
    const Changes all = afterPending(changes);
    if (all.empty())
        return true;

    std::vector<std::int64_t> rows;
    try {
        storeAll(all, false, rows);
        return true;
    } catch (const UnstorableValue& reason) {
        file_->rollBack();
        // Of the rows that went in before, there are as many as it was the turn of the next.
        keep(all, &all[rows.size()].second);
        note(all[rows.size()].first + ": " + reason.what() + keptInMemory);
    } catch (const DatabaseFailure& failure) {
        file_->rollBack();
        keep(all, nullptr);
        meet(failure, keptInMemory);
    } catch (...) { // out of memory
        if (file_)
            file_->rollBack();
        throw;
    }
    return memory_.pending().empty(); // when a new database took it
}

void SettingsDatabase::Core::storeAll(const Changes& changes, bool isBegun,
                                      std::vector<std::int64_t>& rows) {
    writeAll(changes, isBegun, rows);
    file_->signal();
    {
        const std::lock_guard hold(holding_);
        for (std::size_t i = 0; i < changes.size(); ++i)
            memory_.stored(changes[i].first, changes[i].second, rows[i]);
    }
    advance(rows.front(), rows.back());
    allIsWell();
    compact({});
}

/// In one transaction. Adds the row of each change.
void SettingsDatabase::Core::writeAll(const Changes& changes, bool isBegun,
                                      std::vector<std::int64_t>& rows) {
    const auto writeOne = [&](const auto& change, std::int64_t previous) {
        rows.push_back(file_->write(previous, change.first, change.second.get()));
    };
    if (changes.size() == 1 && !isBegun) { // is a transaction by itself
        writeOne(changes.front(), memory_.row(changes.front().first));
        return;
    }
    std::unordered_map<std::string_view, std::int64_t, internal::KeyedHash> written;
    written.reserve(changes.size());
    if (!isBegun)
        file_->begin();
    for (const auto& change : changes) {
        const auto found = written.find(change.first);
        writeOne(change, found == written.end() ? memory_.row(change.first) : found->second);
        written[change.first] = rows.back();
    }
    file_->commit();
}

/// Takes notice of our own commit. When nobody else committed since what we had seen, there is
/// nothing to read.
void SettingsDatabase::Core::advance(std::int64_t firstRow, std::int64_t lastRow) {
    if (firstRow != lastRow_ + 1) {
        try {
            refresh();
        } catch (const DatabaseFailure& failure) {
            meet(failure, keptInMemory);
        }
        return;
    }
    lastRow_ = lastRow;
    const std::lock_guard hold(holding_);
    if (!stampAddress_)
        return;
    const WALStamp now = privatestore::readStamp(stampAddress_);
    if (now.changes == seen_.changes + 1)
        seen_ = now;
}

void SettingsDatabase::Core::keep(const Changes& changes, const Value* unstorable) {
    const std::lock_guard hold(holding_);
    for (const auto& [key, value] : changes)
        memory_.keep(key, value, &value != unstorable);
}

bool SettingsDatabase::Core::removeAll() {
    if (isTransacting()) {
        Changes removals;
        for (const auto& entry : contents())
            removals.emplace_back(entry.first, Value());
        return write(std::move(removals));
    }
    const std::lock_guard use(using_);
    catchUp();
    if (makeWritable(false)) {
        try {
            const std::int64_t mark = file_->removeAll();
            file_->signal();
            {
                const std::lock_guard hold(holding_);
                memory_.clear();
            }
            advance(mark, mark);
            allIsWell();
            return true;
        } catch (const DatabaseFailure& failure) {
            meet(failure, keptInMemory);
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
    if (isTransacting())
        return false;
    const std::lock_guard use(using_);
    catchUp();
    if (!makeWritable(true) || !store({}))
        return false;
    try {
        file_->checkpoint();
    } catch (const DatabaseFailure& failure) {
        meet(failure, notOnDisk);
        return false;
    }
    allIsWell();
    return memory_.pending().empty();
}

} // namespace zorvan
