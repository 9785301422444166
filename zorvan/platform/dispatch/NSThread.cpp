#include <zorvan/platform/dispatch/NSThread.h>

#include <zorvan/platform/foundation/internal/ForkParticipant.h>

#include <unistd.h>

namespace zorvan {

namespace {

enum class Kind { unknown, main, other };
constinit thread_local Kind ofThisThread = Kind::unknown;

class AtFork final : public internal::ForkParticipant {
    void end(bool isChild) override {
        if (isChild)
            ofThisThread = Kind::main; // it is the only one
    }
};

constinit AtFork atFork;
const internal::ForkParticipant::Joined joined(atFork);

} // namespace

bool NSThread::isMainThread() noexcept {
    // The kernel gives the first thread the number of the process.
    if (ofThisThread == Kind::unknown)
        ofThisThread = ::gettid() == ::getpid() ? Kind::main : Kind::other;
    return ofThisThread == Kind::main;
}

} // namespace zorvan
