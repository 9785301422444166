#include "BundleFolder.h"
#include <tests/Testing.h>

#include <zorvan/platform/bundles/DesktopIcon.h>

TEST_F(BundleTest, DoesWithoutInformation) {
    std::filesystem::create_directory(root_ / "empty");
    write("broken/Info.plist", "<plist><dict><key>CFBundleName");
    write("list/Info.plist", "<plist><array/></plist>");
    for (const char* folder : {"empty", "broken", "list"}) {
        const auto bundle = NSBundle::create(path(folder));
        ASSERT_TRUE(bundle) << folder;
        EXPECT_TRUE(bundle->infoDictionary().empty()) << folder;
    }
    for (const std::string& none : {path("missing"), path("broken/Info.plist"), std::string()})
        EXPECT_FALSE(NSBundle::create(none)) << none;
}

TEST_F(BundleTest, FindsResources) {
    for (const char* file : {"Resources/data.json", "Resources/Help/index.html", "secret.json"})
        write(std::string("a/Contents/") + file);
    const auto bundle = NSBundle::create(path("a"));
    EXPECT_EQ(below(bundle->URLForResource("data", "json")), "a/Contents/Resources/data.json");
    EXPECT_EQ(below(bundle->URLForResource("index", "html", "Help")),
              "a/Contents/Resources/Help/index.html");
    for (const auto& [name, extension] :
         {std::pair("data.json", ""), {"data", ".json"}, {"Help", ""}})
        EXPECT_TRUE(bundle->URLForResource(name, extension)) << name;
    // Nothing outside the resources is one.
    const std::string resources = path("a/Contents/Resources");
    for (const auto& none :
         {bundle->URLForResource("index", "html"), bundle->URLForResource("index", "html", "help"),
          bundle->URLForResource("other", "json"), bundle->URLForResource("../secret", "json"),
          bundle->URLForResource("secret", "json", ".."), bundle->URLForResource("", "json"),
          bundle->URLForResource("data", "json", resources),
          bundle->URLForResource(std::string_view("data.json\0x", 11), "")})
        EXPECT_EQ(below(none), "");
    write("flat/data.json");
    EXPECT_TRUE(NSBundle::create(path("flat"))->URLForResource("data", "json"));
}

TEST_F(BundleTest, FindsTheMainBundleOfAnExecutable) {
    // Each one hides those before it.
    const auto found = [&] { return NSBundle::bundlePathForExecutable(path("Contents/bin/tool")); };
    EXPECT_EQ(found(), path("Contents/bin"));
    writeInformation("Contents/Info.plist", "");
    EXPECT_EQ(found(), root_.string());
    writeInformation("Contents/share/tool/Info.plist", "");
    EXPECT_EQ(found(), path("Contents/share/tool"));
    writeInformation("Contents/bin/tool.bundle/Contents/Info.plist", "");
    EXPECT_EQ(found(), path("Contents/bin/tool.bundle"));
}

TEST_F(BundleTest, HasAnIcon) {
    setenv("HOME", path("home").c_str(), 1);
    setenv("XDG_DATA_HOME", path("own").c_str(), 1);
    setenv("XDG_DATA_DIRS", (path("shared") + ":relative").c_str(), 1);
    writeInformation("tool.bundle/Info.plist",
                     "<key>CFBundleIdentifier</key><string>org.a.Tool</string>"
                     "<key>CFBundleIconFile</key><string>face</string>");
    const auto bundle = NSBundle::create(path("tool.bundle"));
    const auto icon = [&](std::int64_t size) {
        return below(desktop::iconOfBundle(*bundle, size));
    };
    EXPECT_EQ(icon(48), "");
    const std::string theme = "shared/icons/hicolor/";
    write(theme + "48x48/apps/tool.png");
    EXPECT_EQ(icon(256), theme + "48x48/apps/tool.png");

    write(theme + "index.theme", "[Icon Theme]\nDirectories=16/apps,64/apps,any/apps,far/apps\n"
                                 "[16/apps]\nSize=16\nType=Fixed\n[64/apps]\nSize=64\nThreshold=4\n"
                                 "[any/apps]\nSize=128\nType=Scalable\nMinSize=100\nMaxSize=300\n"
                                 "[far/apps]\nSize=99999999999999999999\n");
    write("shared/applications/org.a.Tool.desktop",
          "# a comment\n[Desktop Entry]\n[no group\nIcon = pen \n");
    for (const char* folder : {"16", "64", "any"})
        write(theme + folder + "/apps/pen.svg");
    EXPECT_EQ(icon(16), theme + "16/apps/pen.svg");
    for (const std::int64_t size : {60, 83}) // to 68 it is 15, to 100 it is 17
        EXPECT_EQ(icon(size), theme + "64/apps/pen.svg");
    EXPECT_EQ(icon(90), theme + "any/apps/pen.svg");
    EXPECT_EQ(icon(2000), theme + "any/apps/pen.svg");
    EXPECT_EQ(icon(std::numeric_limits<std::int64_t>::min()), theme + "16/apps/pen.svg");

    write("own/icons/hicolor/16/apps/pen.png"); // the user's own comes first
    EXPECT_EQ(icon(16), "own/icons/hicolor/16/apps/pen.png");
    write("own/applications/org.a.Tool.desktop",
          "[Desktop Entry]\nIcon=" + path("own/direct.png") + "\n");
    write("own/direct.png");
    EXPECT_EQ(icon(16), "own/direct.png");
    std::filesystem::create_directory(root_ / "tool.bundle" / "face"); // a folder is no icon
    write("tool.bundle/face.png");
    EXPECT_EQ(icon(16), "tool.bundle/face.png");

    // Neither a chain of themes nor a list of folders is followed to an end that is far.
    setenv("XDG_CONFIG_HOME", path("settings").c_str(), 1);
    write("settings/gtk-4.0/settings.ini", "[Settings]\ngtk-icon-theme-name=0\n");
    std::string folders = "a";
    for (int i = 0; i < 2048; ++i)
        folders += ",none";
    for (int i = 0; i < 100; ++i, folders = "a")
        write("shared/icons/" + std::to_string(i) + "/index.theme",
              "[Icon Theme]\nDirectories=" + folders + ",far\nInherits=./0,hicolor," +
                  std::to_string(i + 1) + "\n");
    for (const char* icon : {"0/a/near", "60/a/deep", "64/a/deeper", "0/far/last"})
        write(std::string("shared/icons/") + icon + ".png");
    for (const auto& [name, isFound] : {std::pair("near", true),
                                        {"deep", true},
                                        {"pen", true},
                                        {"deeper", false},
                                        {"last", false}})
        EXPECT_EQ(desktop::iconNamed(name, 16).has_value(), isFound) << name;
}
