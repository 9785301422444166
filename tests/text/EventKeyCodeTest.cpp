#include <tests/Testing.h>

#include <zorvan/text/EventKeyCode.h>

TEST(EventKeyCode, StartsWithTheInitialTable) {
    using K = EventKeyCode;
    const std::pair<const K&, int> table[] = {
        {K::digit0, 29},      {K::digit1, 18},   {K::digit2, 19},     {K::digit3, 20},
        {K::digit4, 21},      {K::digit5, 23},   {K::digit6, 22},     {K::digit7, 26},
        {K::digit8, 28},      {K::digit9, 25},   {K::space, 49},      {K::escape, 53},
        {K::enter, 36},       {K::delete_, 51},  {K::tab, 48},        {K::letterA, 12},
        {K::letterB, 11},     {K::letterC, 8},   {K::letterD, 2},     {K::letterE, 14},
        {K::letterF, 3},      {K::letterG, 5},   {K::letterH, 4},     {K::letterI, 34},
        {K::letterJ, 38},     {K::letterK, 40},  {K::letterL, 37},    {K::letterM, 41},
        {K::letterN, 45},     {K::letterO, 31},  {K::letterP, 35},    {K::letterQ, 0},
        {K::letterR, 15},     {K::letterS, 1},   {K::letterT, 17},    {K::letterU, 32},
        {K::letterV, 9},      {K::letterW, 6},   {K::letterX, 7},     {K::letterY, 16},
        {K::letterZ, 13},     {K::upArrow, 126}, {K::downArrow, 125}, {K::leftArrow, 123},
        {K::rightArrow, 124},
    };
    static_assert(std::size(table) == 45);
    for (const auto& [key, code] : table)
        EXPECT_EQ(key.rawValue, code);
}

TEST(EventKeyCode, IsReassignedForTheProcess) {
    const EventKeyCode before = EventKeyCode::letterA;
    EventKeyCode::letterA = EventKeyCode({.rawValue = 0});
    EXPECT_EQ(EventKeyCode::letterA, EventKeyCode::letterQ);
    EventKeyCode::letterA = before;
    EXPECT_NE(EventKeyCode(65535), EventKeyCode(127)); // every code is taken
}
