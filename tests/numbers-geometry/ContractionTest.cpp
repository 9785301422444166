#include "Printing.h"
#include <tests/Testing.h>

#include <zorvan/numbers-geometry/Line.h>
#include <zorvan/numbers-geometry/Segment.h>
#include <zorvan/numbers-geometry/Triangle.h>

// An application compiled for a processor that multiplies and adds in one step, by a compiler that
// makes use of it: this file is. What is compared exactly must not depend on it.

#if defined(__x86_64__)
#define ON_SUCH_A_PROCESSOR __attribute__((target("fma"), noinline))
#else
#define ON_SUCH_A_PROCESSOR __attribute__((noinline))
#endif

namespace {

bool canRun() {
#if defined(__x86_64__)
    return __builtin_cpu_supports("fma");
#else
    return true;
#endif
}

// Each takes the same values twice where the compiler must not know that they are the same.

ON_SUCH_A_PROCESSOR bool parallelLinesMeet(CGPoint p, CGPoint same) {
    return Line(p.x, p.y, 1).intersects(Line(same.x, same.y, 2)).has_value();
}
ON_SUCH_A_PROCESSOR bool equalProductsOverlap(CGPoint p, CGPoint same, double s) {
    return (p * s).overlap(same * s, 0);
}
ON_SUCH_A_PROCESSOR double leanOfUpright(double x, double same, double s) {
    return Segment(CGPoint(x * s, 0), CGPoint(same * s, 1)).deltaX();
}
ON_SUCH_A_PROCESSOR double areaOfALine(CGPoint p, CGPoint same) {
    return Triangle({0, 0}, p, same).signedArea();
}

} // namespace

TEST(Contraction, ComparesWhatWasRounded) {
    if (!canRun())
        GTEST_SKIP() << "the processor does not multiply and add in one step";
    std::mt19937_64 random(3);
    std::uniform_real_distribution<double> number(1, 10);
    for (int i = 0; i < 2000; ++i) {
        const CGPoint p(number(random), number(random));
        ASSERT_FALSE(parallelLinesMeet(p, p));
        ASSERT_TRUE(equalProductsOverlap(p, p, p.y));
        ASSERT_EQ(leanOfUpright(p.x, p.x, p.y), 0);
        ASSERT_EQ(areaOfALine(p, p), 0);
    }
}
