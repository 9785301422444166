#include <zorvan/observation/ValueLoader.h>

#include <zorvan/platform/dispatch/NSThread.h>
#include <zorvan/platform/foundation/fatalError.h>

namespace zorvan::internal {

void requireMainThreadForRequest() {
    if (!NSThread::isMainThread())
        fatalError("A value that is not loaded can only be requested on the main thread.");
}

void requireBackgroundThreadForWait() {
    if (NSThread::isMainThread())
        fatalError("The main thread cannot wait for a value that it must complete.");
}

} // namespace zorvan::internal
