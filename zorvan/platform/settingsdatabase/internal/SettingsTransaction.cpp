#include <zorvan/platform/settingsdatabase/internal/SettingsCore.h>

#include <zorvan/platform/settingsdatabase/internal/StoredValue.h>

#include <utility>

namespace zorvan {

using internal::SettingsOverlay;
using internal::UnstorableValue;
using privatestore::DatabaseFailure;

namespace {

constexpr char unchanged[] = "; nothing was changed";

} // namespace

/// What the transaction of this thread has written; null when there is none.
SettingsOverlay* SettingsDatabase::Core::ownOverlay() {
    const bool isOwn = transaction_ && transaction_->thread == std::this_thread::get_id();
    return isOwn ? &transaction_->written : nullptr;
}

bool SettingsDatabase::Core::isTransacting() {
    const std::lock_guard hold(holding_);
    return ownOverlay() != nullptr;
}

SettingsDatabase::Outcome SettingsDatabase::Core::transact(const std::function<void()>& function) {
    if (isTransacting())
        return transactWithin(function);
    const std::lock_guard use(using_);
    catchUp();
    const bool hasFile = makeWritable(false);
    if (hasFile && !begin())
        return Outcome::refused;
    try {
        Changes changes = collect(function);
        if (hasFile && isOwnProcess())
            return commit(std::move(changes));
        keep(changes, nullptr);
        return changes.empty() ? Outcome::stored : Outcome::kept;
    } catch (...) {
        if (file_)
            file_->rollBack();
        throw;
    }
}

SettingsDatabase::Outcome
SettingsDatabase::Core::transactWithin(const std::function<void()>& function) {
    const auto withOverlay = [this](auto step) {
        const std::lock_guard hold(holding_);
        return step(*ownOverlay());
    };
    const SettingsOverlay::Mark before =
        withOverlay([](SettingsOverlay& written) { return written.begin(); });
    try {
        function();
    } catch (...) {
        withOverlay([&](SettingsOverlay& written) { written.rollBack(before); });
        throw;
    }
    withOverlay([](SettingsOverlay& written) { written.end(); });
    return Outcome::stored; // with the transaction around it
}

/// Whether nobody else writes from here on, and all that others wrote is read.
bool SettingsDatabase::Core::begin() {
    try {
        file_->begin();
        refresh();
        return true;
    } catch (const DatabaseFailure& failure) {
        file_->rollBack();
        meet(failure, unchanged);
        return false;
    } catch (...) { // out of memory
        file_->rollBack();
        throw;
    }
}

SettingsDatabase::Core::Changes
SettingsDatabase::Core::collect(const std::function<void()>& function) {
    const auto end = [this] {
        const std::lock_guard hold(holding_);
        return std::exchange(transaction_, std::nullopt);
    };
    {
        const std::lock_guard hold(holding_);
        transaction_.emplace().thread = std::this_thread::get_id();
    }
    try {
        function();
    } catch (...) {
        end();
        throw;
    }
    return end()->written.changes();
}

SettingsDatabase::Outcome SettingsDatabase::Core::commit(Changes changes) {
    std::erase_if(changes, [this](const auto& change) { return isUnchanged(change); });
    if (changes.empty()) {
        file_->rollBack();
        return Outcome::stored;
    }
    const Changes all = afterPending(changes);
    std::vector<std::int64_t> rows;
    try {
        storeAll(all, true, rows);
        return Outcome::stored;
    } catch (const UnstorableValue& reason) {
        file_->rollBack();
        note(all[rows.size()].first + ": " + reason.what() + unchanged);
    } catch (const DatabaseFailure& failure) {
        file_->rollBack();
        meet(failure, unchanged);
    }
    return Outcome::refused;
}

} // namespace zorvan
