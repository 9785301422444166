#include <zorvan/platform/dispatch/NSThread.h>

#include <unistd.h>

namespace zorvan {

bool NSThread::isMainThread() noexcept {
    // The kernel gives the first thread the number of the process.
    thread_local const bool isMain = ::gettid() == ::getpid();
    return isMain;
}

} // namespace zorvan
