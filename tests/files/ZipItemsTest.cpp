// Archives, judged by two readers that are not the library's writer: unzip and Python.

#include "TemporaryFolder.h"
#include "TracedProcess.h"
#include <tests/Testing.h>
#include <tests/Variable.h>
#include <tests/outputOf.h>

#include <zorvan/files/NSFileManager.h>
#include <zorvan/platform/archives/ZipArchive.h>

namespace {

class ZipItems : public testing::Test {
protected:
    std::optional<Data> zip(const std::vector<URL>& urls) const {
        return NSFileManager::defaultManager()->zipItems(urls);
    }

    void write(const std::vector<URL>& urls) const {
        const auto data = zip(urls);
        ASSERT_TRUE(data);
        std::ofstream(archive, std::ios::binary)
            .write(reinterpret_cast<const char*>(data->data()), std::ssize(*data));
    }

    /// What Python writes that has the archive as `z`.
    std::string inPython(const std::string& statement) const {
        return outputOf("PYTHONIOENCODING=utf-8 python3 -c \"import sys, zipfile; "
                        "z = zipfile.ZipFile(sys.argv[1]); " +
                        statement + "\" " + archive);
    }

    TemporaryFolder folder;
    const std::string archive = (folder.path() / "archive.zip").string();
};

} // namespace

TEST_F(ZipItems, HoldsFoldersLinksAndNamesOfAllKinds) {
    folder.file("a/Grüße 日本 👩‍👩‍👧.txt", "Inhalt");
    folder.make({"a/bad \xFF\xC3 \xED\xA0\x80 name", "a/leer/", "a/broken -> nowhere", "other/a",
                 "a/link -> Grüße 日本 👩‍👩‍👧.txt"});
    folder.file("a/none", "");
    folder.file("a/run", std::string(300'000, 'r'));
    mkfifo((folder.path() / "a/pipe").c_str(), 0600);
    chmod((folder.path() / "a/run").c_str(), 0750);
    const timespec dates[] = {{1'000'000'000, 0}, {1'000'000'000, 0}};
    utimensat(AT_FDCWD, (folder.path() / "a/run").c_str(), dates, 0);

    write({folder.url("a"), folder.url("other/a"), folder.url("a")});
    std::string wanted = "None\na (0)\n";
    for (const std::string top : {"a (1)/", "a/"})
        for (const char* name :
             {"", "Grüße 日本 👩‍👩‍👧.txt", "bad %FF%C3 %ED%A0%80 name", "broken",
              "leer/", "link", "none", "run"})
            wanted += top + name + "\n";
    EXPECT_EQ(inPython("print(z.testzip(), *sorted(z.namelist()), sep='\\n')"), wanted);

    const fs::path out = folder.path() / "out";
    int status = -1;
    outputOf("LC_ALL=C.UTF-8 TZ=UTC unzip -q -d " + out.string() + " " + archive, &status);
    ASSERT_EQ(status, 0);
    EXPECT_EQ(text(out / "a/link"), "Inhalt");
    EXPECT_EQ(fs::read_symlink(out / "a/broken"), "nowhere");
    EXPECT_TRUE(fs::is_directory(out / "a/leer") && fs::is_empty(out / "a/leer"));
    EXPECT_EQ(fs::file_size(out / "a/none"), 0u);
    EXPECT_EQ(text(out / "a/run"), std::string(300'000, 'r'));
    EXPECT_EQ(text(out / "a (0)"), "x");
    EXPECT_EQ(fs::status(out / "a/run").permissions(), fs::perms(0750));
    EXPECT_EQ(outputOf("stat -c %Y " + (out / "a/run").string()), "1000000000\n");
}

TEST_F(ZipItems, IsEmptyOrAbsent) {
    const auto empty = zip({});
    ASSERT_TRUE(empty);
    EXPECT_EQ(empty->size(), 22u); // the end of the directory, and nothing before it
    folder.file("file");
    asOrdinaryUser([] {
        TemporaryFolder own;
        own.file("folder/closed");
        own.setMode("folder/closed", 0);
        EXPECT_FALSE(NSFileManager::defaultManager()->zipItems({own.url("folder")}));
    });
    folder.folder("tmp");
    const Variable place("TMPDIR", (folder.path() / "tmp").c_str());
    EXPECT_FALSE(zip({folder.url("file"), folder.url("missing")}));
    EXPECT_FALSE(zip({URL::root()}));
    EXPECT_FALSE(zip({*URL::make({.string = "http://a.org/x"})}));
    EXPECT_FALSE(zip({folder.url()})); // holds the folder that it would be copied to
    EXPECT_TRUE(zip({folder.url("file")}));
    EXPECT_TRUE(fs::is_empty(folder.path() / "tmp"));
    const Variable noPlace("TMPDIR", (folder.path() / "file").c_str());
    EXPECT_FALSE(zip({folder.url("file")}));
}

// Another user puts a link in the place of a folder, at each moment there is.
TEST_F(ZipItems, HoldsNothingThatALinkLeadsTo) {
    fs::copy_file("/proc/self/exe", folder.path() / "file");
    ASSERT_TRUE(zip({})); // so that the library is loaded
    auto end = TracedProcess::End::wasStruck;
    for (std::size_t call = 0; end == TracedProcess::End::wasStruck; ++call) {
        TemporaryFolder inner(TemporaryFolder::fastParent());
        inner.file("sub/file");
        TracedProcess process(call, [&] {
            fs::rename(inner.path() / "sub", inner.path() / "aside");
            inner.link("sub", folder.path());
        });
        end = process.run(
            [&] { EXPECT_LT(zipArchiveOfFolder(inner.path()).value_or(Data()).size(), 1000u); });
        ASSERT_EQ(process.exitStatus(), 0) << "at call " << call;
    }
}

TEST_F(ZipItems, HoldsFilesOfMoreThanFourGigabytes) {
    constexpr std::uintmax_t size = (std::uintmax_t{1} << 32) + 10;
    folder.file("large", "first");
    fs::resize_file(folder.path() / "large", size);
    folder.file("z", "after it");
    write({folder.url("large"), folder.url("z")});
    // Reading all of it again would take as long as writing it; what comes after it stands beyond.
    EXPECT_EQ(inPython("print(z.getinfo('large').file_size, z.read('z').decode())"),
              std::to_string(size) + " after it\n");
}
