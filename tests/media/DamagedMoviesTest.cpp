#include "TestMovies.h"
#include <tests/Testing.h>
#include <tests/waitUntil.h>

#include <zorvan/media/AVPlayer.h>

namespace {

using namespace std::string_literals;

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

/// Numbers of 32 bits, as the boxes of movies have them.
std::string numbers(std::initializer_list<std::uint32_t> values) {
    std::string bytes;
    for (const std::uint32_t value : values)
        for (int shift = 24; shift >= 0; shift -= 8)
            bytes += static_cast<char>(value >> shift);
    return bytes;
}

std::string box(const std::string& type, const std::string& content = {}) {
    return numbers({static_cast<std::uint32_t>(8 + content.size())}) + type + content;
}

std::string table(const std::string& type, std::initializer_list<std::uint32_t> values) {
    return box(type, numbers({0}) + numbers(values));
}

constexpr std::uint32_t many = 1'000'000;
const std::string manySizes = table("stsz", {1, many});
const std::string brand = box("ftyp", "qt  " + numbers({0}) + "qt  ");
const std::string movieHeader = box("mvhd", numbers({0, 0, 0, 1000, 1000}) + std::string(80, 0));
const std::string samples(64, 1);

/// A track of one chunk, whose times and sizes are for the test to tell.
struct Track {
    std::string tables;
    std::string handler = "soun";
    std::string format = std::string(8, 0) + numbers({0x0001'0010, 0, 8000 << 16});
    std::string beside = {};
    std::uint32_t inChunk = 1;
    std::string type = "sowt";
};

std::string handlerOf(const std::string& kind) {
    return box("hdlr", numbers({0}) + "mhlr" + kind + std::string(13, 0));
}

std::string trackOf(const Track& track) {
    const std::string format = box(track.type, numbers({0, 1}) + track.format);
    const std::string tables = box("stsd", numbers({0, 1}) + format) +
                               table("stsc", {1, 1, track.inChunk, 1}) + table("stco", {1, 8}) +
                               track.tables;
    return box("trak",
               box("tkhd", numbers({7, 0, 0, 1, 0, 1000}) + std::string(60, 0)) + track.beside +
                   box("mdia", box("mdhd", numbers({0, 0, 0, 8000, many, 0})) +
                                   handlerOf(track.handler) + box("minf", box("stbl", tables))));
}

std::string movieWith(const std::string& tracks) { return box("moov", movieHeader + tracks); }
std::string movieOf(const Track& track) { return movieWith(trackOf(track)); }

/// The head of a movie as zlib folds what it leaves as it is.
std::string folded(const std::string& head, std::uint32_t statedSize) {
    std::uint32_t sum = 1, sumOfSums = 0;
    for (const char byte : head) {
        sum = (sum + static_cast<unsigned char>(byte)) % 65521;
        sumOfSums = (sumOfSums + sum) % 65521;
    }
    const auto size = static_cast<std::uint16_t>(head.size());
    const auto low = [](unsigned value) { return static_cast<char>(value); };
    const std::string bytes = std::string("\x78\x01\x01") + low(size) + low(size >> 8) +
                              low(~size) + low(~size >> 8) + head +
                              numbers({sumOfSums << 16 | sum});
    return box("moov",
               box("cmov", box("dcom", "zlib") + box("cmvd", numbers({statedSize}) + bytes)));
}
std::string folded(const std::string& head) {
    return folded(head, static_cast<std::uint32_t>(head.size()));
}

const std::string twoUnits = table("stts", {1, many, 2}), oneUnit = table("stts", {1, many, 1});
const std::string ofOneEach = twoUnits + manySizes;
const std::string listed = twoUnits + table("stsz", {0, 2, 1, 1});
const std::string inVideo = std::string(16, 0) + numbers({0x0010'0010}) + std::string(50, 0);

std::string repeated(const std::string& text, int count) {
    std::string all;
    while (count-- > 0)
        all += text;
    return all;
}

std::string edits(std::uint32_t count) {
    return box("edts", box("elst", numbers({0, count}) + repeated(numbers({1000, 0, 0x1'0000}),
                                                                  static_cast<int>(count))));
}

std::string fragmentOf(const std::string& run) {
    return movieWith(trackOf({.tables = twoUnits}) + box("mvex", table("trex", {1, 1, 2, 1, 0}))) +
           box("moof", table("mfhd", {1}) + box("traf", box("tfhd", numbers({0x2'0000, 1})) + run));
}

TEST(DamagedMovies, FewBytesThatCountManySamplesAreRefused) {
    const std::string run = table("trun", {many}), whole = movieOf({ofOneEach});
    const std::string palette =
        inVideo.substr(0, 66) + numbers({0x0008'0000, 0, 2}) + std::string(24, 0);
    const std::string version1 =
        numbers({0x1'0000, 0, 0x0001'0010, 0, 8000 << 16}) + std::string(16, 0);
    // FFmpeg does not take these for sound, whatever a place says that it passes over.
    const std::string tables = oneUnit + manySizes, sound = handlerOf("soun");
    const auto noSound = [&](const std::string& place, const std::string& format) {
        return movieOf(
            {.tables = tables + place, .handler = "tmcd", .format = format, .type = "data"});
    };
    std::map<std::string, std::string> movies{
        {"constant", whole},
        {"behind a box", box("junk") + whole},
        {"behind a uuid", box("uuid", std::string(16, 0)) + whole},
        {"behind user data", box("udta") + whole},
        {"behind empty boxes", repeated(box("free"), 100'001) + whole},
        {"in user data", box("udta", whole)},
        {"in free", box("free", whole.substr(8))},
        {"in hoov", box("hoov", whole.substr(8))},
        {"folded", folded(whole)},
        {"folded, of two gigabytes", folded(movieOf({listed}), 0x7FFF'FFFF)},
        {"folded twice", repeated(folded(movieOf({listed})), 2)},
        {"in metadata", movieOf({twoUnits + box("meta", table("hdlr", {0, 0, 0, 0}) + manySizes)})},
        {"in a format", movieOf({.tables = twoUnits, .format = Track{}.format + manySizes})},
        {"in a format of version 1", movieOf({.tables = twoUnits, .format = version1 + manySizes})},
        {"in video", movieOf({twoUnits, "vide", inVideo + manySizes})},
        {"behind colours", movieOf({twoUnits, "vide", palette + manySizes})},
        {"video of one unit", movieOf({tables, "vide", inVideo})},
        {"sound, then video", movieOf({tables + box("udta", handlerOf("vide"))})},
        {"sound behind samples", noSound(box("udta", box("mdat") + sound), {})},
        {"sound in free", noSound(box("free", movieHeader + sound), {})},
        {"sound in a format", noSound({}, sound)},
        {"sound of one unit, then of two", movieOf({oneUnit + twoUnits + manySizes})},
        {"sound with offsets", movieOf({oneUnit + table("ctts", {1, many, 1}) + manySizes})},
        {"in pieces of a chunk",
         movieOf({.tables = oneUnit + table("stsz", {1, 1}), .inChunk = 1'000 * many})},
        {"for each edit",
         movieOf({.tables = twoUnits + table("stsz", {1, 100}), .beside = edits(100)})},
        {"listed, for each edit",
         movieOf({.tables = twoUnits + box("stz2", numbers({0, 4, 128}) + samples),
                  .beside = edits(100)})},
        {"beyond the box", movieWith(repeated(trackOf({listed + table("stss", {1000})}), 40) +
                                     box("free", std::string(4000, 0)))},
        {"places that are not there", movieOf({twoUnits + table("stco", {1 << 27, 0})})},
        {"sizes that are not there", movieOf({twoUnits + table("stsz", {0, 1 << 25})})},
        {"names of metadata",
         movieWith(box("meta", handlerOf("mdta") + table("keys", {1 << 27})) + trackOf({listed}))},
        {"groups", movieOf({listed + table("sgpd", {0x73796E63, 1 << 30, 0})})},
        {"groups of version 1",
         movieOf({listed + box("sgpd", numbers({1 << 24, 0x73796E63, 0, 1 << 30}))})},
        {"items", movieOf({listed}) +
                      box("meta", handlerOf("pict") + box("iinf", numbers({1 << 24, 1 << 27})))},
        {"a box beyond the file", movieOf({listed}) + numbers({1 << 30}) + "uuid"},
        {"in a fragment", fragmentOf(run)},
        {"in user data of a fragment", fragmentOf(box("udta", run))},
    };
    for (std::string types = "dinfedtsilstmdiaminfmvexmoofschisinfstbltraftrefudtawave";
         !types.empty(); types.erase(0, 4))
        movies["in " + types.substr(0, 4)] =
            movieOf({twoUnits + box(types.substr(0, 4), manySizes)});
    for (const auto& [name, bytes] : movies) {
        testmovies::write("many.mov", brand + bytes + box("mdat", samples));
        EXPECT_FALSE(AVAsset::create(testmovies::url("many.mov"))->isReadable()) << name;
    }
}

std::string reversed(std::string bytes) { return {bytes.rbegin(), bytes.rend()}; }

/// Sound with a list that says it has `length` bytes of texts, behind a gap.
std::string waveWith(std::uint32_t length, bool isBigEndian = false, std::size_t gap = 0) {
    const auto ordered = [&](std::uint32_t value) {
        return isBigEndian ? numbers({value}) : reversed(numbers({value}));
    };
    const auto chunk = [&](const std::string& name, const std::string& content) {
        return name + ordered(static_cast<std::uint32_t>(content.size())) + content;
    };
    const std::string format = (isBigEndian ? "\0\1\0\1"s : "\1\0\1\0"s) + ordered(8000) +
                               ordered(8000) + (isBigEndian ? "\0\1\0\b"s : "\1\0\b\0"s);
    const std::string text = "INAM" + reversed(numbers({length - 12}));
    return (isBigEndian ? "RIFX" : "RIFF") + ordered(1 << 16) + "WAVE" + chunk("fmt ", format) +
           chunk("data", samples) + chunk("junk", std::string(gap, 0)) + "LIST" + ordered(length) +
           "INFO" + text + "Sine";
}

/// The bytes with those changed that stand behind the last of these.
std::string changed(std::string bytes, const std::string& behind, const std::string& to) {
    const std::size_t at = bytes.rfind(behind);
    EXPECT_NE(at, bytes.npos) << behind;
    return bytes.replace(at + behind.size(), to.size(), to);
}

TEST(DamagedMovies, LengthsFarBeyondTheFileAreRefusedInEachContainer) {
    const std::string video = testmovies::picture("96x64", "25");
    testmovies::make("list.avi", video + "-c:v mpeg4 -metadata title=Test");
    testmovies::make("keys.flv", video + "-c:v flv1 -flvflags add_keyframe_index");
    testmovies::make("index.mxf", video + "-c:v mpeg2video -bf 2");
    const std::string tag("ID3\4\0\0\0\0\0\4tags", 14), texts = "INFOINAM";
    const std::string avi = testmovies::read("list.avi"), flv = testmovies::read("keys.flv"),
                      mxf = testmovies::read("index.mxf");
    const std::uint32_t far = 1 << 30;
    const std::string aviList = reversed(numbers({far})) + texts + reversed(numbers({far - 12}));
    const std::string duration("\x3F\x0D\0\x08\0\0\0\0", 8);
    std::vector<std::array<std::string, 3>> files{
        {"wav", waveWith(16), waveWith(far)},
        {"wav", waveWith(1'000), waveWith(100'000)}, // cut short by a little, and by much
        {"wav", waveWith(16, true), waveWith(far, true)},
        {"wav", tag + waveWith(16), tag + waveWith(far)},
        {"wav", tag + waveWith(16, true), tag + waveWith(far, true)},
        {"avi", avi,
         avi.substr(0, avi.find(texts) - 4) + aviList + avi.substr(avi.find(texts) + 12)},
        {"flv", flv, changed(flv, "times\n", numbers({1 << 27}))},
        {"flv", flv, changed(flv, "filepositions\n", numbers({1 << 27}))},
        {"mxf", mxf, changed(mxf, duration, numbers({1 << 25}))},
    };
    for (std::size_t gap = 32'680; gap < 32'700; ++gap) // where two reads of the file meet
        files.push_back({"wav", waveWith(16, false, gap), waveWith(far, false, gap)});
    for (const auto& [container, good, bad] : files) {
        for (const bool isGood : {true, false}) {
            testmovies::write("length." + container, isGood ? good : bad);
            const auto asset = AVAsset::create(testmovies::url("length." + container));
            EXPECT_EQ(asset->isReadable(), isGood) << container << " " << good.size();
        }
    }
}

TEST(DamagedMovies, MillionsOfEntriesBeyondTheEndAreNotReadOneByOne) {
    testmovies::make("entries.mxf", testmovies::picture("96x64", "25") + "-c:v mpeg2video -bf 2");
    const std::string mxf = testmovies::read("entries.mxf");
    const std::size_t index = mxf.rfind("\x3F\x0A");
    ASSERT_EQ(mxf.substr(index + 8, 4), numbers({15})) << "the bytes of an entry";
    testmovies::write("many.mxf", changed(mxf, mxf.substr(index, 4), numbers({1 << 24})));
    const auto start = std::chrono::steady_clock::now();
    AVAsset::create(testmovies::url("many.mxf"))->isReadable();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

TEST(DamagedMovies, WhatCountsManySamplesForGoodReasonIsRead) {
    const std::string video = testmovies::picture("96x64", "25");
    const std::string sound = "-f lavfi -i sine=d=60 -ar 8000 ";
    testmovies::make("head.mov", video);
    const std::string movie = testmovies::read("head.mov");
    const std::size_t head = movie.rfind("moov") - 4;
    testmovies::write("folded.mov", movie.substr(0, head) + folded(movie.substr(head)));
    testmovies::write("built.mov", brand + movieOf({listed}) + box("mdat", samples));
    testmovies::make("early.mov", sound + "-c:a pcm_s16le -movflags +faststart");
    testmovies::write("cut.mov", testmovies::read("early.mov").substr(0, 10'000));
    testmovies::make("adpcm.mov", sound + "-c:a adpcm_ima_qt");
    testmovies::make("edited.mp4", video + "-f lavfi -i sine=d=1 -ss 0.1 -c:v mpeg4");
    testmovies::make("fragments.mov", sound + "-c:a pcm_mulaw -frag_duration 1000"
                                              " -movflags frag_keyframe+empty_moov");
    for (const char* name :
         {"folded.mov", "built.mov", "cut.mov", "adpcm.mov", "edited.mp4", "fragments.mov"}) {
        const auto asset = AVAsset::create(testmovies::url(name));
        EXPECT_TRUE(asset->isReadable()) << name;
        EXPECT_FALSE(asset->tracks().empty()) << name;
    }
}

} // namespace
