#include <zorvan/platform/settingsdatabase/internal/SettingsCore.h>

#include <algorithm>
#include <filesystem>
#include <utility>

namespace zorvan {

using internal::FileWatch;
using internal::isIdentical;

/// What other processes changed, in the order in which they did. With `holding_` held.
std::vector<SettingsDatabase::Followed> SettingsDatabase::Core::differences(Reading& reading) {
    if (!isFollowed_)
        return {};
    std::vector<std::pair<std::int64_t, Followed>> found;
    const auto add = [&](std::int64_t id, std::string_view key, Value after) {
        if (memory_.isPending(key))
            return; // what is there is not seen
        Value before = memory_.value(key);
        const bool isSame =
            before && after ? reading.isOtherFile && isIdentical(*before, *after) : before == after;
        if (!isSame)
            found.emplace_back(id, Followed{std::string(key), std::move(before), std::move(after)});
    };
    for (const auto& row : reading.rows.all())
        // Our own rows are known by their identifiers, which are another's in another file.
        if (reading.isOtherFile || memory_.row(row.key) != row.id)
            add(row.id, row.key, reading.rows.value(row.key));
    if (reading.startsOver)
        for (const std::string& key : memory_.keysOfRows())
            if (!reading.rows.find(key))
                add(0, key, {});
    std::ranges::stable_sort(found, {}, &std::pair<std::int64_t, Followed>::first);
    std::vector<Followed> changes;
    for (auto& [id, change] : found)
        changes.push_back(std::move(change));
    return changes;
}

void SettingsDatabase::Core::tellFollowers(const std::vector<Followed>& changes) {
    if (changes.empty())
        return;
    const std::lock_guard follow(following_);
    for (const auto& [number, follower] : followers_)
        follower(changes);
}

SettingsDatabase::Core::FollowerNumber SettingsDatabase::Core::follow(Follower follower) {
    std::unique_lock use(using_, std::defer_lock);
    const bool isFree = !isTransacting(); // else nobody else writes now
    if (isFree) {
        use.lock();
        catchUp();
    }
    FollowerNumber number = 0;
    {
        const std::lock_guard follow(following_);
        number = ++lastFollower_;
        followers_.emplace(number, std::move(follower));
        isFollowed_ = true;
    }
    watch();
    if (isFree)
        catchUp(); // with what came before it was watched
    return number;
}

void SettingsDatabase::Core::unfollow(FollowerNumber number) {
    Follower ended; // released without the lock
    FileWatch::Number watch = 0;
    {
        const std::lock_guard follow(following_);
        const auto found = followers_.find(number);
        ended = std::move(found->second);
        followers_.erase(found);
        isFollowed_ = !followers_.empty();
        if (!isFollowed_)
            watch = std::exchange(watch_, 0);
    }
    FileWatch::shared().stop(watch);
}

void SettingsDatabase::Core::watch() {
    if (!isFollowed_ || path_.empty())
        return;
    bool isWatched = false;
    {
        const std::lock_guard follow(following_);
        if (watch_ == 0)
            watch_ = FileWatch::shared().start(std::filesystem::absolute(path_).string(),
                                               [core = weak_from_this()](bool isPlaced) {
                                                   if (const auto living = core.lock())
                                                       living->lookAt(isPlaced);
                                               });
        isWatched = watch_ != 0;
    }
    if (!isWatched)
        note("the system cannot watch it; what others write is told when this process reads");
}

void SettingsDatabase::Core::lookAt(bool isPlaced) {
    if (hasEnded())
        return;
    {
        const std::lock_guard use(using_);
        catchUp();
        // What was taken away is missed by nobody until something else is in its place.
        if (isPlaced && file_ && file_->isReplaced())
            reopen();
        else if (isPlaced && !file_)
            makeWritable(false);
    }
    tell();
}

} // namespace zorvan
