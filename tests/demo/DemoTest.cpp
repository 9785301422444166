#include <tests/Outcome.h>
#include <tests/Testing.h>

#include <zorvan/media/CGImage.h>

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

/// What the program says of a folder, in its order, with the paths relative to it.
json reported(const std::string& folder) {
    const Outcome outcome = run({SHELF_PROGRAM, folder, "--recursive", "--json"});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    json facts = json::parse(outcome.output);
    for (auto& fact : facts)
        fact["path"] =
            fs::path(fact.at("path").get<std::string>()).lexically_relative(folder).string();
    return facts;
}

/// The pictures of a list by the names that they take in the folder they are exported to: a taken
/// one is numbered.
std::map<std::string, std::string> exports(const json& facts, const std::string& extension) {
    std::map<std::string, std::string> paths;
    for (const auto& fact : facts) {
        if (!fact.at("error").is_null())
            continue;
        const fs::path path = fact.at("path").get<std::string>();
        std::string name = path.stem().string() + extension;
        for (int n = 0; !paths.emplace(name, path).second; ++n)
            name = path.stem().string() + " (" + std::to_string(n) + ")" + extension;
    }
    return paths;
}

/// The mean of the square in a corner whose side is a thirtieth of the shorter side.
std::array<double, 4> cornerColour(const CGImage& picture, const std::string& corner) {
    const auto side = std::max<std::int64_t>(1, std::min(picture.width(), picture.height()) / 30);
    const std::int64_t left = corner.ends_with("Left") ? 0 : picture.width() - side;
    const std::int64_t top = corner.starts_with("top") ? 0 : picture.height() - side;
    std::array<double, 4> mean{};
    for (std::int64_t y = top; y < top + side; ++y)
        for (std::int64_t x = left; x < left + side; ++x)
            for (std::int64_t i = 0; i < 4; ++i)
                mean[static_cast<std::size_t>(i)] +=
                    picture.bitmap().row(y)[x * 4 + i] / static_cast<double>(side * side);
    return mean;
}

} // namespace

TEST(Samples, AreAllReportedAsTheyAre) {
    auto unseen = expected();
    for (const auto& fact : reported(SAMPLES)) {
        const std::string path = fact.at("path");
        SCOPED_TRACE(path);
        const json truth = unseen[path];
        ASSERT_FALSE(truth.is_null()) << "no such sample, or reported twice";
        unseen.erase(path);
        EXPECT_EQ(fact.at("error").is_null(), truth.at("readable").get<bool>())
            << fact.at("error").dump();
        if (!truth.at("readable"))
            continue;
        for (const char* key :
             {"type", "width", "height", "orientation", "uprightWidth", "uprightHeight"})
            EXPECT_TRUE(fact.at(key) == truth.at(key)) << key << ": " << fact.at(key).dump();
    }
    EXPECT_TRUE(unseen.empty()) << unseen.begin()->first << " is not reported";
}

TEST(Samples, AreAllExportedUprightAndFitted) {
    const std::pair<std::string, double> losses[] = {
        {"png", 2}, {"jpg", 6}, {"tiff", 2}, {"heic", 16}};
    for (const auto& [format, loss] : losses) {
        const TemporaryFolder folder;
        const Outcome outcome = run({SHELF_PROGRAM, SAMPLES, "--recursive", "--export",
                                     folder.path(), "--size", "200", "--format", format});
        ASSERT_EQ(outcome.status, 0) << outcome.errors;
        auto paths = exports(reported(SAMPLES), "." + format);
        for (const auto& fact : reported(folder.path())) {
            const std::string name = fact.at("path"), path = paths[name];
            SCOPED_TRACE(path + " as " + name);
            ASSERT_EQ(paths.erase(name), 1u);
            ASSERT_FALSE(path.empty()) << "something else is left there";
            const json& truth = expected().at(path);
            EXPECT_EQ(fact.at("orientation"), 1) << "a viewer would turn it again";
            const double width = truth.at("uprightWidth"), height = truth.at("uprightHeight");
            const double scale = std::min({1.0, 200 / width, 200 / height});
            EXPECT_EQ(fact.at("width"), std::round(width * scale));
            EXPECT_EQ(fact.at("height"), std::round(height * scale));
            const auto picture = CGImage::image(folder.url(name));
            const double tolerance = truth.at("tolerance").get<double>() + loss;
            for (const auto& [corner, colour] : truth.at("corners").items()) {
                auto wanted = colour.get<std::array<double, 4>>();
                if (wanted[3] < 255 && format == "jpg")
                    continue;
                for (std::size_t i = 0; i < 3; ++i)
                    wanted[i] *= wanted[3] / 255;
                EXPECT_THAT(cornerColour(*picture, corner),
                            testing::Pointwise(testing::DoubleNear(tolerance), wanted))
                    << corner;
            }
        }
        EXPECT_THAT(paths, IsEmpty());
    }
}

TEST(Demo, MakesASheetOfTheSamplesAndSaysWhere) {
    const Outcome missing =
        run({"env", "ZORVAN_SHELF=" SHELF_PROGRAM, DEMO_SCRIPT, "/no/such/folder"});
    EXPECT_EQ(missing.status, 2);
    EXPECT_NE(missing.errors.find("/no/such/folder"), std::string::npos) << missing.errors;
    EXPECT_EQ(std::ranges::count(missing.errors, '\n'), 1) << missing.errors;
    const TemporaryFolder folder;
    const Outcome outcome = run({"env", "ZORVAN_SHELF=" SHELF_PROGRAM,
                                 "ZORVAN_DEMO_DIR=" + folder.path().string(), DEMO_SCRIPT});
    ASSERT_EQ(outcome.status, 0) << outcome.errors;

    const fs::path sheet = folder.path() / "contact-sheet.png";
    EXPECT_TRUE(outcome.output.ends_with(": " + sheet.string() + "\n")) << outcome.output;
    EXPECT_EQ(folder.count(), 1) << "half a sheet is left there";
    EXPECT_GT(CGImage::imageSize(folder.url("contact-sheet.png"))->height, 1000);
    for (const auto& [path, fact] : expected())
        EXPECT_NE(outcome.output.find(fs::path(path).filename()), std::string::npos)
            << path << " is not in the table";
}
