#include <zorvan/files/NSPasteboard.h>

#include <zorvan/platform/foundation/internal/ForkParticipant.h>

#include <iterator>
#include <mutex>
#include <utility>

namespace zorvan {

namespace {

constinit internal::BriefMutex mutex; // of all pasteboards
const internal::ForkParticipant::Joined joined(mutex);

} // namespace

const std::shared_ptr<NSPasteboard>& NSPasteboard::generalPasteboard() {
    static const std::shared_ptr<NSPasteboard> pasteboard = create();
    return pasteboard;
}

std::shared_ptr<NSPasteboard> NSPasteboard::create() {
    return std::shared_ptr<NSPasteboard>(new NSPasteboard);
}

std::int64_t NSPasteboard::clearContents() {
    std::int64_t count = 0;
    decltype(contents_) gone; // without the lock, as that may call anything
    {
        const std::lock_guard lock(mutex);
        objects_.clear();
        contents_.swap(gone);
        count = ++changeCount_;
    }
    tellHandler();
    return count;
}

void NSPasteboard::writeObjects(std::vector<Object> objects) {
    fetchContents();
    decltype(contents_) gone;
    {
        const std::lock_guard lock(mutex);
        contents_.swap(gone);
        objects_.insert(objects_.end(), std::make_move_iterator(objects.begin()),
                        std::make_move_iterator(objects.end()));
    }
    tellHandler();
}

void NSPasteboard::setChangeHandler(std::function<void()> handler) {
    const std::lock_guard lock(mutex);
    changeHandler_.swap(handler);
}

void NSPasteboard::adopt(std::function<std::optional<std::vector<Object>>()> contents) {
    const std::lock_guard lock(mutex);
    objects_.clear();
    contents_.swap(contents);
    ++changeCount_;
}

/// Outside the lock, so that nobody who writes waits for the desktop; what was written meanwhile
/// stays.
void NSPasteboard::fetchContents() const {
    decltype(contents_) contents, gone; // without the lock
    std::unique_lock lock(mutex);
    contents = contents_;
    const std::int64_t count = changeCount_;
    if (!contents)
        return;
    lock.unlock();
    auto objects = contents();
    lock.lock();
    if (!objects || !contents_ || count != changeCount_)
        return;
    objects_ = std::move(*objects);
    contents_.swap(gone);
}

/// Outside the lock, so that it may ask the pasteboard.
void NSPasteboard::tellHandler() const {
    std::function<void()> handler;
    {
        const std::lock_guard lock(mutex);
        handler = changeHandler_;
    }
    if (handler)
        handler();
}

std::vector<NSPasteboard::Object> NSPasteboard::objects() const {
    fetchContents();
    const std::lock_guard lock(mutex);
    return objects_;
}

std::int64_t NSPasteboard::changeCount() const {
    const std::lock_guard lock(mutex);
    return changeCount_;
}

std::vector<URL> NSPasteboard::fileURLs() const {
    std::vector<URL> urls;
    for (const Object& object : objects())
        if (const URL* url = std::get_if<URL>(&object); url && url->isFileURL())
            urls.push_back(*url);
    return urls;
}

} // namespace zorvan
