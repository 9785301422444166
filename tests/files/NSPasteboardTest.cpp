#include "ChildProcess.h"
#include <tests/Testing.h>

#include <zorvan/files/NSPasteboard.h>

TEST(NSPasteboard, GivesTheFilesAmongItsObjects) {
    const URL file({.fileURLWithPath = "/a b"}), other({.fileURLWithPath = "/c"});
    const auto pasteboard = NSPasteboard::create();
    EXPECT_THAT(pasteboard->fileURLs(), testing::IsEmpty());
    pasteboard->writeObjects({file, "file:///text", *URL::make({.string = "http://a.org/"})});
    pasteboard->writeObjects({other, file});
    EXPECT_THAT(pasteboard->fileURLs(), testing::ElementsAre(file, other, file));
    EXPECT_EQ(pasteboard->objects().size(), 5u);

    const std::int64_t count = pasteboard->changeCount();
    EXPECT_EQ(pasteboard->clearContents(), count + 1);
    EXPECT_EQ(pasteboard->changeCount(), count + 1);
    EXPECT_THAT(pasteboard->fileURLs(), testing::IsEmpty());
    EXPECT_EQ(NSPasteboard::generalPasteboard(), NSPasteboard::generalPasteboard());
    EXPECT_NE(NSPasteboard::generalPasteboard(), pasteboard);
}

TEST(NSPasteboard, IsNobodysInAChildProcess) {
    const auto pasteboard = NSPasteboard::create();
    pasteboard->writeObjects({std::string(1 << 20, 'x')}); // which takes a while to copy
    std::atomic<bool> isDone = false;
    std::jthread reader([&] {
        while (!isDone)
            pasteboard->objects();
    });
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(exitStatus(startChild([&] {
                      alarm(10);
                      EXPECT_EQ(pasteboard->objects().size(), 1u);
                  })),
                  0);
    isDone = true;
}
