#include <tests/Testing.h>

#include <tests/files/TemporaryFolder.h>
#include <tests/outputOf.h>

namespace {

/// An application that is installed in versions and launched.
class LaunchTracking : public testing::Test {
protected:
    LaunchTracking() {
        ::setenv("XDG_CONFIG_HOME", (folder_.path() / "config").c_str(), 1);
        std::filesystem::copy_file(PROGRAM, folder_.path() / "app");
    }

    void install(const std::string& version) const {
        folder_.file("app.bundle/Info.plist",
                     "<plist><dict><key>CFBundleIdentifier</key><string>org.example.app</string>"
                     "<key>CFBundleShortVersionString</key><string>" +
                         version + "</string></dict></plist>");
    }

    std::string launch(const std::string& arguments = "") const {
        int status = -1;
        std::string text =
            outputOf(folder_.path().string() + "/" + program_ + " " + arguments, &status);
        EXPECT_EQ(status, 0);
        return text;
    }

    TemporaryFolder folder_;
    std::string program_ = "app";
};

} // namespace

TEST_F(LaunchTracking, TellsFirstSecondAndUpdatedLaunch) {
    install("1.0");
    EXPECT_EQ(launch(), "VersionNumber=1.0.0\nLaunchesCount=1\nFirstLaunchDate=now\n"
                        "VersionDidUpdate=1\nUpdateLaunchDate=now\n");
    EXPECT_EQ(launch(), "VersionNumber=1.0.0\nLaunchesCount=2\nVersionDidUpdate=0\n");
    install("1.0.1");
    EXPECT_EQ(launch(), "VersionNumber=1.0.1\nLaunchesCount=3\nVersionDidUpdate=1\n"
                        "UpdateLaunchDate=now\n");
    install("1.0"); // back
    EXPECT_EQ(launch(), "VersionNumber=1.0.0\nLaunchesCount=4\nVersionDidUpdate=0\n");
    EXPECT_EQ(launch("clear"), "0 left\n");
    EXPECT_EQ(launch(), "VersionNumber=1.0.0\nLaunchesCount=1\nFirstLaunchDate=now\n"
                        "VersionDidUpdate=1\nUpdateLaunchDate=now\n");
}

// An object that is older than the store uses it after the main function, what it writes is kept,
// and the database is closed before.
TEST_F(LaunchTracking, LeavesSettingsUsableUntilTheEnd) {
    install("1.0");
    EXPECT_TRUE(launch("late").ends_with("UpdateLaunchDate=now\nlate 2\n"));
    EXPECT_TRUE(launch("late").ends_with("late 2\n"));
    EXPECT_TRUE(launch().starts_with("VersionNumber=1.0.0\nLaunchesCount=1\n")); // cleared
    EXPECT_FALSE(
        std::filesystem::exists(folder_.path() / "config/zorvan/org.example.app.settings-wal"));
}

// As by a package manager, while the program runs and before it asks for bundle and settings.
TEST_F(LaunchTracking, IsThatOfTheProgramWhoseFileWasReplaced) {
    install("1.0");
    launch();
    EXPECT_EQ(launch("updated"), "VersionNumber=1.0.0\nLaunchesCount=2\nVersionDidUpdate=0\n");
    std::filesystem::remove_all(folder_.path() / "app.bundle"); // settings go by the name now
    EXPECT_EQ(launch(), "VersionNumber=0.0.0\nLaunchesCount=1\nFirstLaunchDate=now\n"
                        "VersionDidUpdate=0\n");
    EXPECT_EQ(launch("updated"), "VersionNumber=0.0.0\nLaunchesCount=2\nVersionDidUpdate=0\n");
    std::filesystem::rename(folder_.path() / "app", folder_.path() / "app (deleted)");
    program_ = "'app (deleted)'";
    EXPECT_NE(launch().find("LaunchesCount=1"), std::string::npos);
    EXPECT_NE(launch("updated").find("LaunchesCount=2"), std::string::npos);
    EXPECT_TRUE(
        std::filesystem::exists(folder_.path() / "config/zorvan/app%20%28deleted%29.settings"));
}

// What is stored comes from anywhere: other versions, other programs, people.
TEST_F(LaunchTracking, ReadsWhatIsStoredLeniently) {
    install("2.0");
    EXPECT_EQ(launch("VersionNumber 1.x LaunchesCount 41"),
              "VersionNumber=2.0.0\nLaunchesCount=42\nVersionDidUpdate=1\nUpdateLaunchDate=now\n");
    EXPECT_EQ(launch("VersionNumber 2.0.1 LaunchesCount 0"),
              "VersionNumber=2.0.0\nLaunchesCount=1\nFirstLaunchDate=now\nVersionDidUpdate=0\n");
    EXPECT_EQ(launch("LaunchesCount 9223372036854775807"),
              "VersionNumber=2.0.0\nLaunchesCount=9223372036854775807\nVersionDidUpdate=0\n");
}
