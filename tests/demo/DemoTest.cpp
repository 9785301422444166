#include "PictureFile.h"
#include <tests/Outcome.h>
#include <tests/Testing.h>

#include <nlohmann/json.hpp>

using nlohmann::json;

namespace {

/// What the generator of the samples says of those that a plain walk over the folder meets.
const std::map<std::string, json>& expected() {
    static const auto facts = [] {
        std::ifstream stream(fs::path(SAMPLES) / "expected.json");
        std::map<std::string, json> result;
        for (const auto& fact : json::parse(stream)) {
            const std::string place = fact.value("place", "");
            if (place != "hidden" && place != "package")
                result[fact.at("path")] = fact;
        }
        return result;
    }();
    return facts;
}

/// What the program says of the samples, in its order, with the paths relative to their folder.
json reported() {
    const Outcome outcome = run({SHELF_PROGRAM, SAMPLES, "--recursive", "--json"});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    json facts = json::parse(outcome.output);
    for (auto& fact : facts)
        fact["path"] =
            fs::path(fact.at("path").get<std::string>()).lexically_relative(SAMPLES).string();
    return facts;
}

/// The names that the pictures of a list take in the folder they are exported to: a taken one is
/// numbered.
std::map<std::string, std::string> exportNames(const json& facts, const std::string& extension) {
    std::set<std::string> taken;
    std::map<std::string, std::string> names;
    for (const auto& fact : facts) {
        if (!fact.at("error").is_null())
            continue;
        const fs::path path = fact.at("path").get<std::string>();
        std::string name = path.stem().string() + extension;
        for (int n = 0; !taken.insert(name).second; ++n)
            name = path.stem().string() + " (" + std::to_string(n) + ")" + extension;
        names[path] = name;
    }
    return names;
}

/// The mean of the square in a corner whose side is a thirtieth of the shorter side.
std::array<double, 4> cornerColour(const PictureFile& picture, const std::string& corner) {
    const int side = std::max(1, std::min(picture.width, picture.height) / 30);
    const int left = corner.ends_with("Left") ? 0 : picture.width - side;
    const int top = corner.starts_with("top") ? 0 : picture.height - side;
    std::array<double, 4> sum{};
    for (int y = top; y < top + side; ++y)
        for (int x = left; x < left + side; ++x)
            for (std::size_t i = 0; i < 4; ++i)
                sum[i] += picture.at(x, y)[i];
    for (double& value : sum)
        value /= side * side;
    return sum;
}

struct Format {
    const char* name;
    bool alpha;
    double loss;
};

void expectUpright(const PictureFile& picture, const json& fact, const Format& format) {
    for (const auto& [corner, colour] : fact.at("corners").items()) {
        if (!format.alpha && colour[3] < 255)
            continue;
        const auto seen = cornerColour(picture, corner);
        const double tolerance = fact.at("tolerance").get<double>() + format.loss;
        for (std::size_t i = 0; i < 4; ++i)
            EXPECT_NEAR(seen[i], colour[i].get<double>(), tolerance)
                << corner << ", component " << i;
    }
}

void expectFitted(const PictureFile& picture, const json& fact, double limit) {
    const double width = fact.at("uprightWidth"), height = fact.at("uprightHeight");
    const double scale = std::min({1.0, limit / width, limit / height});
    EXPECT_EQ(picture.width, std::round(width * scale));
    EXPECT_EQ(picture.height, std::round(height * scale));
}

std::size_t countOfPixelsLike(const PictureFile& picture, const std::array<int, 4>& colour) {
    std::size_t count = 0;
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x) {
            const std::uint8_t* pixel = picture.at(x, y);
            count += std::abs(pixel[0] - colour[0]) < 20 && std::abs(pixel[1] - colour[1]) < 20 &&
                     std::abs(pixel[2] - colour[2]) < 20;
        }
    return count;
}

} // namespace

TEST(Samples, AreAllReportedAsTheyAre) {
    std::set<std::string> seen;
    for (const auto& fact : reported()) {
        const std::string path = fact.at("path");
        SCOPED_TRACE(path);
        ASSERT_TRUE(expected().contains(path)) << "no such sample";
        EXPECT_TRUE(seen.insert(path).second) << "reported twice";
        const json& truth = expected().at(path);
        EXPECT_EQ(fact.at("error").is_null(), truth.at("readable").get<bool>())
            << fact.at("error").dump();
        if (!truth.at("readable"))
            continue;
        for (const char* key :
             {"type", "width", "height", "orientation", "uprightWidth", "uprightHeight"})
            EXPECT_TRUE(fact.at(key) == truth.at(key)) << key << ": " << fact.at(key).dump();
    }
    for (const auto& [path, truth] : expected())
        EXPECT_TRUE(seen.contains(path)) << path << " is not reported";
}

class Export : public testing::TestWithParam<Format> {};

TEST_P(Export, WritesEveryPictureUprightAndFitted) {
    const Format format = GetParam();
    const TemporaryFolder folder;
    const Outcome outcome = run({SHELF_PROGRAM, SAMPLES, "--recursive", "--export",
                                 folder.path() / "out", "--size", "200", "--format", format.name});
    ASSERT_EQ(outcome.status, 0) << outcome.errors;

    const auto names = exportNames(reported(), "." + std::string(format.name));
    for (const auto& [path, name] : names) {
        SCOPED_TRACE(path + " as " + name);
        const PictureFile picture(folder.path() / "out" / name);
        EXPECT_EQ(picture.orientation, 1) << "a viewer would turn it again";
        expectFitted(picture, expected().at(path), 200);
        expectUpright(picture, expected().at(path), format);
    }
    const auto written = std::distance(fs::directory_iterator(folder.path() / "out"), {});
    EXPECT_EQ(written, std::ssize(names)) << "something else is left there";
}

INSTANTIATE_TEST_SUITE_P(Formats, Export,
                         testing::Values(Format{"png", true, 2}, Format{"jpg", false, 6},
                                         Format{"tiff", true, 2}, Format{"heic", true, 16}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(Demo, MakesASheetOfTheSamplesAndSaysWhere) {
    const TemporaryFolder folder;
    const Outcome outcome = run({"env", "ZORVAN_SHELF=" SHELF_PROGRAM,
                                 "ZORVAN_DEMO_DIR=" + folder.path().string(), DEMO_SCRIPT});
    ASSERT_EQ(outcome.status, 0) << outcome.errors;

    const fs::path sheet = folder.path() / "contact-sheet.png";
    EXPECT_TRUE(outcome.output.ends_with(": " + sheet.string() + "\n")) << outcome.output;
    EXPECT_EQ(folder.count(), 1) << "half a sheet is left there";
    for (const auto& [path, fact] : expected())
        EXPECT_NE(outcome.output.find(fs::path(path).filename()), std::string::npos)
            << path << " is not in the table";

    // The photo corners of nearly all samples have the same four colours, and the sheet shows all
    // four.
    const PictureFile picture(sheet);
    for (const auto& [corner, colour] : expected().at("orientation-1.jpg").at("corners").items())
        EXPECT_GT(countOfPixelsLike(picture, colour), expected().size() * 30) << corner;
}

TEST(Demo, EndsWithTwoWhenTheFolderIsMissing) {
    const Outcome outcome =
        run({"env", "ZORVAN_SHELF=" SHELF_PROGRAM, DEMO_SCRIPT, "/no/such/folder"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.errors.find("/no/such/folder"), std::string::npos) << outcome.errors;
    EXPECT_EQ(std::ranges::count(outcome.errors, '\n'), 1) << outcome.errors;
}
