#include <zorvan/files/NSPasteboard.h>

#include <iterator>

namespace zorvan {

const std::shared_ptr<NSPasteboard>& NSPasteboard::generalPasteboard() {
    static const std::shared_ptr<NSPasteboard> pasteboard = create();
    return pasteboard;
}

std::shared_ptr<NSPasteboard> NSPasteboard::create() {
    return std::shared_ptr<NSPasteboard>(new NSPasteboard);
}

std::int64_t NSPasteboard::clearContents() {
    std::int64_t count = 0;
    {
        const std::lock_guard lock(mutex_);
        objects_.clear();
        count = ++changeCount_;
    }
    tellHandler();
    return count;
}

void NSPasteboard::writeObjects(std::vector<Object> objects) {
    {
        const std::lock_guard lock(mutex_);
        objects_.insert(objects_.end(), std::make_move_iterator(objects.begin()),
                        std::make_move_iterator(objects.end()));
    }
    tellHandler();
}

void NSPasteboard::setChangeHandler(std::function<void()> handler) {
    const std::lock_guard lock(mutex_);
    changeHandler_ = std::move(handler);
}

void NSPasteboard::adopt(std::vector<Object> objects) {
    const std::lock_guard lock(mutex_);
    objects_ = std::move(objects);
    ++changeCount_;
}

/// Outside the lock, so that it may ask the pasteboard.
void NSPasteboard::tellHandler() const {
    std::function<void()> handler;
    {
        const std::lock_guard lock(mutex_);
        handler = changeHandler_;
    }
    if (handler)
        handler();
}

std::vector<NSPasteboard::Object> NSPasteboard::objects() const {
    const std::lock_guard lock(mutex_);
    return objects_;
}

std::int64_t NSPasteboard::changeCount() const {
    const std::lock_guard lock(mutex_);
    return changeCount_;
}

std::vector<URL> NSPasteboard::fileURLs() const {
    const std::lock_guard lock(mutex_);
    std::vector<URL> urls;
    for (const Object& object : objects_)
        if (const URL* url = std::get_if<URL>(&object); url && url->isFileURL())
            urls.push_back(*url);
    return urls;
}

} // namespace zorvan
