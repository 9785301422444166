#include <tests/Testing.h>

#include <zorvan/platform/graphics/parallelRows.h>

namespace {

TEST(ParallelRows, EachRowIsVisitedOnceInRangesThatKeepToTheGrain) {
    for (std::int64_t count : {0, 1, 7, 8, 9, 1000})
        for (std::int64_t grain : {1, 8, 64}) {
            std::vector<std::atomic<int>> visits(static_cast<std::size_t>(count));
            std::atomic<int> misplaced = 0;
            parallelRows(count, grain, [&](std::int64_t first, std::int64_t last) {
                misplaced += first % grain != 0 || (last % grain != 0 && last != count);
                for (std::int64_t row = first; row < last; ++row)
                    ++visits[static_cast<std::size_t>(row)];
            });
            EXPECT_EQ(misplaced, 0);
            for (const auto& visit : visits)
                EXPECT_EQ(visit, 1);
        }
}

} // namespace
