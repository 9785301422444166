#include <zorvan/platform/graphics/parallelRows.h>

#include <algorithm>

#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/parallel_for.h>

namespace zorvan {

void parallelRows(std::int64_t count, std::int64_t grain, RowsBody body, void* context) {
    if (count <= 0)
        return;
    const std::int64_t groups = (count - 1) / grain + 1;
    if (groups == 1)
        return body(context, 0, count);
    tbb::parallel_for(tbb::blocked_range<std::int64_t>(0, groups), [&](const auto& range) {
        body(context, range.begin() * grain, std::min(range.end() * grain, count));
    });
}

} // namespace zorvan
