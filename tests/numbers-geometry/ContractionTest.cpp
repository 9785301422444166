#include "Printing.h"
#include <tests/Testing.h>

#include <zorvan/numbers-geometry/Line.h>
#include <zorvan/numbers-geometry/Segment.h>
#include <zorvan/numbers-geometry/Triangle.h>

// An application compiled for a processor that multiplies and adds in one step, by a compiler that
// makes use of it: this file is. What is compared exactly must not depend on it.

#if defined(__x86_64__)
#define ON_SUCH_A_PROCESSOR __attribute__((target("fma"), noinline))
#define CAN_RUN __builtin_cpu_supports("fma")
#else
#define ON_SUCH_A_PROCESSOR __attribute__((noinline))
#define CAN_RUN true
#endif

/// Whether parallel lines do not meet, equal products overlap, what stands upright does not lean,
/// and a line has no area. The compiler must not know that the two points are the same.
ON_SUCH_A_PROCESSOR static std::array<bool, 4> compare(CGPoint p, CGPoint same, double s) {
    return {!Line(p.x, p.y, 1).intersects(Line(same.x, same.y, 2)), (p * s).overlap(same * s, 0),
            Segment(CGPoint(p.x * s, 0), CGPoint(same.x * s, 1)).deltaX() == 0,
            Triangle({0, 0}, p, same).signedArea() == 0};
}

TEST(Contraction, ComparesWhatWasRounded) {
    if (!CAN_RUN)
        GTEST_SKIP() << "the processor does not multiply and add in one step";
    std::mt19937_64 random(3);
    std::uniform_real_distribution<double> number(1, 10);
    for (int i = 0; i < 2000; ++i) {
        const CGPoint p(number(random), number(random));
        ASSERT_THAT(compare(p, p, p.y), ElementsAre(true, true, true, true));
    }
}
