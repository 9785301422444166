#include <tests/Testing.h>

#include <zorvan/platform/foundation/internal/UTF8.h>

using namespace zorvan::internal;

TEST(UTF8, KnowsWellFormedText) {
    for (const char* good : {"", "a", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF",
                             "\xEE\x80\x80", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"})
        EXPECT_TRUE(isUTF8(good)) << good;
    for (const char* bad :
         {"\x80", "\xC1\xBF", "\xC2", "\xC2\x41", "\xE0\x9F\xBF", "\xE2\x82", "\xED\xA0\x80",
          "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xF0\x90\x80"})
        EXPECT_FALSE(isUTF8(bad)) << testing::PrintToString(std::string(bad));
}
