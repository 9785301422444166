#include <tests/Testing.h>

#include <zorvan/platform/foundation/LibraryLog.h>
#include <zorvan/platform/foundation/internal/functionBeside.h>

extern "C" void zorvanIsNowhere(int);

namespace {

using Level = LibraryLog::Level;
using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

class LibraryLogTest : public testing::Test {
protected:
    LibraryLogTest() { CaptureStderr(); }
    ~LibraryLogTest() override { LibraryLog::setHandler({}); }
};

TEST_F(LibraryLogTest, AHandlerHasEverythingAndStandardErrorWhatIsWrongAlone) {
    std::vector<std::string> told;
    LibraryLog::setHandler([&](const LibraryLog::Entry& entry) {
        told.push_back(std::to_string(static_cast<int>(entry.level)) + std::string(entry.category) +
                       std::string(entry.message));
    });
    LibraryLog::write({Level::information, "a", "x"});
    LibraryLog::write({Level::error, "b", "y"});
    LibraryLog::setHandler({});
    EXPECT_THAT(told, ElementsAre("0ax", "2by"));
    LibraryLog::write({Level::information, "a", "well again"});
    LibraryLog::write({Level::warning, "a", "with 100 % less"});
    LibraryLog::write({Level::error, "b", std::string("lost for good").substr(0, 4)});
    EXPECT_EQ(GetCapturedStderr(), "with 100 % less\nlost\n");
}

TEST_F(LibraryLogTest, WhatAHandlerFailsToTakeIsNotLost) {
    int calls = 0;
    LibraryLog::setHandler([&](const LibraryLog::Entry&) {
        if (++calls == 1)
            throw std::runtime_error("no room");
        LibraryLog::write({Level::warning, "a", "from within"});
    });
    LibraryLog::write({Level::warning, "a", "thrown at"});
    LibraryLog::write({Level::warning, "a", "taken"});
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(GetCapturedStderr(), "thrown at\nfrom within\n");
}

TEST_F(LibraryLogTest, EachEntryReachesOneHandlerWhileTheyChange) {
    constexpr int entries = 20'000;
    std::atomic<int> first = 0, second = 0;
    const auto counting = [](std::atomic<int>& count) {
        // A text of its own, so that one that is let go of too early is found.
        return [&count, text = std::string(64, 'x')](const LibraryLog::Entry&) {
            count += text == std::string(64, 'x');
        };
    };
    LibraryLog::setHandler(counting(first));
    const std::jthread speaker([] {
        for (int i = 0; i < entries; ++i)
            LibraryLog::write({Level::warning, "a", "1"});
    });
    while (first + second < entries) {
        LibraryLog::setHandler(counting(second));
        LibraryLog::setHandler(counting(first));
    }
    EXPECT_EQ(GetCapturedStderr(), "");
}

TEST_F(LibraryLogTest, NamesALibraryThatCannotBeLoadedAndTheSwitchOfOneThatWasNotBuilt) {
    // A function that is nowhere: the test would not link if it were asked for.
#define ZORVAN_TEST_MISSING BESIDE, "libzorvan-none.so"
#define ZORVAN_TEST_LEFT_OUT LEFT_OUT, "-DZORVAN_TEST=ON"
    EXPECT_EQ(ZORVAN_FUNCTION(ZORVAN_TEST_MISSING, zorvanIsNowhere), nullptr);
    EXPECT_EQ(ZORVAN_FUNCTION(ZORVAN_TEST_LEFT_OUT, zorvanIsNowhere), nullptr);
    EXPECT_THAT(GetCapturedStderr(),
                testing::MatchesRegex("[^\n]*/libzorvan-none.so: [^\n]*\n"
                                      "This needs a build of the library with -DZORVAN_TEST=ON\n"));
}

} // namespace
