// Archives, judged by three readers that are not the library's writer: unzip, Python and bsdtar.

#include "ChildProcess.h"
#include "TemporaryFolder.h"

#include <zorvan/files/NSFileManager.h>

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sstream>
#include <sys/stat.h>

using namespace zorvan;
using testing::ElementsAre;
namespace fs = std::filesystem;

namespace {

struct Output {
    int status = -1;
    std::string text;
};

Output run(const std::string& command) {
    Output output;
    FILE* pipe = popen((command + " 2>&1").c_str(), "r");
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe))
        output.text += static_cast<char>(c);
    output.status = WEXITSTATUS(pclose(pipe));
    return output;
}

class ZipItems : public testing::Test {
protected:
    std::optional<Data> zip(const std::vector<URL>& urls) const {
        return NSFileManager::defaultManager()->zipItems(urls);
    }

    /// Writes the archive of the items and lets every reader read all of it.
    void zipAndCheck(const std::vector<URL>& urls) const {
        const auto data = zip(urls);
        ASSERT_TRUE(data);
        std::ofstream(archive, std::ios::binary)
            .write(reinterpret_cast<const char*>(data->data()),
                   static_cast<std::streamsize>(data->size()));
        for (const std::string command : {"unzip -tq ", "bsdtar -xOf ", "python3 -m zipfile -t "}) {
            const Output output = run(command + archive + " >/dev/null");
            EXPECT_EQ(output.status, 0) << command << output.text;
        }
    }

    std::vector<std::string> names() const {
        const Output output = run("PYTHONIOENCODING=utf-8 python3 -c \"import sys, zipfile; "
                                  "print('\\n'.join(zipfile.ZipFile(sys.argv[1]).namelist()))\" " +
                                  archive);
        std::istringstream lines(output.text);
        std::vector<std::string> result;
        for (std::string line; std::getline(lines, line);)
            result.push_back(line);
        return result;
    }

    TemporaryFolder folder;
    const std::string archive = (folder.path() / "archive.zip").string();
};

} // namespace

TEST_F(ZipItems, holdsFoldersLinksAndNamesOfAllKinds) {
    folder.file("a/Grüße 日本 👩‍👩‍👧.txt", "Inhalt");
    folder.file("a/none", "");
    folder.file("a/run", std::string(300'000, 'r'));
    folder.file("a/bad \xFF\xC3 \xED\xA0\x80 name");
    folder.folder("a/leer");
    folder.link("a/link", "Grüße 日本 👩‍👩‍👧.txt");
    folder.link("a/broken", "nowhere");
    folder.file("other/a", "the other a");
    mkfifo((folder.path() / "a/pipe").c_str(), 0600);
    chmod((folder.path() / "a/run").c_str(), 0750);
    const timespec dates[] = {{1'000'000'000, 0}, {1'000'000'000, 0}};
    utimensat(AT_FDCWD, (folder.path() / "a/run").c_str(), dates, 0);

    zipAndCheck({folder.url("a"), folder.url("other/a"), folder.url("a")});
    const std::vector<std::string> inner{"",
                                         "Grüße 日本 👩‍👩‍👧.txt",
                                         "bad %FF%C3 %ED%A0%80 name",
                                         "broken",
                                         "leer/",
                                         "link",
                                         "none",
                                         "run"};
    std::vector<std::string> wanted;
    for (const char* top : {"a", "a (0)", "a (1)"}) {
        if (top == std::string("a (0)"))
            wanted.push_back("a (0)");
        else
            for (const std::string& name : inner)
                wanted.push_back(std::string(top) + "/" + name);
    }
    std::sort(wanted.begin(), wanted.end());
    auto found = names();
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, wanted);

    for (const std::string command : {"unzip -q -d ", "bsdtar -xf "}) {
        const fs::path out = folder.path() / "out";
        fs::create_directory(out);
        const std::string line = command[0] == 'u' ? command + out.string() + " " + archive
                                                   : command + archive + " -C " + out.string();
        ASSERT_EQ(run("LC_ALL=C.UTF-8 TZ=UTC " + line).status, 0);
        EXPECT_EQ(text(out / "a/Grüße 日本 👩‍👩‍👧.txt"), "Inhalt") << line;
        EXPECT_EQ(text(out / "a/link"), "Inhalt");
        EXPECT_EQ(fs::read_symlink(out / "a/broken"), "nowhere");
        EXPECT_TRUE(fs::is_directory(out / "a/leer") && fs::is_empty(out / "a/leer"));
        EXPECT_EQ(fs::file_size(out / "a/none"), 0u);
        EXPECT_EQ(text(out / "a/run"), std::string(300'000, 'r'));
        EXPECT_EQ(text(out / "a (0)"), "the other a");
        EXPECT_EQ(fs::status(out / "a/run").permissions(), fs::perms(0750));
        struct stat status {};
        stat((out / "a/run").c_str(), &status);
        EXPECT_EQ(status.st_mtime, 1'000'000'000);
        fs::remove_all(out);
    }
}

TEST_F(ZipItems, isEmptyOrAbsent) {
    const auto empty = zip({});
    ASSERT_TRUE(empty);
    EXPECT_EQ(empty->size(), 22u); // the end of the directory, and nothing before it
    folder.file("file");
    const std::string before = std::getenv("TMPDIR") ? std::getenv("TMPDIR") : "";
    folder.folder("tmp");
    setenv("TMPDIR", (folder.path() / "tmp").c_str(), 1);
    EXPECT_FALSE(zip({folder.url("file"), folder.url("missing")}));
    EXPECT_FALSE(zip({URL::root()}));
    EXPECT_FALSE(zip({*URL::make({.string = "http://a.org/x"})}));
    EXPECT_FALSE(zip({folder.url()})); // holds the folder that it would be copied to
    EXPECT_TRUE(zip({folder.url("file")}));
    EXPECT_TRUE(fs::is_empty(folder.path() / "tmp"));
    setenv("TMPDIR", (folder.path() / "file").c_str(), 1);
    EXPECT_FALSE(zip({folder.url("file")}));
    before.empty() ? unsetenv("TMPDIR") : setenv("TMPDIR", before.c_str(), 1);

    asOrdinaryUser([] {
        TemporaryFolder own;
        own.file("folder/closed");
        chmod(own.url("folder/closed").path().c_str(), 0);
        EXPECT_FALSE(NSFileManager::defaultManager()->zipItems({own.url("folder")}));
    });
}

TEST_F(ZipItems, holdsFilesOfMoreThanFourGigabytes) {
    constexpr std::uintmax_t size = (std::uintmax_t{1} << 32) + 10;
    folder.file("large", "first");
    fs::resize_file(folder.path() / "large", size);
    folder.file("z", "after it");
    const auto data = zip({folder.url("large"), folder.url("z")});
    ASSERT_TRUE(data);
    std::ofstream(archive, std::ios::binary)
        .write(reinterpret_cast<const char*>(data->data()),
               static_cast<std::streamsize>(data->size()));
    // Reading all of it again would take as long as writing it; what comes after it stands beyond.
    const Output read = run("python3 -c \"import sys, zipfile; z = zipfile.ZipFile(sys.argv[1]); "
                            "print(z.getinfo('large').file_size, z.read('z').decode())\" " +
                            archive);
    EXPECT_EQ(read.text, std::to_string(size) + " after it\n");
}
