#include "TestImages.h"
#include "TestMovies.h"
#include <tests/Testing.h>

#include <zorvan/media/AVAssetImageGenerator.h>

namespace {

AVAssetImageGenerator generator(const URL& movie, bool isExact) {
    AVAssetImageGenerator made{.asset = AVAsset::create(movie)};
    if (isExact)
        made.requestedTimeToleranceBefore = made.requestedTimeToleranceAfter = kCMTimeZero;
    return made;
}

TEST(AVAssetImageGenerator, GivesThePictureOfATime) {
    const std::tuple<double, int, int> table[] = {{0.039, 0, 0},  {1, 25, 25}, {1.0399, 25, 25},
                                                  {2.5, 62, 50},  {-5, 0, 0},  {3.97, 99, 75},
                                                  {1e300, 99, 75}};
    // TS has no index, and starts at another time than zero. AVI tells when pictures are stored;
    // the old one's key pictures are stored before others that are shown earlier.
    std::map<std::string, URL> movies;
    for (const std::string container : {"mp4", "mkv", "ts", "avi"})
        movies.emplace(container, testmovies::numbers("grabbed", {.container = container}));
    movies.emplace("old", testmovies::make("old.avi", "-i " + movies.at("mp4").path() +
                                                          " -c:v mpeg4 -bf 2 -g 25 -q:v 2"));
    for (const auto& [name, movie] : movies)
        for (const auto& [seconds, exact, quick] : table)
            for (const bool isExact : {true, false}) {
                const auto [image, time] =
                    generator(movie, isExact).copyCGImage(CMTime({.seconds = seconds}));
                ASSERT_TRUE(image) << name << seconds;
                const int number = testmovies::numberOf(image->bitmap());
                if (isExact || (name != "ts" && name != "old")) {
                    EXPECT_EQ(number, isExact ? exact : quick) << name << seconds;
                }
                EXPECT_NEAR(time.seconds(), number / 25.0, 1e-3) << name << seconds;
            }
}

TEST(AVAssetImageGenerator, FindsTheStartWhereAContainerRefusesTimesBeforeIt) {
    for (const std::string container : {"avi", "flv", "h264"}) {
        const URL movie = testmovies::numbers("start", {.container = container, .count = 30});
        const auto numberAt = [&](double seconds, bool isExact) {
            const auto made = generator(movie, isExact).copyCGImage(CMTime({.seconds = seconds}));
            return made.image ? testmovies::numberOf(made.image->bitmap()) : -1;
        };
        for (const bool isExact : {true, false}) {
            EXPECT_EQ(numberAt(-5, isExact), 0) << container;
            EXPECT_EQ(numberAt(0, isExact), 0) << container;
        }
        if (container == "h264") {
            EXPECT_EQ(numberAt(1, true), 25) << "it has no times";
        }
    }
}

TEST(AVAssetImageGenerator, TurnsAndReduces) {
    // Red, green, blue and white quarters: above left, above right, below left, below right.
    const URL movie = testmovies::make(
        "quarters.mp4",
        "-f lavfi -i "
        "color=red:s=64x32[a];color=lime:s=64x32[b];color=blue:s=64x32[c];color=white:s=64x32[d];"
        "[a][b]hstack[e];[c][d]hstack[f];[e][f]vstack,trim=end_frame=5"
        " -vf setsar=3/2 -c:v libx264 -pix_fmt yuv444p");
    struct {
        std::array<double, 6> matrix;
        const char* corners; // in the order above
    } const table[] = {{{1, 0, 0, 1, 0, 0}, "rgbw"},    {{0, 1, -1, 0, 64, 0}, "brwg"},
                       {{0, -1, 1, 0, 0, 128}, "gwrb"}, {{-1, 0, 0, -1, 0, 0}, "wbgr"},
                       {{-1, 0, 0, 1, 0, 0}, "grwb"},   {{1, 0, 0, -1, 0, 0}, "bwrg"},
                       {{0, 1, 1, 0, 0, 0}, "rbgw"},    {{0, -1, -1, 0, 0, 0}, "wgbr"},
                       {{0.5, 0, 0, 0.5, 0, 0}, "rgbw"}};
    const auto letter = [](std::uint32_t pixel) {
        const auto isLit = [&](int shift) { return (pixel >> shift & 255) > 128; };
        return isLit(0) ? (isLit(8) ? 'w' : 'r') : isLit(8) ? 'g' : 'b';
    };
    for (const auto& [matrix, corners] : table) {
        testmovies::setMatrix("quarters.mp4", 0, matrix);
        AVAssetImageGenerator upright{.asset = AVAsset::create(movie),
                                      .appliesPreferredTrackTransform = true,
                                      .maximumSize = {60, 0}};
        const auto image = upright.copyCGImage(kCMTimeZero).image;
        ASSERT_TRUE(image);
        const bool isOnItsSide = matrix[0] == 0;
        EXPECT_EQ(image->size(), isOnItsSide ? CGSize(60, 180) : CGSize(60, 20)) << corners;
        std::string found;
        for (const auto& [x, y] : {std::pair(1, 1), {3, 1}, {1, 3}, {3, 3}})
            found += letter(pixelAt(*image, image->width() * x / 4, image->height() * y / 4));
        EXPECT_EQ(found, corners);
        upright.appliesPreferredTrackTransform = false;
        upright.maximumSize = {};
        EXPECT_EQ(upright.copyCGImage(kCMTimeZero).image->size(), CGSize(192, 64));
    }
}

TEST(AVAssetImageGenerator, KeepsTheColoursOfEveryKindOfMovie) {
    // Large movies that do not say what their colours mean mean others than small ones.
    for (const auto& [size, options] : std::map<std::string, std::string>{
             {"64x48", "-vf scale=out_color_matrix=bt601 -pix_fmt yuv420p"},
             {"1280x720", "-vf scale=out_color_matrix=bt709 -pix_fmt yuv420p"},
             {"64x49", "-pix_fmt yuvj444p -vf scale=out_color_matrix=bt709:out_range=pc "
                       "-colorspace bt709 -color_range pc"}}) {
        const URL movie =
            testmovies::make("colour" + size + ".mp4", "-f lavfi -i color=0xC86432:s=" + size +
                                                           ":d=0.1 -c:v libx264 -qp 0 " + options);
        const auto image = generator(movie, true).copyCGImage(kCMTimeZero).image;
        ASSERT_TRUE(image) << size;
        const std::uint32_t pixel = pixelAt(*image, 20, 20);
        for (const auto& [shift, value] : {std::pair(0, 0xC8), {8, 0x64}, {16, 0x32}, {24, 255}})
            EXPECT_NEAR(static_cast<double>(pixel >> shift & 255), value, 4) << size;
    }
}

TEST(AVAssetImageGenerator, GivesNothingOrAPictureOfWhatIsDamaged) {
    const auto grab = [](const URL& url) {
        const bool isPicture =
            generator(url, true).copyCGImage(CMTime({.seconds = 0.5})).image != nullptr;
        generator(url, false).copyCGImage(CMTime({.seconds = 0.5}));
        return isPicture;
    };
    testmovies::write("text.mp4", "no movie");
    testmovies::make("sound.m4a", "-f lavfi -i sine=d=0.5");
    for (const char* name : {"text.mp4", "sound.m4a", "missing.mp4"})
        EXPECT_FALSE(grab(testmovies::url(name))) << name;
    EXPECT_FALSE(grab(*URL::make({.string = "http://127.0.0.1:9/movie.mp4"})));
    EXPECT_FALSE(
        AVAssetImageGenerator{.asset = AVAsset::create({.tracks = std::vector<AVAssetTrack>()})}
            .copyCGImage(kCMTimeZero)
            .image);

    testmovies::numbers("whole", {.count = 30, .options = "-movflags +faststart"});
    const std::string bytes = testmovies::read("whole.mp4");
    EXPECT_TRUE(grab(testmovies::url("whole.mp4")));
    std::minstd_rand random(7);
    for (int round = 0; round < 60; ++round) {
        std::string damaged = round % 3 == 0 ? bytes.substr(0, random() % bytes.size()) : bytes;
        for (int i = 0; i < 6 && !damaged.empty(); ++i)
            damaged[random() % damaged.size()] = static_cast<char>(random());
        testmovies::write("damaged.mp4", damaged);
        grab(testmovies::url("damaged.mp4"));
    }
}

} // namespace
