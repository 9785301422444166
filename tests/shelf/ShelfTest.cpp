#include "TestMovies.h"
#include "displayText.h"
#include <tests/Outcome.h>
#include <tests/Testing.h>
#include <tests/bytesOf.h>

#include <zorvan/media/CGImage.h>
#include <zorvan/media/CGImageSource.h>

#include <nlohmann/json.hpp>
#include <sstream>

using nlohmann::json;
using Names = std::vector<std::string>;

namespace {

class Shelf : public testing::Test {
protected:
    void picture(const std::string& name, std::int64_t width = 60, std::int64_t height = 40) {
        const Data bytes =
            *CGImage::empty(width, height)
                 ->data(name.ends_with(".png") ? ImageExportFormat::png : ImageExportFormat::jpg);
        folder.file(name, textOf(bytes));
    }
    std::string at(const std::string& name) const { return folder.path() / name; }

    /// Runs the program, after other words of the command.
    static Outcome shelf(const Names& arguments, Names command = {}) {
        command.emplace_back(SHELF_PROGRAM);
        command.insert(command.end(), arguments.begin(), arguments.end());
        return run(command);
    }
    /// Runs it, prints no table, and has this to say.
    static void expectErrors(const Names& arguments, int status, const std::string& errors,
                             const Names& command = {}) {
        const Outcome outcome = shelf(arguments, command);
        EXPECT_EQ(outcome.status, status) << errors << outcome.errors;
        // The encoder of HEIC has a line of its own where it finds few facts of the machine.
        const bool hasLine = outcome.errors.starts_with("x265 [");
        EXPECT_EQ(outcome.errors.substr(hasLine ? outcome.errors.find('\n') + 1 : 0), errors);
        EXPECT_EQ(outcome.output, "") << errors;
    }
    /// The names that the JSON of a run has, relative to the folder.
    Names listed(Names arguments) {
        arguments.emplace_back("--json");
        Names names;
        for (const auto& fact : json::parse(shelf(arguments).output))
            names.push_back(
                fs::path(fact.at("path").get<std::string>()).lexically_relative(folder.path()));
        return names;
    }
    CGSize sizeOf(const std::string& name) {
        return CGImage::imageSize(folder.url(name)).value_or(CGSize());
    }

