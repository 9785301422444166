#include <zorvan/observation/MultiNoteSubscriber.h>

namespace zorvan {

std::shared_ptr<MultiNoteSubscriber>
MultiNoteSubscriber::create(std::shared_ptr<NSNotificationCenter> center) {
    return std::shared_ptr<MultiNoteSubscriber>(new MultiNoteSubscriber(std::move(center)));
}

MultiNoteSubscriber::Subscribers MultiNoteSubscriber::makeSubscribers() const {
    if (!subscribers_.empty())
        fatalError("Subcribers are already observing.");
    if (names_.empty())
        fatalError("Notification names have not been set.");
    if (objects_.empty())
        fatalError("Notification objects have not been set.");
    Subscribers made;
    for (const NSNotificationName name : names_) {
        for (const OpaqueWeakValue& object : objects_) {
            auto subscriber = NoteSubscriber::create(center_);
            subscriber->setQueue(queue_);
            subscriber->setName(name);
            subscriber->setObject(object.value());
            made.push_back(std::move(subscriber));
        }
    }
    return made;
}

void MultiNoteSubscriber::unsubscribe() {
    // A block released here may come back to this object.
    const Subscribers ended = std::exchange(subscribers_, {});
    for (const auto& subscriber : ended)
        subscriber->unsubscribe();
}

} // namespace zorvan
