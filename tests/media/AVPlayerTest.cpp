#include "TestMovies.h"
#include <tests/Testing.h>
#include <tests/waitUntil.h>

#include <zorvan/media/AVAssetImageGenerator.h>
#include <zorvan/media/AVPlayer.h>
#include <zorvan/platform/avfoundation/MediaPlayer.h>
#include <zorvan/platform/dispatch/NSThread.h>

#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
#endif

/// After how many more allocations of this thread one fails; below 0 none does.
static thread_local int allocationsLeft = -1;

void* operator new(std::size_t size) {
    void* const memory =
        allocationsLeft >= 0 && allocationsLeft-- == 0 ? nullptr : std::malloc(size);
    return memory ? memory : throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

using Clock = std::chrono::steady_clock;

void pump(Clock::duration time) { MainQueue::runUntil(Clock::now() + time); }

/// The number that the picture on show carries; -1 without a picture.
int shownNumber(const AVPlayer& player) {
    const auto picture = player.currentItem()->currentPicture();
    return picture ? testmovies::numberOf(*picture) : -1;
}

std::shared_ptr<AVPlayer> readyPlayer(const URL& url) {
    auto player = AVPlayer::create(url);
    EXPECT_TRUE(waitUntil(
        [&] { return player->currentItem()->status() == AVPlayerItem::Status::readyToPlay; }));
    return player;
}

/// Starts something that takes a completion, and waits for it.
bool finishes(const std::function<void(AVPlayer::Completion)>& start) {
    std::optional<bool> result;
    start([&](bool finished) { result = finished; });
    EXPECT_TRUE(waitUntil([&] { return result.has_value(); }));
    return result.value_or(false);
}

bool seekTo(AVPlayer& player, double seconds) {
    return finishes(
        [&](auto done) { player.seekAccurately(CMTime({.seconds = seconds}), std::move(done)); });
}

bool stepBy(AVPlayer& player, std::int64_t count) {
    return finishes([&](auto done) { player.step({.byCount = count}, std::move(done)); });
}

TEST(AVPlayer, SeeksToThePictureOfATimeOrAKeyPictureBefore) {
    const auto player = readyPlayer(testmovies::numbers("plain"));
    EXPECT_EQ(player->currentTime(), kCMTimeZero);
    EXPECT_EQ(player->duration()->seconds(), 4);
    EXPECT_EQ(shownNumber(*player), 0);
    struct {
        double seconds;
        int exact, key;
    } const table[] = {{1, 25, 25}, {1.0399, 25, 25}, {1.04, 26, 25}, {0, 0, 0},
                       {-5, 0, 0},  {2.5, 62, 50},    {1.9, 47, 25},  {INFINITY, 99, 75}};
    for (const auto& [seconds, exact, key] : table) {
        EXPECT_TRUE(seekTo(*player, seconds));
        EXPECT_EQ(shownNumber(*player), exact) << seconds;
        EXPECT_NEAR(player->currentTime().seconds(), exact / 25.0, 1e-6) << seconds;
        EXPECT_TRUE(finishes([&, s = seconds](auto done) {
            player->seekInaccurately(CMTime({.seconds = s}), std::move(done));
        }));
        EXPECT_EQ(shownNumber(*player), key) << seconds;
    }
    EXPECT_FALSE(seekTo(*player, NAN));
    EXPECT_EQ(shownNumber(*player), 75);
}

TEST(AVPlayer, AccurateSeeksKeepToThePicturesOfFractionalRates) {
    // The first says that its pictures last equally long, the last has no index. The second
    // rounds times to milliseconds.
    for (const std::string container : {"mp4", "mkv", "ts"}) {
        const auto player = readyPlayer(testmovies::numbers(
            "ntsc",
            {.rate = "24000/1001", .container = container, .count = 60, .keyInterval = 250}));
        for (const int number : {1, 17, 58, 59, 30}) {
            const double start = number * 1001 / 24000.0;
            for (const double offset : {0.001, 0.02, 0.0405}) {
                EXPECT_TRUE(seekTo(*player, start + offset));
                EXPECT_EQ(shownNumber(*player), number) << container << start << " + " << offset;
            }
            EXPECT_TRUE(stepBy(*player, -1));
            EXPECT_EQ(shownNumber(*player), number - 1) << container;
        }
    }
}

TEST(AVPlayer, AccurateSeeksKeepToPicturesOfUnequalLength) {
    // The odd pictures come 16 ms late, so that the even ones last 56 ms and the odd ones 24.
    const auto player = readyPlayer(testmovies::numbers(
        "unequal", {.count = 50,
                    .options = "-vf settb=1/90000,setpts=(N+mod(N\\,2)*0.4)/25/TB -fps_mode vfr "
                               "-enc_time_base 1/90000 -video_track_timescale 90000"}));
    for (const auto& [seconds, number] :
         {std::pair(0.41, 10), {0.45, 10}, {0.457, 11}, {0.479, 11}, {0.481, 12}, {1.83, 45}}) {
        EXPECT_TRUE(seekTo(*player, seconds));
        EXPECT_EQ(shownNumber(*player), number) << seconds;
    }
}

TEST(AVPlayer, AgreesWithTheGeneratorOnTimesAndReachesTheEnd) {
    struct {
        std::string container, options;
        std::vector<int> firsts;
        double duration;
    } const table[] = {{"mp4", "-itsoffset 3", {0}, 5},
                       {"mkv", "-itsoffset 3", {0}, 5},
                       {"ts", "-itsoffset 3", {0}, 2},     // the file's first time is 0
                       {"mov", "-ss 0.7", {17, 18}, 1.3}}; // cut within 17, as libmpv sees it
    for (const auto& [container, options, firsts, duration] : table) {
        const URL whole = testmovies::numbers("whole", {.container = "mp4", .count = 50});
        const URL movie =
            testmovies::make("moved." + container, options + " -i " + whole.path() +
                                                       " -c copy -avoid_negative_ts disabled");
        const auto player = readyPlayer(movie);
        EXPECT_NEAR(player->duration()->seconds(), duration, 0.05) << container;
        const AVAssetImageGenerator generator{.asset = AVAsset::create(movie),
                                              .requestedTimeToleranceBefore = kCMTimeZero,
                                              .requestedTimeToleranceAfter = kCMTimeZero};
        for (const double seconds : {0.0, 0.5, 1.0, 100.0}) {
            EXPECT_TRUE(seekTo(*player, seconds));
            const int number = shownNumber(*player);
            const auto image = generator.copyCGImage(CMTime({.seconds = seconds})).image;
            EXPECT_EQ(testmovies::numberOf(image->bitmap()), number) << container << seconds;
            if (seconds == 0) {
                EXPECT_THAT(firsts, testing::Contains(number)) << container;
            } else if (seconds == 100) {
                EXPECT_EQ(number, 49) << container;
            }
        }
    }
}

/// Throws when it is told of the clock, as a player without memory would.
class Thrower : public avfoundation::MediaPlayer::Listener {
public:
    void statusDidChange(avfoundation::MediaPlayer::Status) override {}
    void clockDidChange(const avfoundation::PlaybackClock&, bool isJump) override {
        if (throwing == (isJump ? 2 : 1))
            throw std::bad_alloc();
    }
    std::atomic<int> throwing = 0; // 1 as a seek begins, 2 as it lands
};

TEST(MediaPlayer, FailsWhenItsThreadFindsNoMemoryAndTellsWhoeverWaits) {
    using avfoundation::MediaPlayer;
    for (const int throwing : {1, 2}) {
        const auto listener = std::make_shared<Thrower>();
        MediaPlayer player(testmovies::numbers("plain").path(), 0, listener);
        ASSERT_TRUE(waitUntil([&] { return player.status() == MediaPlayer::Status::ready; }));
        EXPECT_TRUE(player.picture());
        listener->throwing = throwing;
        std::atomic<int> refused = 0;
        for (int i = 0; i < 3; ++i)
            player.seek(1, MediaPlayer::Precision::exact, [&](bool landed) { refused += !landed; });
        EXPECT_TRUE(waitUntil([&] { return refused == 3; })) << throwing;
        EXPECT_EQ(player.status(), MediaPlayer::Status::failed);
        EXPECT_FALSE(player.picture());
        player.seek(1, MediaPlayer::Precision::exact, [&](bool landed) { refused += !landed; });
        EXPECT_EQ(refused, 4);
    }
}

TEST(AVPlayer, AnItemThatFindsNoMemoryForAPlayerFails) {
    const auto asset = AVAsset::create(testmovies::numbers("plain"));
    AVPlayer::create(AVPlayerItem::create(asset)); // loads libmpv
    bool hasFailed = true;
    for (int after = 0; hasFailed; ++after) {
        const auto player = AVPlayer::create();
        const auto item = AVPlayerItem::create(asset);
        allocationsLeft = after;
        player->replaceCurrentItem(item);
        hasFailed = allocationsLeft < 0;
        allocationsLeft = -1;
        EXPECT_EQ(item->status() == AVPlayerItem::Status::failed, hasFailed) << after;
        EXPECT_EQ(player->rate(), 0);
        if (hasFailed) {
            EXPECT_FALSE(seekTo(*player, 1)) << after;
        }
    }
}

TEST(AVPlayer, AFurtherSeekTakesThePlaceOfTheOneThatWaits) {
    const auto player = readyPlayer(testmovies::numbers("plain"));
    std::vector<int> finished, dropped;
    for (int i = 1; i <= 20; ++i)
        player->seekAccurately(CMTimeMake(i, 10),
                               [&, i](bool landed) { (landed ? finished : dropped).push_back(i); });
    EXPECT_EQ(player->currentTime(), CMTimeMake(2, 1)) << "the time asked for";
    ASSERT_TRUE(waitUntil([&] { return finished.size() + dropped.size() == 20; }));
    EXPECT_EQ(finished.back(), 20);
    EXPECT_FALSE(dropped.empty());
    EXPECT_EQ(shownNumber(*player), 50);
}

TEST(AVPlayer, StepsBothWaysAndStopsAtTheEnds) {
    const auto player = readyPlayer(testmovies::numbers("plain"));
    ASSERT_TRUE(seekTo(*player, 1));
    for (const auto& [count, number] :
         {std::pair(1, 26), {1, 27}, {-1, 26}, {-3, 23}, {7, 30}, {0, 30}, {-100, 0}, {2, 2}}) {
        EXPECT_TRUE(stepBy(*player, count));
        EXPECT_EQ(shownNumber(*player), number) << count;
        EXPECT_NEAR(player->currentTime().seconds(), number / 25.0, 1e-6) << count;
    }
    player->step({.byCount = 30}, [](bool) {});
    EXPECT_TRUE(stepBy(*player, 2)); // which waits for the first
    EXPECT_EQ(shownNumber(*player), 34);
    EXPECT_TRUE(stepBy(*player, std::numeric_limits<std::int64_t>::max()));
    EXPECT_EQ(shownNumber(*player), 99);
    EXPECT_TRUE(stepBy(*player, -1));
    player->seekNextFrame();
    player->seekPreviousFrame();
    player->seekPreviousFrame();
    EXPECT_TRUE(waitUntil([&] { return player->currentTime() == CMTimeMake(97, 25); }));

    ASSERT_TRUE(seekTo(*player, 0));
    player->play();
    EXPECT_TRUE(stepBy(*player, 5));
    EXPECT_TRUE(player->isPlaying());
    EXPECT_TRUE(waitUntil([&] { return player->currentTime() > 0.5; }));
}

TEST(AVPlayer, PlaysPausesAndEnds) {
    const auto player = readyPlayer(testmovies::numbers("short", {.count = 20}));
    player->playPause();
    EXPECT_EQ(player->rate(), 1);
    ASSERT_TRUE(waitUntil([&] { return shownNumber(*player) >= 5; }));
    player->playPause();
    pump(100ms); // for the core to have stopped
    const int number = shownNumber(*player);
    pump(200ms);
    EXPECT_EQ(shownNumber(*player), number);
    EXPECT_LT(number, 19);

    player->setRate(4);
    EXPECT_TRUE(waitUntil([&] { return !player->isPlaying(); }));
    EXPECT_EQ(shownNumber(*player), 19);
    player->play();
    EXPECT_TRUE(waitUntil([&] { return !player->isPlaying(); })) << "it stays at the end";
    ASSERT_TRUE(seekTo(*player, 0));
    player->play();
    EXPECT_TRUE(waitUntil([&] { return shownNumber(*player) >= 3; })) << "and leaves it by a seek";
    // Rates that cannot be played.
    player->setRate(-1);
    EXPECT_EQ(player->rate(), 0);
    player->setRate(std::numeric_limits<float>::quiet_NaN());
    EXPECT_TRUE(player->isPlaying());
    player->playPause();
    EXPECT_EQ(player->rate(), 0);
    player->setRate(std::numeric_limits<float>::infinity());
    EXPECT_EQ(player->rate(), 100);
    EXPECT_DEATH(
        player->addTimeObserver({.fps = std::int64_t{1} << 31}, [](const CMTime&) {}),
        "^Frame rate 2147483648 does not fit a time scale, which is at most 2147483647\n$");
}

TEST(AVPlayer, ItemsMoveFromPlayerToPlayer) {
    const auto player = AVPlayer::create();
    EXPECT_FALSE(player->duration());
    EXPECT_EQ(player->currentTime(), kCMTimeZero);
    EXPECT_FALSE(seekTo(*player, 1));
    EXPECT_FALSE(stepBy(*player, 1));
    player->playPause();
    EXPECT_TRUE(player->isPlaying());
    const auto item = AVPlayerItem::create(testmovies::numbers("plain"));
    player->replaceCurrentItem(item);
    EXPECT_TRUE(waitUntil([&] { return shownNumber(*player) >= 3; })) << "it plays its first item";
    EXPECT_DEATH(AVPlayer::create(item), "^AVPlayerItem is already in a player\n$");
    player->replaceCurrentItem(nullptr);
    EXPECT_EQ(item->status(), AVPlayerItem::Status::unknown);
    const auto second = AVPlayer::create(item);
    ASSERT_TRUE(seekTo(*second, 2));
    EXPECT_EQ(shownNumber(*second), 50);
}

TEST(AVPlayer, ObserversAreToldOfJumpsStopsAndTimeAtEveryRate) {
    const auto player = readyPlayer(testmovies::numbers("plain"));
    pump(50ms);
    std::vector<double> times;
    bool isMain = true;
    const auto observer = player->addTimeObserver({.fps = 50}, [&](const CMTime& time) {
        times.push_back(time.seconds());
        isMain = isMain && NSThread::isMainThread();
    });
    pump(100ms);
    EXPECT_TRUE(times.empty()) << "paused, nothing happens";
    ASSERT_TRUE(seekTo(*player, 3) && seekTo(*player, 1) && stepBy(*player, 1));
    EXPECT_EQ(times, (std::vector<double>{3, 1, 1.04}));
    for (const float rate : {1.0f, 2.0f}) {
        ASSERT_TRUE(seekTo(*player, 0));
        times.clear();
        player->setRate(rate);
        ASSERT_TRUE(waitUntil([&] { return player->currentTime() > 1; }));
        player->pause();
        pump(200ms);
        const double stopped = player->currentTime().seconds();
        EXPECT_NEAR(times.back(), stopped, 0.05) << "told where it stopped";
        // Every 20 ms of the movie, but a busy machine may take some together.
        EXPECT_GT(times.size(), 20u) << rate;
        EXPECT_LT(static_cast<double>(times.size()), stopped * 50 + 10) << rate;
        // Nor does the clock go back, by more than a busy machine makes it correct itself.
        const auto goesBack = [](double one, double next) { return next < one - 0.05; };
        EXPECT_EQ(std::ranges::adjacent_find(times, goesBack), times.end()) << rate;
    }
    EXPECT_TRUE(isMain);
    player->removeTimeObserver(observer);
    const std::size_t count = times.size();
    ASSERT_TRUE(seekTo(*player, 0));
    EXPECT_EQ(times.size(), count) << "removed";
}

TEST(AVPlayer, ObserversMayEndWithinTheirBlockAndRunOnOtherQueues) {
    const auto player = readyPlayer(testmovies::numbers("plain"));
    int calls = 0;
    std::shared_ptr<PeriodicTimeObserver> observer;
    observer = player->addTimeObserver([&](const CMTime&) {
        ++calls;
        player->removeTimeObserver(observer);
        player->removeTimeObserver(observer);
    });
    std::atomic<int> elsewhere = 0;
    player->addPeriodicTimeObserver(
        {.interval = CMTimeMake(1, 50), .queue = DispatchQueue::create("observers")},
        [&](const CMTime&) { elsewhere += NSThread::isMainThread() ? 1000 : 1; });
    int jumps = 0;
    player->addTimeObserver({.fps = 0}, [&](const CMTime&) { ++jumps; });
    player->play();
    ASSERT_TRUE(waitUntil([&] { return elsewhere > 10; }));
    EXPECT_LT(elsewhere, 1000);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(jumps, 1) << "without an interval: the start alone";
}

TEST(AVPlayer, SeveralAtOnceDoNotDisturbEachOther) {
    const URL movie = testmovies::numbers("plain");
    const auto first = readyPlayer(movie), second = readyPlayer(movie);
    int landed = 0;
    first->seekAccurately(CMTimeMake(5, 25), [&](bool finished) { landed += finished; });
    second->seekAccurately(CMTimeMake(30, 25), [&](bool finished) { landed += finished; });
    ASSERT_TRUE(waitUntil([&] { return landed == 2; }));
    second->play();
    ASSERT_TRUE(waitUntil([&] { return shownNumber(*second) > 35; }));
    EXPECT_EQ(shownNumber(*first), 5);
}

TEST(AVPlayer, GoesAwayAtAnyMoment) {
    const URL movie = testmovies::numbers("plain");
    const auto begun = Clock::now();
    int answers = 0;
    for (int i = 0; i < 24; ++i) {
        auto player = AVPlayer::create(movie);
        player->addTimeObserver([kept = player->currentItem()](const CMTime&) {});
        player->play();
        pump(std::chrono::milliseconds(i * 4));
        player->seekAccurately(CMTimeMake(3, 1), [&](bool) { ++answers; });
        player->step({.byCount = 3}, [&](bool) { ++answers; });
        if (i % 3 == 1)
            pump(3ms);
        player.reset();
    }
    EXPECT_TRUE(waitUntil([&] { return answers == 48; })) << answers;
    EXPECT_LT(Clock::now() - begun, 60s);
}

TEST(AVPlayer, PlaysSounds) {
    const auto player = readyPlayer(testmovies::make("tone.m4a", "-f lavfi -i sine=d=2 -c:a aac"));
    EXPECT_FALSE(player->currentItem()->currentPicture());
    EXPECT_TRUE(seekTo(*player, 1.5));
    EXPECT_NEAR(player->currentTime().seconds(), 1.5, 0.25);
    stepBy(*player, 1); // there is no picture to step to; it must come back all the same
    player->play();
    EXPECT_TRUE(waitUntil([&] { return !player->isPlaying(); }));
    EXPECT_GT(player->currentTime(), 1.5);
}

TEST(AVPlayer, ShowsPicturesUpright) {
    testmovies::numbers("turned", {.count = 5});
    testmovies::setMatrix("turned.mp4", 0, {0, 1, -1, 0, 32, 0}); // clockwise
    const auto player = readyPlayer(testmovies::url("turned.mp4"));
    ASSERT_TRUE(seekTo(*player, 0.041));
    const auto picture = player->currentItem()->currentPicture();
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->width(), 32);
    EXPECT_EQ(picture->height(), 128);
    EXPECT_GT(picture->row(8)[16 * 4], 200) << "the lowest bit, once at the left";
    EXPECT_LT(picture->row(100)[16 * 4], 50);
    EXPECT_EQ(picture->row(100)[16 * 4 + 3], 255);
    // Neither narrow nor wide pixels change how many rows there are.
    for (const auto& [ratio, width] : {std::pair("1/3", 43), {"3", 384}}) {
        const auto other = readyPlayer(
            testmovies::numbers("pixels" + std::to_string(width),
                                {.count = 5, .options = std::string("-vf setsar=") + ratio}));
        const auto shown = other->currentItem()->currentPicture();
        EXPECT_EQ(shown->width(), width);
        EXPECT_EQ(shown->height(), 32);
    }
}

} // namespace
