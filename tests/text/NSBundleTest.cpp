#include "../platform/bundles/BundleFolder.h"
#include <tests/Testing.h>

#include <zorvan/text/NSBundle.h>

TEST_F(BundleTest, ReadsTypedEntries) {
    writeInformation("a.bundle/Contents/Info.plist",
                     "<key>CFBundleName</key><string>Shelf</string>"
                     "<key>CFBundleVersion</key><string>77</string>"
                     "<key>CFBundleShortVersionString</key><string>2.5</string>"
                     "<key>CFBundleLongVersionString</key><string>Shelf 2.5 (77)</string>"
                     "<key>One</key><integer>1</integer><key>Nothing</key><real>0</real>"
                     "<key>Yes</key><string>YES</string>"
                     "<key>Home</key><string>https://example.org/a</string>"
                     "<key>Blank</key><string>https://example.org/a b</string>");
    const auto bundle = NSBundle::create(path("a.bundle"));
    ASSERT_TRUE(bundle);
    EXPECT_EQ(name(*bundle), "Shelf");
    EXPECT_EQ(versionString(*bundle), "77");
    EXPECT_EQ(longVersionString(*bundle), "Shelf 2.5 (77)");
    EXPECT_EQ(version(*bundle), BundleVersion(2, 5, 0));
    EXPECT_EQ(bool_(*bundle, "One"), true);
    EXPECT_EQ(bool_(*bundle, "Nothing"), false);
    EXPECT_EQ(bool_(*bundle, "Yes"), std::nullopt); // a text is no truth value
    EXPECT_EQ(number(*bundle, "One"), NSNumber(1));
    EXPECT_EQ(number(*bundle, "Yes"), std::nullopt);
    EXPECT_EQ(string(*bundle, "One"), std::nullopt);
    EXPECT_EQ(url(*bundle, "Home")->absoluteString(), "https://example.org/a");
    EXPECT_EQ(url(*bundle, "Blank"), std::nullopt);
}

TEST_F(BundleTest, FindsResourcesAndTheIcon) {
    for (const char* file :
         {"data.json", "read me.rtf", "Help/index.html", "Help/keys.plist", "face.png"})
        write(std::string("a/Resources/") + file);
    writeInformation("a/Info.plist", "<key>CFBundleIconFile</key><string>face</string>");
    const auto bundle = NSBundle::create(path("a"));
    EXPECT_EQ(below(jsonURL(*bundle, "data")), "a/Resources/data.json");
    EXPECT_EQ(below(rtfURL(*bundle, "read me")), "a/Resources/read me.rtf");
    EXPECT_EQ(below(htmlURL(*bundle, "index", "Help")), "a/Resources/Help/index.html");
    EXPECT_EQ(below(plistURL(*bundle, "keys", "Help")), "a/Resources/Help/keys.plist");
    EXPECT_FALSE(plistURL(*bundle, "keys"));
    EXPECT_EQ(below(applicationIconURL(*bundle)), "a/Resources/face.png");
    EXPECT_EQ(version(*bundle), BundleVersion::zero); // the bundle tells none
}
