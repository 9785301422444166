#include "TestMovies.h"
#include <tests/Testing.h>
#include <tests/waitUntil.h>

#include <zorvan/media/AVPlayer.h>

namespace {

/// Plays what can be played of it to its end; fails the test when that does not come.
AVPlayerItem::Status play(const URL& url) {
    const auto item = AVPlayerItem::create(url);
    const auto player = AVPlayer::create(item);
    player->setRate(20);
    EXPECT_TRUE(waitUntil([&] { return player->rate() == 0; })) << url.path();
    item->currentPicture();
    return item->status();
}

TEST(DamagedMovies, WhatIsNoMovieFails) {
    testmovies::numbers("good", {.count = 10});
    const std::string good = testmovies::path("good.mp4");
    std::string counting = testmovies::read("good.mp4"); // 16 million samples of one byte each
    counting.replace(counting.find("stsz") + 8, 8, std::string("\0\0\0\1\0\xFF\0\0", 8));
    std::vector<std::string> names{"pipe.mp4", "folder.mp4", "missing.mp4"};
    ASSERT_EQ(mkfifo(testmovies::path("pipe.mp4").c_str(), 0600), 0);
    ASSERT_EQ(mkdir(testmovies::path("folder.mp4").c_str(), 0700), 0);
    for (const auto& [name, content] : std::map<std::string, std::string>{
             {"empty.mp4", ""},
             {"counting.mp4", counting},
             {"text.mp4", "Dear reader, this is no movie.\n"},
             {"header.mp4", testmovies::read("good.mp4").substr(0, 40)},
             {"playlist.m3u8",
              "#EXTM3U\n#EXT-X-TARGETDURATION:1\n#EXTINF:1,\n" + good + "\n#EXT-X-ENDLIST\n"},
             {"playlist.mp4", "#EXTM3U\n" + good + "\n"},
             {"concat.ffconcat", "ffconcat version 1.0\nfile '" + good + "'\n"},
             {"edit.edl", "# mpv EDL v0\n" + good + "\n"},
             {"sheet.cue", "FILE \"" + good + "\" WAVE\n  TRACK 01 AUDIO\n"},
             {"cast.sdp", "v=0\no=- 0 0 IN IP4 127.0.0.1\ns=x\nc=IN IP4 127.0.0.1\nt=0 0\n"
                          "m=video 5004 RTP/AVP 96\na=rtpmap:96 H264/90000\n"}}) {
        testmovies::write(name, content);
        names.push_back(name);
    }
    for (const std::string& name : names) {
        const auto asset = AVAsset::create(testmovies::url(name));
        EXPECT_FALSE(asset->isReadable()) << name;
        EXPECT_FALSE(asset->duration().isNumeric()) << name;
        EXPECT_EQ(play(testmovies::url(name)), AVPlayerItem::Status::failed) << name;
    }
    for (const char* text : {"http://127.0.0.1:9/movie.mp4", "edl:///tmp/x", "lavfi://testsrc"})
        EXPECT_EQ(play(*URL::make({.string = text})), AVPlayerItem::Status::failed) << text;
}

TEST(DamagedMovies, CutAnywhereTheyPlayAsFarAsTheyGoOrFail) {
    for (const auto& [container, options] :
         std::map<std::string, std::string>{{"mp4", "-movflags +faststart"}, {"mkv", ""}}) {
        testmovies::numbers("long", {.container = container, .count = 50, .options = options});
        const std::string bytes = testmovies::read("long." + container);
        for (std::size_t part = 1; part < 8; ++part) {
            testmovies::write("cut." + container, bytes.substr(0, bytes.size() * part / 8));
            play(testmovies::url("cut." + container));
        }
    }
}

TEST(DamagedMovies, WithBytesChangedTheyPlayOrFail) {
    testmovies::numbers("changed", {.count = 30});
    const std::string bytes = testmovies::read("changed.mp4");
    const std::size_t head = bytes.rfind("moov");
    ASSERT_NE(head, bytes.npos);
    std::minstd_rand random(5);
    for (int round = 0; round < 30; ++round) {
        std::string damaged = bytes;
        for (int i = 0; i < 6; ++i) {
            const std::size_t start = round % 2 == 0 ? head : 0;
            damaged[start + random() % (damaged.size() - start)] = static_cast<char>(random());
        }
        testmovies::write("damaged.mp4", damaged);
        play(testmovies::url("damaged.mp4"));
    }
}

} // namespace
