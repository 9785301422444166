#include "TestMovies.h"
#include <tests/Testing.h>
#include <tests/bytesOf.h>
#include <tests/files/ChildProcess.h>

#include <zorvan/media/AVAsset.h>
#include <zorvan/platform/avfoundation/describeMedia.h>

namespace {

using namespace std::chrono;
using testmovies::picture;

AVAssetTrack video(float rate, CGSize size = {}, CGAffineTransform transform = {}) {
    return {AVMediaType::video, rate, size, transform};
}

std::shared_ptr<const AVAsset> assetOf(std::vector<AVAssetTrack> tracks) {
    return AVAsset::create({.tracks = std::move(tracks)});
}

const CGAffineTransform quarterTurn(0, 1, -1, 0, 1080, 0);

TEST(AVAsset, TheLastTrackThatSaysSomethingWins) {
    const AVAssetTrack sound{AVMediaType::audio, 48, {9000, 9000}, {2, 0, 0, 2, 0, 0}};
    EXPECT_EQ(assetOf({video(25), video(30), video(0), sound})->computeFrameRate(), 30);
    EXPECT_EQ(assetOf({sound})->computeFrameRate(), 0);

    const auto sizes = assetOf({video(30, {1920, 1080}), sound, video(30, {1080, 1920})});
    EXPECT_EQ(sizes->computeNaturalSize(), CGSize(1920, 1920));
    EXPECT_EQ(assetOf({sound})->computeNaturalSize(), CGSize());

    const CGAffineTransform half(-1, 0, 0, -1, 1, 2);
    EXPECT_EQ(assetOf({video(1, {}, quarterTurn), video(1, {}, half), video(1), sound})
                  ->computeNaturalTransform(),
              half);
    EXPECT_EQ(assetOf({sound, video(1)})->computeNaturalOrientation(), Orientation::up);
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
        const auto url = testmovies::make(name, picture("64x48", "25") + "-c:v mpeg4");
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

TEST(AVAsset, ReadsSeveralTracksOfWhichACoverIsNone) {
    testmovies::make("cover.jpg", picture("200x200", "25") + "-frames:v 1");
    testmovies::make("tracks.mp4", picture("64x48", "24000/1001") + picture("48x80", "30000/1001") +
                                       "-f lavfi -i sine=d=0.25 -i " +
                                       testmovies::path("cover.jpg") +
                                       " -map 0 -map 1 -map 2 -map 3 -c:v mpeg4 -c:v:2 copy"
                                       " -disposition:v:2 attached_pic");
    testmovies::setMatrix("tracks.mp4", 0, {0, 1, -1, 0, 48, 0});
    const auto asset = AVAsset::create(testmovies::url("tracks.mp4"));
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
        const char *name, *options;
        double tolerance;
    } const table[] = {
        {"24.mp4", "-c:v libx264", 1e-5},
        {"24.mov", "-c:v mjpeg", 1e-5},
        {"24.mkv", "-c:v libx264", 1e-5},
        {"24.avi", "-c:v mpeg4", 1e-5},
        {"24.ts", "-c:v libx264", 0.02},
        {"24.mpg", "-c:v mpeg2video", 0.02},
        {"24.flv", "-c:v flv", 0.05},
        {"24.ogv", "-c:v libtheora", 0.02},
        {"frag.mp4", "-movflags frag_keyframe+empty_moov", 1e-5},
    };
    for (const auto& [name, options, tolerance] : table) {
        const auto asset =
            AVAsset::create(testmovies::make(name, picture("96x64", "24000/1001") + options));
        EXPECT_NEAR(asset->computeFrameRate(), 24000 / 1001.0, tolerance) << name;
        EXPECT_EQ(asset->computeNaturalSize(), CGSize(96, 64)) << name;
    }
    const auto wide = testmovies::make("wide.mp4", picture("72x58", "25") + "-vf setsar=4/3");
    EXPECT_EQ(AVAsset::create(wide)->computeNaturalSize(), CGSize(96, 58)) << "of square pixels";
}

TEST(AVAsset, DecodesOnlyWhereItMustAndMay) {
    using namespace avfoundation;
    testmovies::make("header.mp4", picture("96x64", "25") + "-c:v libx264");
    testmovies::make("stream.ts", picture("96x64", "25") + "-c:v libx264");
    const auto header = describeMedia(testmovies::path("header.mp4"));
    EXPECT_EQ(header->tracks.at(0).naturalSize, CGSize(96, 64));
    EXPECT_EQ(header->tracks.at(0).frameDuration->timescale, 25);
    const auto stream = describeMedia(testmovies::path("stream.ts"));
    // Only a decoder knows, or, from FFmpeg 6.1 on, what takes a stream apart into packets.
    const CGSize known = stream->tracks.at(0).naturalSize;
    EXPECT_TRUE(known == CGSize() || known == CGSize(96, 64));
    EXPECT_FALSE(stream->tracks.at(0).frameDuration);
}

Date moment(int hour) { return sys_days(2024y / 5 / 31) + hours(hour) + 34min + 56s; }

std::string dated(const std::vector<std::string>& metadata) {
    std::string words = picture("64x48", "25") + "-c:v mpeg4";
    for (const std::string& entry : metadata)
        words += " -metadata " + entry;
    return words;
}
const std::string withKeys = " -movflags use_metadata_tags";

TEST(AVAsset, FindsTheCreationDateInEachOfItsPlaces) {
    const std::string container = "creation_time=2024-05-31T12:34:56Z";
    const std::string userData = "date=2024-05-31T13:34:56Z";
    const std::string keys = "com.apple.quicktime.creationdate=2024-05-31T16:34:56+0200";
    struct {
        const char* name;
        std::string arguments;
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
}

TEST(AVAsset, FindsTheLocationInEachOfItsPlaces) {
    const std::string key = "com.apple.quicktime.location.ISO6709=",
                      place = "+4851.5-00217.25+035.2/";
    const std::pair<const char*, std::string> table[] = {
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
}

TEST(AVAsset, LeavesNoFileOpen) {
    const auto url = testmovies::make("open.mp4", picture("64x48", "25") + "-c:v mpeg4");
    testmovies::write("broken.mp4", testmovies::read("open.mp4").substr(0, 300));
    const auto before = openDescriptors();
    EXPECT_TRUE(AVAsset::create(url)->isReadable());
    EXPECT_FALSE(AVAsset::create(testmovies::url("broken.mp4"))->isReadable());
    EXPECT_EQ(openDescriptors(), before);
}

} // namespace
