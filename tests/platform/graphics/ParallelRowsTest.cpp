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

TEST(ParallelRows, NestsAndPassesExceptionsOn) {
    std::atomic<std::int64_t> sum = 0;
    parallelRows(50, 1, [&](std::int64_t first, std::int64_t last) {
        for (std::int64_t x = first; x < last; ++x)
            parallelRows(40, 1, [&](std::int64_t begin, std::int64_t end) { sum += end - begin; });
    });
    EXPECT_EQ(sum, 50 * 40);
    EXPECT_THROW(parallelRows(100, 1,
                              [](std::int64_t first, std::int64_t) {
                                  if (first > 50)
                                      throw std::runtime_error("stop");
                              }),
                 std::runtime_error);
}

} // namespace
