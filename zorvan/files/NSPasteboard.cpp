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
    const std::lock_guard lock(mutex_);
    objects_.clear();
    return ++changeCount_;
}

void NSPasteboard::writeObjects(std::vector<Object> objects) {
    const std::lock_guard lock(mutex_);
    objects_.insert(objects_.end(), std::make_move_iterator(objects.begin()),
                    std::make_move_iterator(objects.end()));
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