    TemporaryFolder folder;
};

Names linesOf(const std::string& text) {
    Names lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

} // namespace

TEST_F(Shelf, HelpsAndRefusesNonsense) {
    const Outcome help = shelf({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.output.starts_with("Usage: shelf [OPTIONS] PATH...\n"));
    for (const std::string& line : linesOf(help.output))
        EXPECT_LE(displayWidth(line), 80u) << line;
    EXPECT_EQ(shelf({"--version"}).output, "shelf " SHELF_VERSION "\n");

    const std::pair<Names, const char*> table[] = {
        {{}, "shelf: name a picture or a folder of pictures\n"},
        {{"--frob", "."}, "shelf: unknown option '--frob'\n"},
        {{".", "--size"}, "shelf: --size takes a value\n"},
        {{".", "--size", "0"}, "shelf: --size takes a number from 1 to 65535, not '0'\n"},
        {{".", "--cell=12x"}, "shelf: --cell takes a number from 1 to 4096, not '12x'\n"},
        {{".", "--format", "bmp"}, "shelf: --format takes png, jpg, tiff or heic, not 'bmp'\n"},
        {{".", "--quick", "-o", "a.png"}, "--quick is for a list alone"},
        {{".", "--json", "--quiet"}, "exclude each other"},
    };
    for (const auto& [arguments, complaint] : table) {
        const Outcome outcome = shelf(arguments);
        EXPECT_EQ(outcome.status, 2) << complaint;
        EXPECT_NE(outcome.errors.find(complaint), std::string::npos) << outcome.errors;
        EXPECT_EQ(outcome.output, "");
    }
}

TEST_F(Shelf, ListsWhatItsOptionsSay) {
    for (const char* name : {"img10.jpg", "IMG9.png", "sub/a.jpg", ".hidden.jpg", "doc.rtfd/b.jpg"})
        picture(name);
    folder.file("notes.txt", "no picture");
    folder.link("link.jpg", "img10.jpg");
    const std::string root = folder.path();
    EXPECT_EQ(listed({root}), (Names{"IMG9.png", "img10.jpg", "link.jpg"}));
    EXPECT_EQ(listed({root, "--no-links", "-r"}), (Names{"IMG9.png", "img10.jpg", "sub/a.jpg"}));
    EXPECT_EQ(listed({root, "--hidden", "--packages", "--recursive", "--no-links"}),
              (Names{".hidden.jpg", "doc.rtfd/b.jpg", "IMG9.png", "img10.jpg", "sub/a.jpg"}));
    for (const char* type : {"png", ".PNG", "public.png"})
        EXPECT_EQ(listed({root, "--type", type}), Names{"IMG9.png"}) << type;
    EXPECT_EQ(listed({root, "--type", "png", "--type", "public.jpeg", "--no-links"}),
              (Names{"IMG9.png", "img10.jpg"}));
    // Given by name, a file needs no extension, and counts once.
    fs::rename(at("IMG9.png"), at("bare"));
    EXPECT_EQ(listed({at("sub"), at("bare"), at("sub/a.jpg")}), (Names{"sub/a.jpg", "bare"}));
}

TEST_F(Shelf, PrintsJSONForMachines) {
    picture("a.jpg", 300, 20);
    folder.file("bad\xFF.png", "x");
    const json facts = json::parse(shelf({folder.path(), "--json"}).output);
    ASSERT_EQ(facts.size(), 2u);
    EXPECT_EQ(facts[0].at("path"), at("a.jpg"));
    EXPECT_EQ(facts[0].size(), 8u) << "what movies have besides";
    EXPECT_EQ(facts[1].at("path").get<std::string>(), at("bad\uFFFD.png"));
    EXPECT_TRUE(facts[1].at("width").is_null());
    EXPECT_TRUE(facts[1].at("error").is_string());
    EXPECT_EQ(shelf({folder.path(), "--json", "--type", "gif"}).output, "[]\n");
    // What is cut short is noticed unless in a hurry.
    const std::string cut = SAMPLES "/unreadable/truncated.jpg";
    for (const char* option : {"--json", "--quick"})
        EXPECT_EQ(json::parse(shelf({cut, "--json", option}).output)[0].at("error").is_null(),
                  option == std::string("--quick"));
}

TEST_F(Shelf, ShowsMoviesAmongThePictures) {
    testmovies::make("red.mp4", "-f lavfi -i color=red:s=160x80:r=30000/1001:d=2 -c:v libx264 "
                                "-metadata creation_time=2024-05-31T12:34:56Z");
    testmovies::setMatrix("red.mp4", 0, {0, 1, -1, 0, 80, 0});
    folder.file("a.mp4", testmovies::read("red.mp4"));
    folder.file("bare", testmovies::read("red.mp4")); // known by its bytes
    folder.file("cut.mp4", testmovies::read("red.mp4").substr(0, 300));
    const json facts =
        json::parse(shelf({at("a.mp4"), at("bare"), at("cut.mp4"), "--json"}).output);
    EXPECT_NEAR(facts[0].at("duration").get<double>(), 2, 0.05);
    EXPECT_EQ(facts[0].at("type"), "public.mpeg-4");
    EXPECT_EQ(facts[0].at("orientation"), 6);
    EXPECT_EQ(facts[0].at("date"), "2024-05-31T12:34:56Z");
    EXPECT_EQ(facts[1].at("type"), "public.movie");
    EXPECT_TRUE(facts[2].at("error").is_string());

    const Outcome sheet = shelf({folder.path(), "-o", at("sheet.png"), "--cell", "80"});
    for (const char* part : {"0:02, 29.97 a second, 2024-05-31", "2 files, 1 unreadable"})
        EXPECT_NE(sheet.output.find(part), std::string::npos) << part;
    const auto image = CGImage::image(folder.url("sheet.png"));
    const auto redAt = [&](std::int64_t x, std::int64_t y) {
        const std::uint8_t* const pixel = image->bitmap().row(24 + y) + (24 + x) * 4;
        return pixel[0] > 200 && pixel[1] < 60 && pixel[2] < 60;
    };
    // Half as wide as high, with a sign in its middle.
    EXPECT_TRUE(redAt(23, 2) && redAt(56, 77));
    EXPECT_FALSE(redAt(17, 40) || redAt(62, 40) || redAt(40, 40));
    EXPECT_EQ(shelf({at("a.mp4"), "--export", at("out"), "-q", "--format", "png"}).status, 0);
    EXPECT_EQ(sizeOf("out/a.png"), CGSize(80, 160));
}

TEST_F(Shelf, MakesSheetsInEachFormat) {
    for (int i = 0; i < 7; ++i)
        picture("in/" + std::to_string(i) + ".jpg");
    folder.file("in/8.jpg", "broken");
    for (const char* extension : {"png", "jpg", "tiff", "heic"}) {
        const std::string sheet = std::string("sheet.") + extension;
        expectErrors({at("in"), "-o", at(sheet), "--columns", "3", "--cell", "50", "-q"}, 0, "");
        EXPECT_EQ(sizeOf(sheet), CGSize(48 + 3 * 50 + 2 * 20, 48 + 3 * 90 + 2 * 20)) << extension;
        const auto source = CGImageSource::create(folder.url(sheet));
        EXPECT_EQ(source->type(), ImageExportFormat::make({.pathExt = extension})->cgType());
    }
    EXPECT_EQ(folder.count(), 5) << "nothing else";
    // A sheet is left out of the next one in its place.
    picture("one/a.jpg");
    for (int round = 0; round < 2; ++round)
        expectErrors({at("one"), "-q", "-o", at("one/sheet.png"), "--cell", "50"}, 0, "");
    EXPECT_EQ(sizeOf("one/sheet.png"), CGSize(98, 138));
    // The old one stays when the new one fails.
    folder.file("sheet.png", "old");
    const Names limited{"sh", "-c", "ulimit -f 0; exec \"$@\" 2>&1", "sh"};
    EXPECT_NE(shelf({at("one"), "-q", "-o", at("sheet.png")}, limited).status, 0);
    EXPECT_EQ(text(at("sheet.png")), "old");
    expectErrors({at("one"), "-q", "-o", at("sheet.png"), "--cell", "4096"}, 0, "");
    // No fonts are needed.
    folder.file("fonts.conf", "<?xml version=\"1.0\"?><fontconfig><cachedir>" + at("cache") +
                                  "</cachedir></fontconfig>");
    expectErrors({at("in"), "-q", "-o", at("plain.png")}, 0, "",
                 {"env", "FONTCONFIG_FILE=" + at("fonts.conf")});
}

TEST_F(Shelf, SaysWhatIsMissingOrCannotBeWritten) {
    picture("a.jpg");
    folder.file("broken.jpg", "x");
    folder.folder("out.png");
    expectErrors({at("a.jpg"), at("none"), at("n\ne"), "-o", at("sheet.png")}, 2,
                 "shelf: " + at("none") + ": no such file or folder\nshelf: " + at("n\\ne") +
                     ": no such file or folder\n");
    EXPECT_FALSE(fs::exists(at("sheet.png")));
    expectErrors({at("a.jpg"), "-q", "-o", at("out.png")}, 1,
                 "shelf: " + at("out.png") + ": the sheet cannot be written\n");
    expectErrors({at("a.jpg"), "-o", at("none/sheet.png")}, 1,
                 "shelf: " + at("none") + ": no such folder\n");
    expectErrors({at("broken.jpg"), "-q", "--export", at("out")}, 1,
                 "shelf: no picture could be read, so none was written\n");
    expectErrors({at("a.jpg"), "--export", at("a.jpg") + "/out"}, 1,
                 "shelf: " + at("a.jpg") + "/out: Not a directory\n");
    expectErrors({at("a.jpg")}, 1, "shelf: standard output: No space left on device\n",
                 {"sh", "-c", "exec \"$@\" >/dev/full", "sh"});
}
