#include "TestMovies.h"
#include <tests/Testing.h>
#include <tests/bytesOf.h>

#include <zorvan/media/AVAsset.h>
#include <zorvan/platform/avfoundation/describeMedia.h>

namespace {

using namespace std::chrono;
using testmovies::picture;

using Words = std::vector<std::string>;

Words operator+(Words a, const Words& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

AVAssetTrack video(float rate, CGSize size = {}, CGAffineTransform transform = {}) {
    return {AVMediaType::video, rate, size, transform};
}

std::shared_ptr<const AVAsset> assetOf(std::vector<AVAssetTrack> tracks) {
    return AVAsset::create({.tracks = std::move(tracks)});
}

const CGAffineTransform quarterTurn(0, 1, -1, 0, 1080, 0);

TEST(AVAsset, TheLastTrackThatSaysSomethingWins) {
    const AVAssetTrack sound{AVMediaType::audio, 48, {9000, 9000}, {2, 0, 0, 2, 0, 0}};
    EXPECT_EQ(assetOf({video(30), video(0), sound})->computeFrameRate(), 30);
    EXPECT_EQ(assetOf({video(25), video(30)})->computeFrameRate(), 30);
    EXPECT_EQ(assetOf({sound})->computeFrameRate(), 0);

    const auto sizes = assetOf({video(30, {1920, 1080}), sound, video(30, {1080, 1920})});
    EXPECT_EQ(sizes->computeNaturalSize(), CGSize(1920, 1920));
    EXPECT_EQ(assetOf({sound})->computeNaturalSize(), CGSize());

    const CGAffineTransform half(-1, 0, 0, -1, 1, 2);
    EXPECT_EQ(assetOf({video(1, {}, quarterTurn), video(1, {}, half), video(1), sound})
                  ->computeNaturalTransform(),
              half);
    EXPECT_TRUE(assetOf({sound, video(1)})->computeNaturalTransform().isIdentity());
    EXPECT_TRUE(assetOf({})->computeNaturalTransform().isIdentity());
    EXPECT_EQ(assetOf({})->computeNaturalOrientation(), Orientation::up);
}

TEST(AVAsset, ReadsTheMatrixOfEveryTurn) {
    struct {
        std::array<double, 6> matrix;
        std::optional<Orientation> orientation;
    } const table[] = {
        {{1, 0, 0, 1, 0, 0}, Orientation::up},      {{0, 1, -1, 0, 48, 0}, Orientation::left},
        {{0, -1, 1, 0, 0, 64}, Orientation::right}, {{-1, 0, 0, -1, 64, 48}, Orientation::down},
        {{0, 1, -1, 0, 0, 0}, Orientation::left},   {{-1, 0, 0, 1, 64, 0}, std::nullopt},
        {{0, 1, 1, 0, 0, 0}, std::nullopt},         {{0.5, 0.25, -0.25, 0.5, 3, -4}, std::nullopt}};
    for (const char* extension : {"mp4", "mov"}) {
        const std::string name = std::string("turn.") + extension;
        const auto url = testmovies::make(name, picture("64x48", "25") + Words{"-c:v", "mpeg4"});
        for (const auto& [m, orientation] : table) {
            testmovies::setMatrix(name, 0, m);
            const auto asset = AVAsset::create(url);
            EXPECT_EQ(asset->computeNaturalTransform(),
                      CGAffineTransform(m[0], m[1], m[2], m[3], m[4], m[5]));
            EXPECT_EQ(asset->computeNaturalOrientation(), orientation) << m[0] << ' ' << m[1];
            EXPECT_EQ(asset->computeNaturalSize(), CGSize(64, 48)) << "before the turn";
        }
    }
}

TEST(AVAsset, ReadsSeveralTracks) {
    const auto url = testmovies::make(
        "tracks.mov", picture("64x48", "24000/1001") + picture("48x80", "30000/1001") +
                          Words{"-f", "lavfi", "-i", "sine=d=0.25", "-map", "0", "-map", "1",
                                "-map", "2", "-c:v", "mpeg4", "-c:a", "pcm_s16le"});
    testmovies::setMatrix("tracks.mov", 0, {0, 1, -1, 0, 48, 0});
    const auto asset = AVAsset::create(url);
    ASSERT_EQ(asset->tracks().size(), 3u);
    EXPECT_EQ(asset->tracksWithMediaType(AVMediaType::video).size(), 2u);
    EXPECT_EQ(asset->tracks()[2].mediaType, AVMediaType::audio);
    EXPECT_FLOAT_EQ(asset->tracks()[0].nominalFrameRate, 24000.f / 1001);
    EXPECT_FLOAT_EQ(asset->computeFrameRate(), 30000.f / 1001);
    EXPECT_EQ(asset->computeNaturalSize(), CGSize(64, 80));
    EXPECT_EQ(asset->computeNaturalOrientation(), Orientation::left);
    EXPECT_NEAR(asset->duration().seconds(), 0.26, 0.02);
}

TEST(AVAsset, ReadsRatesAndSizesOfEveryContainer) {
    // Every container once; the arithmetic of rates is the same in all.
    struct {
        const char *name, *rate;
        Words options;
        double tolerance;
    } const table[] = {
        {"30.mp4", "30000/1001", {"-c:v", "libx264"}, 1e-5},
        {"24.mp4", "24000/1001", {"-c:v", "libx264"}, 1e-5},
        {"24.mov", "24000/1001", {"-c:v", "mjpeg"}, 1e-5},
        {"24.mkv", "24000/1001", {"-c:v", "libx264"}, 1e-5},
        {"24.avi", "24000/1001", {"-c:v", "mpeg4"}, 1e-5},
        {"24.ts", "24000/1001", {"-c:v", "libx264"}, 0.02},
        {"24.mpg", "24000/1001", {"-c:v", "mpeg2video"}, 0.02},
        {"24.flv", "24000/1001", {"-c:v", "flv"}, 0.05},
        {"24.ogv", "24000/1001", {"-c:v", "libtheora"}, 0.02},
        {"frag.mp4", "24000/1001", {"-movflags", "frag_keyframe+empty_moov"}, 1e-5},
    };
    for (const auto& [name, rate, options, tolerance] : table) {
        const auto asset =
            AVAsset::create(testmovies::make(name, picture("96x64", rate) + options));
        const double expected = std::stod(rate) / std::stod(std::string(rate).substr(6));
        EXPECT_NEAR(asset->computeFrameRate(), expected, tolerance) << name;
        EXPECT_EQ(asset->computeNaturalSize(), CGSize(96, 64)) << name;
        EXPECT_EQ(asset->computeNaturalOrientation(), Orientation::up) << name;
    }
    const auto wide =
        testmovies::make("wide.mp4", picture("72x58", "25") + Words{"-vf", "setsar=4/3"});
    EXPECT_EQ(AVAsset::create(wide)->computeNaturalSize(), CGSize(96, 58)) << "of square pixels";
}

TEST(AVAsset, ACoverIsNoTrack) {
    testmovies::make("cover.jpg", picture("200x200", "25") + Words{"-frames:v", "1"});
    const auto url = testmovies::make(
        "song.m4a", {"-f", "lavfi", "-i", "sine=d=0.5", "-i", testmovies::path("cover.jpg"), "-map",
                     "0", "-map", "1", "-c:v", "copy", "-disposition:v", "attached_pic"});
    const auto asset = AVAsset::create(url);
    ASSERT_EQ(asset->tracks().size(), 1u);
    EXPECT_EQ(asset->tracks()[0].mediaType, AVMediaType::audio);
    EXPECT_EQ(asset->computeNaturalSize(), CGSize());
    EXPECT_NEAR(asset->duration().seconds(), 0.5, 0.05);
}

TEST(AVAsset, DecodesOnlyWhereItMustAndMay) {
    using namespace avfoundation;
    testmovies::make("header.mp4", picture("96x64", "25") + Words{"-c:v", "libx264"});
    testmovies::make("stream.ts", picture("96x64", "25") + Words{"-c:v", "libx264"});
    const auto header = describeMedia(testmovies::path("header.mp4"));
    EXPECT_EQ(header->tracks.at(0).naturalSize, CGSize(96, 64));
    ASSERT_TRUE(header->tracks.at(0).frameDuration);
    EXPECT_EQ(header->tracks.at(0).frameDuration->timescale, 25);
    const auto stream = describeMedia(testmovies::path("stream.ts"));
    // Only a decoder knows, or, from FFmpeg 6.1 on, what takes a stream apart into packets.
    const CGSize known = stream->tracks.at(0).naturalSize;
    EXPECT_TRUE(known == CGSize() || known == CGSize(96, 64));
    EXPECT_NEAR(stream->tracks.at(0).frameRate, 25, 0.01);
    EXPECT_FALSE(stream->tracks.at(0).frameDuration);
}

Date moment(int hour) { return sys_days(2024y / 5 / 31) + hours(hour) + 34min + 56s; }

Words dated(const Words& metadata) {
    Words words = picture("64x48", "25") + Words{"-c:v", "mpeg4"};
    for (const std::string& entry : metadata)
        words = words + Words{"-metadata", entry};
    return words;
}
const Words withKeys{"-movflags", "use_metadata_tags"};

TEST(AVAsset, FindsTheCreationDateInEachOfItsPlaces) {
    const std::string container = "creation_time=2024-05-31T12:34:56Z";
    const std::string userData = "date=2024-05-31T13:34:56Z";
    const std::string keys = "com.apple.quicktime.creationdate=2024-05-31T16:34:56+0200";
    struct {
        const char* name;
        Words arguments;
        std::optional<Date> date;
    } const table[] = {
        {"none.mp4", dated({}), std::nullopt},
        {"container.mp4", dated({container}), moment(12)},
        {"container.mov", dated({container}), moment(12)},
        {"container.mkv", dated({container}), moment(12)},
        {"userdata.mov", dated({userData}), moment(13)},
        {"keys.mov", dated({keys}) + withKeys, moment(14)},
        {"keys.mp4", dated({keys}) + withKeys, moment(14)},
        // What a camera wrote goes before the date of the container; a year alone is no date.
        {"two.mov", dated({container, userData}), moment(13)},
        {"three.mov", dated({container, keys}) + withKeys, moment(14)},
        {"year.mov", dated({container, "date=2024"}), moment(12)},
    };
    for (const auto& [name, arguments, date] : table)
        EXPECT_EQ(AVAsset::create(testmovies::make(name, arguments))->parseCreationDate(), date)
            << name;
    const auto asset = AVAsset::create(testmovies::url("userdata.mov"));
    EXPECT_EQ(asset->metadata().at(0).identifier,
              AVMetadataIdentifierQuickTimeUserDataCreationDate);
}

TEST(AVAsset, FindsTheLocationInEachOfItsPlaces) {
    const std::string key = "com.apple.quicktime.location.ISO6709=",
                      place = "+4851.5-00217.25+035.2/";
    const std::pair<const char*, Words> table[] = {
        {"place.mov", dated({"location=" + place})},
        {"place.mkv", dated({"location=" + place})},
        {"key.mov", dated({key + place}) + withKeys},
        {"key.mp4", dated({key + place}) + withKeys},
        // It keeps numbers with 16 bits behind the point.
        {"place.mp4", dated({"location=+48.85833-002.2875/"})}};
    for (const auto& [name, arguments] : table) {
        const auto location =
            AVAsset::create(testmovies::make(name, arguments))->parseLocationFromMetadata();
        ASSERT_TRUE(location) << name;
        EXPECT_NEAR(location->latitude, 48 + 51.5 / 60, 1e-4) << name;
        EXPECT_NEAR(location->longitude, -(2 + 17.25 / 60), 1e-4) << name;
    }
}

TEST(AVAsset, PassesOverPlacesThatCannotBeRead) {
    const auto asset =
        AVAsset::create({.tracks = std::vector<AVAssetTrack>(),
                         .metadata = {{"other", "+01+001/"},
                                      {"uiso/%A9xyz", "somewhere"},
                                      {"itsk/%A9xyz", bytesOf("+02+002/\xFF")},
                                      {AVMetadataCommonIdentifierLocation, "+03+003/"}}});
    EXPECT_EQ(asset->parseLocationFromMetadata(), (Location{2, 2}));
    EXPECT_FALSE(assetOf({})->parseLocationFromMetadata());
    EXPECT_FALSE(assetOf({})->parseCreationDate());
}

TEST(AVAsset, LeavesNoFileOpen) {
    const auto count = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    };
    const auto url = testmovies::make("open.mp4", picture("64x48", "25") + Words{"-c:v", "mpeg4"});
    testmovies::write("broken.mp4", testmovies::read("open.mp4").substr(0, 300));
    const auto before = count();
    for (int i = 0; i < 50; ++i) {
        EXPECT_TRUE(AVAsset::create(url)->isReadable());
        EXPECT_FALSE(AVAsset::create(testmovies::url("broken.mp4"))->isReadable());
    }
    EXPECT_EQ(count(), before);
}

} // namespace
