#include <zorvan/observation/DispatchQueue.h>

namespace zorvan {

void execute(DispatchQueue& queue, bool synchronized, Block block) {
    if (synchronized)
        queue.sync(block);
    else
        queue.async(std::move(block));
}

void async(DispatchQueue& queue, Until deadline, Block block) {
    const Date date = deadline.until;
    const Date now = std::chrono::system_clock::now();
    // The difference to a date in the far past has no representation.
    queue.asyncAfter(date <= now ? Date::duration::zero() : date - now, std::move(block));
}

} // namespace zorvan
