#include <zorvan/platform/graphics/parallelRows.h>

#include <zorvan/platform/dispatch/concurrentPerform.h>

#include <algorithm>

namespace zorvan {

void parallelRows(std::int64_t count, std::int64_t grain, RowsBody body, void* context) {
    if (count <= 0)
        return;
    const std::int64_t groups = (count - 1) / grain + 1;
    if (groups == 1)
        return body(context, 0, count);
    struct Rows {
        std::int64_t count, grain;
        RowsBody body;
        void* context;
    } rows = {count, grain, body, context};
    internal::performChunks(groups, &rows, [](void* loop, std::int64_t first, std::int64_t last) {
        const Rows& whole = *static_cast<Rows*>(loop);
        whole.body(whole.context, first * whole.grain, std::min(last * whole.grain, whole.count));
    });
}

} // namespace zorvan
