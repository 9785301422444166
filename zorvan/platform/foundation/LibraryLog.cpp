#include <zorvan/platform/foundation/LibraryLog.h>

#include <zorvan/platform/foundation/internal/ForkParticipant.h>

#include <cstdio>
#include <memory>
#include <mutex>
#include <utility>

namespace zorvan {

namespace {

constinit internal::BriefMutex mutex;
const internal::ForkParticipant::Joined joined(mutex);

struct Shared {
    std::shared_ptr<const LibraryLog::Handler> handler;

    std::shared_ptr<const LibraryLog::Handler> current() {
        const std::lock_guard lock(mutex);
        return handler;
    }
};

/// Never destroyed, since services speak while the program ends.
Shared& shared() {
    static Shared& shared = *new Shared;
    return shared;
}

thread_local bool isTelling = false;

struct Telling {
    Telling() noexcept { isTelling = true; }
    ~Telling() { isTelling = false; }
    Telling(const Telling&) = delete;
    Telling& operator=(const Telling&) = delete;
};

/// False when there is no handler to take the entry, or it fails.
bool tellHandler(const LibraryLog::Entry& entry) noexcept try {
    if (isTelling)
        return false;
    const auto handler = shared().current();
    if (!handler)
        return false;
    const Telling telling;
    (*handler)(entry);
    return true;
} catch (...) {
    return false;
}

} // namespace

void LibraryLog::setHandler(Handler handler) {
    auto own = handler ? std::make_shared<const Handler>(std::move(handler)) : nullptr;
    const std::lock_guard lock(mutex);
    shared().handler.swap(own); // the old one goes without the lock
}

void LibraryLog::write(const Entry& entry) noexcept {
    if (!tellHandler(entry) && entry.level != Level::information)
        std::fprintf(stderr, "%.*s\n", static_cast<int>(entry.message.size()),
                     entry.message.data());
}

} // namespace zorvan
