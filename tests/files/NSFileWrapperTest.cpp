#include "ChildProcess.h"
#include "TemporaryFolder.h"
#include <tests/Testing.h>
#include <tests/bytesOf.h>

#include <zorvan/files/NSFileManager.h>
#include <zorvan/files/NSFileWrapper.h>
#include <zorvan/files/URL.h>
#include <zorvan/platform/archives/ZipArchive.h>

#include <csignal>

namespace {

std::vector<std::string> names(const NSFileWrapper& folder) {
    std::vector<std::string> result;
    for (const auto& [name, child] : folder.fileWrappers())
        result.push_back(name);
    return result;
}

} // namespace

TEST(NSFileWrapper, ReadsAFolderOrMakesOne) {
    TemporaryFolder folder;
    folder.file("doc/text", "words");
    folder.make({"doc/sub/inner", "doc/link -> text", "to-doc -> doc"});
    mkfifo((folder.path() / "doc/pipe").c_str(), 0600);
    for (const char* name : {"doc", "to-doc"}) {
        const auto wrapper = NSFileWrapper::create({.url = folder.url(name)});
        EXPECT_EQ(wrapper->filename(), name);
        EXPECT_THAT(names(*wrapper), ElementsAre("link", "sub", "text"));
        const auto& children = wrapper->fileWrappers();
        EXPECT_EQ(children.at("text")->regularFileContents(), bytesOf("words"));
        EXPECT_EQ(children.at("link")->symbolicLinkDestination(), "text");
        EXPECT_THAT(names(*children.at("sub")), ElementsAre("inner"));
        EXPECT_FALSE(children.at("sub")->regularFileContents());
    }
    const auto empty = NSFileWrapper::create({.url = folder.url("new/deep")});
    EXPECT_TRUE(fs::is_directory(folder.path() / "new/deep"));
    EXPECT_TRUE(empty->isDirectory() && empty->fileWrappers().empty());

    const auto lost = NSFileWrapper::create({.url = folder.url("doc")});
    fs::remove(folder.path() / "doc/text");
    EXPECT_THROW(lost->fileWrappers().at("text")->regularFileContents(), fs::filesystem_error);
    fs::rename(folder.path() / "doc/pipe", folder.path() / "doc/text");
    EXPECT_THROW(lost->fileWrappers().at("text")->regularFileContents(), fs::filesystem_error);
    for (const URL& url : {folder.url("doc/sub/inner"), folder.url("doc/sub/inner/x"),
                           *URL::make({.string = "http://a.org/x"})})
        EXPECT_THROW(NSFileWrapper::create({.url = url}), fs::filesystem_error);
}

TEST(NSFileWrapper, WritesWhatWasReadAndChanged) {
    TemporaryFolder folder;
    folder.make({"doc/old", "doc/dropped", "doc/run", "file"});
    folder.setMode("doc/run", 0755);
    const auto wrapper = NSFileWrapper::create({.url = folder.url("doc")});
    wrapper->removeFileWrapper(wrapper->fileWrappers().at("dropped"));
    for (const char* name : {"old", "old (0)"}) {
        const auto file = NSFileWrapper::create({.regularFileWithContents = bytesOf(name)});
        file->setPreferredFilename("old");
        wrapper->addFileWrapper(file);
    }
    const auto sub =
        NSFileWrapper::create({.directoryWithFileWrappers = NSFileWrapper::Children()});
    sub->setPreferredFilename("sub");
    EXPECT_EQ(wrapper->addFileWrapper(sub), "sub");
    const auto link = NSFileWrapper::create({.symbolicLinkWithDestination = "../old"});
    link->setPreferredFilename("link");
    sub->addFileWrapper(link);

    for (const char* place : {"doc", "file", "new"}) {
        wrapper->write(folder.url(place));
        const auto read = NSFileWrapper::create({.url = folder.url(place)});
        EXPECT_THAT(names(*read), ElementsAre("old", "old (0)", "old (1)", "run", "sub")) << place;
        EXPECT_EQ(read->fileWrappers().at("old")->regularFileContents(), bytesOf("x"));
        EXPECT_EQ(read->fileWrappers().at("old (1)")->regularFileContents(), bytesOf("old (0)"));
        EXPECT_EQ(fs::status(folder.path() / place / "run").permissions(), fs::perms(0755));
        EXPECT_EQ(fs::read_symlink(folder.path() / place / "sub/link"), "../old");
    }
    EXPECT_EQ(folder.count(), 3);

    // A file that is gone makes writing fail, and leaves what is there.
    fs::remove(folder.path() / "doc/run");
    EXPECT_THROW(wrapper->write(folder.url("new")), fs::filesystem_error);
    EXPECT_TRUE(fs::exists(folder.path() / "new/run"));
    EXPECT_EQ(folder.count(), 3);
}

