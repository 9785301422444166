#pragma once

#include <zorvan/platform/dispatch/DispatchQueue.h>
#include <zorvan/platform/dispatch/NSThread.h>
#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/foundation/Required.h>

#include <memory>
#include <type_traits>
#include <utility>

namespace zorvan {

/// Runs the block on the queue: when `synchronized`, waits for it, as `DispatchQueue::sync` does
/// (an exception reaches the caller; the queue must not be the one that the caller is running on);
/// otherwise returns at once, as `DispatchQueue::async` does.
void execute(DispatchQueue& queue, bool synchronized, Block block);

/// Runs the block on the main thread and returns its result: directly when called there, else with
/// `sync` on the main queue. An exception reaches the caller in both cases.
template <class Callable>
std::invoke_result_t<Callable&> safeSyncInMain(Callable&& block) {
    if (NSThread::isMainThread())
        return block();
    return DispatchQueue::main()->sync(block);
}

/// The date up to which `async` waits.
struct Until {
    Required<Date> until;
};

/// Queues the block when the date has come; as soon as possible when it has passed. The time left
/// is measured once, now: a later change of the system clock does not move it.
void async(DispatchQueue& queue, Until deadline, Block block);

} // namespace zorvan
