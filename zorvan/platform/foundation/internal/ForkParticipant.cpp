#include <zorvan/platform/foundation/internal/ForkParticipant.h>

#include <chrono>
#include <pthread.h>
#include <thread>
#include <utility>

namespace zorvan::internal {

/// What the C library calls around a fork.
struct ForkParticipant::Fork {
    constinit static inline std::mutex joining; // held over the fork
    constinit static inline ForkParticipant* first = nullptr;

    static bool hold() {
        for (ForkParticipant* each = first; each; each = each->next_)
            if (!each->tryToHold()) {
                letGoBefore(each);
                return false;
            }
        return true;
    }
    static void letGoBefore(const ForkParticipant* end) {
        for (ForkParticipant* each = first; each != end; each = each->next_)
            each->letGo();
    }

    static void prepare() {
        for (joining.lock(); !hold(); joining.lock()) {
            joining.unlock();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        for (ForkParticipant* each = first; each; each = each->next_)
            each->prepare();
        for (ForkParticipant* each = first; each; each = each->next_)
            each->lock();
    }
    static void end(bool isChild) {
        for (ForkParticipant* each = first; each; each = each->next_)
            each->end(isChild);
        joining.unlock();
    }
};

ForkParticipant::Joined::Joined(ForkParticipant& participant) noexcept : participant_(participant) {
    static const int registered = ::pthread_atfork(
        Fork::prepare, [] { Fork::end(false); }, [] { Fork::end(true); });
    (void)registered;
    const std::lock_guard lock(Fork::joining);
    participant.next_ = std::exchange(Fork::first, &participant);
}

ForkParticipant::Joined::~Joined() {
    const std::lock_guard lock(Fork::joining);
    ForkParticipant** place = &Fork::first;
    while (*place != &participant_)
        place = &(*place)->next_;
    *place = participant_.next_;
}

} // namespace zorvan::internal
