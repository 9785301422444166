#include <zorvan/text/NSBundle.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>

using namespace zorvan;
namespace fs = std::filesystem;

namespace {

/// A folder of the test's own, which takes itself away.
class BundleTest : public testing::Test {
protected:
    BundleTest() {
        std::string name = (fs::temp_directory_path() / "zorvan-bundle-XXXXXX").string();
        root_ = mkdtemp(name.data());
    }
    ~BundleTest() override { fs::remove_all(root_); }

    void write(const std::string& path, const std::string& text) {
        fs::create_directories((root_ / path).parent_path());
        std::ofstream(root_ / path, std::ios::binary) << text;
    }

    void writeInformation(const std::string& path, const std::string& entries) {
        write(path, "<plist><dict>" + entries + "</dict></plist>");
    }

    std::string path(const std::string& below) const { return (root_ / below).string(); }

    fs::path root_;
};

} // namespace

TEST_F(BundleTest, readsTypedEntries) {
    writeInformation("a.bundle/Contents/Info.plist",
                     "<key>CFBundleName</key><string>Shelf</string>"
                     "<key>CFBundleVersion</key><string>77</string>"
                     "<key>CFBundleShortVersionString</key><string>2.5</string>"
                     "<key>CFBundleLongVersionString</key><string>Shelf 2.5 (77)</string>"
                     "<key>One</key><integer>1</integer><key>Nothing</key><real>0</real>"
                     "<key>Yes</key><string>YES</string><key>True</key><true/>"
                     "<key>Home</key><string>https://example.org/a</string>");
    const auto bundle = NSBundle::create(path("a.bundle"));
    ASSERT_TRUE(bundle);
    EXPECT_EQ(name(*bundle), "Shelf");
    EXPECT_EQ(versionString(*bundle), "77");
    EXPECT_EQ(shortVersionString(*bundle), "2.5");
    EXPECT_EQ(longVersionString(*bundle), "Shelf 2.5 (77)");
    EXPECT_EQ(version(*bundle), BundleVersion(2, 5, 0));
    EXPECT_EQ(bool_(*bundle, "One"), true);
    EXPECT_EQ(bool_(*bundle, "Nothing"), false);
    EXPECT_EQ(bool_(*bundle, "True"), true);
    EXPECT_EQ(bool_(*bundle, "Yes"), std::nullopt); // a text is no truth value
    EXPECT_EQ(number(*bundle, "One"), NSNumber(1));
    EXPECT_EQ(number(*bundle, "Yes"), std::nullopt);
    EXPECT_EQ(string(*bundle, "One"), std::nullopt);
    EXPECT_EQ(string(*bundle, "Missing"), std::nullopt);
    EXPECT_EQ(url(*bundle, "Home")->absoluteString(), "https://example.org/a");
    EXPECT_EQ(url(*bundle, "Yes"), std::nullopt);
    EXPECT_EQ(url(*bundle, "One"), std::nullopt);
}

TEST_F(BundleTest, doesWithoutInformation) {
    fs::create_directories(root_ / "empty");
    write("broken/Info.plist", "<plist><dict><key>CFBundleName");
    write("list/Info.plist", "<plist><array/></plist>");
    for (const char* folder : {"empty", "broken", "list"}) {
        const auto bundle = NSBundle::create(path(folder));
        ASSERT_TRUE(bundle) << folder;
        EXPECT_TRUE(bundle->infoDictionary().empty()) << folder;
        EXPECT_EQ(version(*bundle), BundleVersion::zero) << folder;
        EXPECT_EQ(name(*bundle), std::nullopt) << folder;
    }
    EXPECT_FALSE(NSBundle::create(path("missing")));
    EXPECT_FALSE(NSBundle::create(path("broken/Info.plist")));
    EXPECT_FALSE(NSBundle::create(""));
}

TEST_F(BundleTest, findsResources) {
    write("a/Contents/Resources/data.json", "{}");
    write("a/Contents/Resources/Help/index.html", "");
    write("a/Contents/Resources/Help/keys.plist", "");
    write("a/Contents/Resources/read me.rtf", "");
    write("a/Contents/secret.json", "");
    const auto bundle = NSBundle::create(path("a"));
    EXPECT_EQ(jsonURL(*bundle, "data")->path(), path("a/Contents/Resources/data.json"));
    EXPECT_EQ(rtfURL(*bundle, "read me")->lastPathComponent(), "read me.rtf");
    EXPECT_EQ(htmlURL(*bundle, "index", "Help")->path(),
              path("a/Contents/Resources/Help/index.html"));
    EXPECT_TRUE(plistURL(*bundle, "keys", "Help"));
    EXPECT_FALSE(plistURL(*bundle, "keys"));
    EXPECT_FALSE(htmlURL(*bundle, "index", "help"));
    EXPECT_FALSE(jsonURL(*bundle, "other"));
    EXPECT_TRUE(bundle->URLForResource("data.json", ""));
    EXPECT_TRUE(bundle->URLForResource("data", ".json"));
    EXPECT_TRUE(bundle->URLForResource("Help", ""));
    // Nothing outside the resources is one.
    EXPECT_FALSE(jsonURL(*bundle, "../secret"));
    EXPECT_FALSE(bundle->URLForResource("secret", "json", ".."));
    EXPECT_FALSE(bundle->URLForResource("data", "json", path("a/Contents/Resources")));
    EXPECT_FALSE(bundle->URLForResource(std::string_view("data.json\0x", 11), ""));
    EXPECT_FALSE(jsonURL(*bundle, ""));

    write("flat/data.json", "{}");
    EXPECT_TRUE(jsonURL(*NSBundle::create(path("flat")), "data"));
}