// Whoever opens a file that another program has on lease waits until that one is done with it.
TEST(LeasedFiles, AreWaitedFor) {
    TemporaryFolder folder;
    folder.make({"doc/text"});
    const URL file = folder.url("doc/text");
    const auto wrapper = NSFileWrapper::create({.url = folder.url("doc")});
    const std::pair<const char*, std::function<bool()>> table[] = {
        {"wrapper",
         [&] {
             return wrapper->fileWrappers().at("text")->regularFileContents() == bytesOf("new");
         }},
        {"copy",
         [&] {
             NSFileManager::defaultManager()->overwritingCopy(file, folder.url("copy"));
             return text(folder.path() / "copy") == "new";
         }},
        {"archive", [&] { return zipArchiveOfFolder(folder.url("doc").path()).has_value(); }},
        {"coordinated",
         [&] {
             return readSecuredFileWithCoordinator(file, [](const URL&) { return true; })
                 .has_value();
         }},
    };
    for (const auto& [name, read] : table) {
        folder.file("doc/text", "old");
        const Signal ready;
        const pid_t child = startChild([&] {
            sigset_t wanted;
            sigemptyset(&wanted);
            sigaddset(&wanted, SIGIO);
            sigprocmask(SIG_BLOCK, &wanted, nullptr);
            const int leased = open(file.path().c_str(), O_RDWR);
            EXPECT_EQ(fcntl(leased, F_SETLEASE, F_WRLCK), 0);
            EXPECT_TRUE(ready.give());
            int signal = 0;
            sigwait(&wanted, &signal);
            EXPECT_EQ(pwrite(leased, "new", 3, 0), 3);
            fcntl(leased, F_SETLEASE, F_UNLCK);
        });
        EXPECT_TRUE(ready.await());
        EXPECT_TRUE(read()) << name;
        kill(child, SIGIO);
        EXPECT_EQ(exitStatus(child), 0) << "no leases are to be had here";
    }
}

TEST(NSFileWrapperDeathTest, StopsAtBrokenContracts) {
    const auto file = NSFileWrapper::create({.regularFileWithContents = Data()});
    const auto outer =
        NSFileWrapper::create({.directoryWithFileWrappers = NSFileWrapper::Children()});
    const auto inner =
        NSFileWrapper::create({.directoryWithFileWrappers = NSFileWrapper::Children()});
    inner->setPreferredFilename("inner");
    outer->addFileWrapper(inner);
    outer->setPreferredFilename("outer");
    const std::string self =
        "^The file wrapper \"outer\" cannot be added to what it holds, or to itself.\n$";
    EXPECT_DEATH(inner->addFileWrapper(outer), self);
    EXPECT_DEATH(outer->addFileWrapper(outer), self);
    const std::string noDirectory = "^The file wrapper \"a%0A\" is not a directory.\n$";
    file->setPreferredFilename("a\n");
    EXPECT_DEATH(file->addFileWrapper(inner), noDirectory);
    EXPECT_DEATH((void)file->fileWrappers(), noDirectory);
    for (const std::string name : {"", ".", "..", "a/b"}) {
        const std::string noName =
            "^\"" + name + "\" is no file name that a file wrapper can have in a directory.\n$";
        file->setPreferredFilename(name);
        EXPECT_DEATH(outer->addFileWrapper(file), noName);
        const NSFileWrapper::Children children{{name, file}};
        EXPECT_DEATH(NSFileWrapper::create({.directoryWithFileWrappers = children}), noName);
    }
}

TEST(NSFileWrapper, IsWrittenAgainAndAgainInItsPlaceWithItsNamesExchanged) {
    TemporaryFolder folder;
    folder.file("doc/text", "first");
    folder.file("doc/sub/kept", "kept");
    fs::create_directory_symlink("doc", folder.path() / "link");
    const auto wrapper = NSFileWrapper::create({.url = folder.url("link")});
    const auto first = wrapper->fileWrappers().at("text");
    for (int round = 0; round < 3; ++round) {
        if (round == 0) {
            wrapper->removeFileWrapper(first);
            first->setPreferredFilename("text.bak");
            wrapper->addFileWrapper(first);
            const auto next = NSFileWrapper::create({.regularFileWithContents = bytesOf("next")});
            next->setPreferredFilename("text");
            wrapper->addFileWrapper(next);
        }
        wrapper->write(folder.url("doc"));
        EXPECT_EQ(text(folder.path() / "doc/text"), "next");
        EXPECT_EQ(text(folder.path() / "doc/text.bak"), "first");
        EXPECT_EQ(text(folder.path() / "doc/sub/kept"), "kept");
        EXPECT_EQ(first->regularFileContents(), bytesOf("first"));
    }
    // What is no longer in it has lost its bytes, and takes no others for them.
    wrapper->removeFileWrapper(first);
    const auto other = NSFileWrapper::create({.regularFileWithContents = bytesOf("other")});
    other->setPreferredFilename("text.bak");
    wrapper->addFileWrapper(other);
    wrapper->write(folder.url("doc"));
    EXPECT_THROW(first->regularFileContents(), fs::filesystem_error);
    EXPECT_THROW(first->write(folder.url("old")), fs::filesystem_error);
}

TEST(NSFileWrapper, KeepsWhatIsPrivateSo) {
    TemporaryFolder folder;
    folder.file("doc/sub/secret", "s");
    folder.setMode("doc/sub", 0700);
    const auto wrapper = NSFileWrapper::create({.url = folder.url("doc")});
    folder.file("file");
    for (const char* place : {"doc", "copy", "file"}) {
        wrapper->write(folder.url(place));
        EXPECT_EQ(fs::status(folder.path() / place / "sub").permissions(), fs::perms(0700));
        EXPECT_EQ(fs::status(folder.path() / place).permissions(),
                  fs::status(folder.path() / "doc").permissions());
    }
}
