#include <tests/Testing.h>
#include <tests/files/TemporaryFolder.h>

#include <zorvan/platform/coreservices/UTType.h>
#include <zorvan/platform/coreservices/internal/MimeDatabase.h>

using coreservices::MimeDatabase;

namespace {

class MimeDatabaseTest : public testing::Test {
protected:
    void write(const std::string& name, const std::string& text) {
        folder.file("mime/" + name, text);
    }
    MimeDatabase read() { return MimeDatabase({mime.string()}); }

    const TemporaryFolder folder;
    const fs::path mime = folder.path() / "mime";
};

} // namespace

TEST_F(MimeDatabaseTest, ReadsWhatMakesSense) {
    using namespace std::string_literals;
    write("globs2", "# a comment\n50:image/x-tga:*.tga\n80:image/x-targa:*.TGA\n"
                    "50:image/x-late:*.tga\n60:text/x-c++src:*.C:cs\n"
                    "50:application/x-tarz:*.tar.gz\n50:application/x-pattern:*.x[0-9]\n"
                    "50:../../etc/passwd:*.a\n50:image/../x:*.b\n:::\n5x:image/c:*.d\n"
                    "99999999999999999999:image/d:*.e\n50:image/e\n\n50:image/:*.f\n"
                    "50:/g:*.g\n50:image/h:*.h\0\n\xFF\xFE\n50:image/ok:*.ok"s);
    write("subclasses", "image/ok\nimage/ok image/ok\nimage/ok ../x\n x y z\nimage/ok image/p\n");
    const MimeDatabase database = read();
    EXPECT_THAT(database.typeOfExtension("tga"), Optional(Eq("image/x-targa")));
    for (const char* extension : {"a", "b", "c", "d", "e", "f", "g", "tar.gz", "x[0-9]"})
        EXPECT_FALSE(database.typeOfExtension(extension)) << extension;
    EXPECT_TRUE(database.contains("application/x-tarz"));
    EXPECT_THAT(database.typeOfIdentifier("org.freedesktop.mime.image.X-TGA"),
                Optional(Eq("image/x-tga")));
    EXPECT_THAT(database.typeOfExtension("ok"), Optional(Eq("image/ok")));
    EXPECT_THAT(database.declared("image/ok").parents, testing::ElementsAre("image/ok", "image/p"));
}

TEST_F(MimeDatabaseTest, ReadsComments) {
    write("image/x-tga.xml", "<comment>A &lt;TGA&gt; &amp; image &bad;</comment>"
                             "<comment xml:lang=\"de\">TGA-Bild</comment><comment>x");
    const MimeDatabase database = read();
    EXPECT_THAT(database.comment("image/x-tga", ""), Optional(Eq("A <TGA> & image &bad;")));
    EXPECT_THAT(database.comment("image/x-tga", "de"), Optional(Eq("TGA-Bild")));
    EXPECT_FALSE(database.comment("image/x-tga", "fr"));
    EXPECT_FALSE(database.comment("../mime/image/x-tga", ""));
}

// The database of the machine is read once in a process, so its use is tried in one of its own.
TEST_F(MimeDatabaseTest, GivesIdentifiersAndConformance) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            setenv("XDG_DATA_HOME", folder.path().c_str(), 1);
            setenv("XDG_DATA_DIRS", "relative:/nonexistent", 1);
            setenv("LC_ALL", "de_DE.UTF-8", 1);
            write("globs2", "50:image/x-tga:*.tga\n50:image/jpeg:*.jfif\n50:audio/a_b+c:*.abc\n"
                            "50:application/x-loop:*.loop\n50:application/vnd.doc:*.odx\n");
            write("subclasses", "application/x-loop application/x-pool\n"
                                "application/x-pool application/x-loop\n"
                                "application/vnd.doc application/zip\n");
            write("image/x-tga.xml", "<comment xml:lang=\"de\">TGA-Bild</comment>");
            const auto type = [](const char* extension) {
                return UTTypeCreatePreferredIdentifierForTag(kUTTagClassFilenameExtension,
                                                             extension)
                    .value_or("none");
            };
            const auto declaration = UTTypeCopyDeclaration(type("tga"));
            const bool holds =
                type("TGA") == "org.freedesktop.mime.image.x-tga" &&
                type("jfif") == "public.jpeg" &&
                type("abc") == "org.freedesktop.mime.audio.a-b-c" &&
                UTTypeConformsTo(type("tga"), kUTTypeImage) &&
                !UTTypeConformsTo(type("tga"), kUTTypeJPEG) &&
                UTTypeConformsTo(type("abc"), kUTTypeAudio) &&
                UTTypeConformsTo(type("odx"), kUTTypeArchive) &&
                UTTypeConformsTo(type("loop"), "org.freedesktop.mime.application.x-pool") &&
                !UTTypeConformsTo(type("loop"), kUTTypeImage) &&
                UTTypeConformsTo("org.freedesktop.mime.image.jpeg", kUTTypeJPEG) &&
                UTTypeCopyDescription(type("tga")) == "TGA-Bild" &&
                UTTypeCopyDescription(kUTTypeJPEG) == "JPEG image" && declaration &&
                declaration->at("UTTypeConformsTo") ==
                    PropertyList(PropertyList::Array{"public.image"});
            std::exit(holds ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}