TEST_F(BundleTest, findsTheMainBundleOfAnExecutable) {
    // Each one hides those before it.
    EXPECT_EQ(NSBundle::bundlePathForExecutable(path("Contents/bin/tool")), path("Contents/bin"));
    writeInformation("Contents/Info.plist", "");
    EXPECT_EQ(NSBundle::bundlePathForExecutable(path("Contents/bin/tool")), root_.string());
    writeInformation("Contents/share/tool/Info.plist", "");
    EXPECT_EQ(NSBundle::bundlePathForExecutable(path("Contents/bin/tool")),
              path("Contents/share/tool"));
    writeInformation("Contents/bin/tool.bundle/Contents/Info.plist", "");
    EXPECT_EQ(NSBundle::bundlePathForExecutable(path("Contents/bin/tool")),
              path("Contents/bin/tool.bundle"));
}

TEST_F(BundleTest, hasAnIcon) {
    setenv("HOME", path("home").c_str(), 1);
    setenv("XDG_DATA_HOME", path("own").c_str(), 1);
    setenv("XDG_DATA_DIRS", (path("shared") + ":relative").c_str(), 1);
    writeInformation("tool.bundle/Info.plist",
                     "<key>CFBundleIdentifier</key><string>org.a.Tool</string>"
                     "<key>CFBundleIconFile</key><string>face</string>");
    const auto bundle = NSBundle::create(path("tool.bundle"));
    const auto icon = [&](std::int64_t size) {
        const std::optional<URL> found = applicationIconURL(*bundle, size);
        return found ? fs::relative(found->path(), root_).string() : "";
    };
    EXPECT_EQ(icon(48), "");
    write("shared/icons/hicolor/48x48/apps/tool.png", "");
    EXPECT_EQ(icon(256), "shared/icons/hicolor/48x48/apps/tool.png");

    write("shared/icons/hicolor/index.theme",
          "[Icon Theme]\nDirectories=16/apps,64/apps,any/apps,far/apps\n"
          "[16/apps]\nSize=16\nType=Fixed\n[64/apps]\nSize=64\nThreshold=4\n"
          "[any/apps]\nSize=128\nType=Scalable\nMinSize=100\nMaxSize=300\n"
          "[far/apps]\nSize=99999999999999999999\n");
    write("shared/applications/org.a.Tool.desktop", "# a comment\n[Desktop Entry]\nIcon = pen \n");
    for (const char* folder : {"16", "64", "any"})
        write(std::string("shared/icons/hicolor/") + folder + "/apps/pen.svg", "");
    EXPECT_EQ(icon(16), "shared/icons/hicolor/16/apps/pen.svg");
    EXPECT_EQ(icon(60), "shared/icons/hicolor/64/apps/pen.svg");
    EXPECT_EQ(icon(90), "shared/icons/hicolor/any/apps/pen.svg");
    EXPECT_EQ(icon(2000), "shared/icons/hicolor/any/apps/pen.svg");
    EXPECT_EQ(icon(std::numeric_limits<std::int64_t>::min()),
              "shared/icons/hicolor/16/apps/pen.svg");
    write("own/icons/hicolor/16/apps/pen.png", ""); // the user's own comes first
    EXPECT_EQ(icon(16), "own/icons/hicolor/16/apps/pen.png");

    write("own/applications/org.a.Tool.desktop",
          "[Desktop Entry]\nIcon=" + path("own/direct.png") + "\n");
    write("own/direct.png", "");
    EXPECT_EQ(icon(16), "own/direct.png");
    fs::create_directory(root_ / "tool.bundle" / "face"); // a folder is no icon
    write("tool.bundle/face.png", "");
    EXPECT_EQ(icon(16), "tool.bundle/face.png");
}

TEST(NSBundle, mainBundleIsBesideTheExecutable) {
    const auto bundle = NSBundle::mainBundle();
    ASSERT_TRUE(bundle);
    EXPECT_EQ(bundle, NSBundle::mainBundle());
    EXPECT_TRUE(bundle->bundlePath().ends_with("/version-test.bundle"));
    EXPECT_EQ(bundle->bundleIdentifier(), "org.zorvan.version-test");
    EXPECT_EQ(name(*bundle), "Version Test");
}
