#include <zorvan/interface/NSApplication.h>

#include <zorvan/platform/dispatch/NSNotificationCenter.h>

namespace zorvan {

namespace {

/// Whether the pointer was ever set, be its object gone or not.
bool wasSet(const std::weak_ptr<void>& pointer) {
    const std::weak_ptr<void> none;
    return pointer.owner_before(none) || none.owner_before(pointer);
}

} // namespace

NSApplication& NSApplication::shared() {
    static NSApplication application;
    return application;
}

bool NSApplication::sendAction(const Selector& action, const std::weak_ptr<void>& to,
                               const std::shared_ptr<ActionSender>& from) {
    const std::shared_ptr<void> target = to.lock();
    if (!target && wasSet(to))
        return false;
    // Its sender may be given another action, or end, while this one is performed.
    const Selector keptAlive = action;
    const std::shared_ptr<ActionSender> sender = from;
    return keptAlive.perform(target, sender);
}

void NSApplication::setDark(bool dark) {
    if (std::exchange(isDark_, dark) != dark)
        NSNotificationCenter::defaultCenter()->post(NSNotificationName(looksDidChangeNotification),
                                                    nullptr);
}

} // namespace zorvan
