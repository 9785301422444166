#pragma once

#include <zorvan/platform/foundation/URL.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <vector>

/// All that a file holds.
inline std::string text(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// A fresh directory, removed with all it holds at the end.
class TemporaryFolder {
public:
    explicit TemporaryFolder(const std::filesystem::path& parent = testing::TempDir()) {
        std::string name = std::filesystem::canonical(parent) / "files-XXXXXX";
        if (!mkdtemp(name.data()))
            throw std::runtime_error("no temporary folder");
        path_ = name;
    }
    ~TemporaryFolder() {
        // Folders that may not be written are opened as they are met, before they are entered.
        for (const auto& entry : std::filesystem::recursive_directory_iterator(path_))
            if (!entry.is_symlink() && entry.is_directory())
                std::filesystem::permissions(entry, std::filesystem::perms::owner_all,
                                             std::filesystem::perm_options::add);
        std::filesystem::remove_all(path_);
    }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// A place in memory, where the machine has one, for tests that make very many files.
    static std::filesystem::path fastParent() {
        return access("/dev/shm", W_OK) == 0 ? "/dev/shm" : testing::TempDir();
    }

    const std::filesystem::path& path() const { return path_; }
    zorvan::URL url(const std::string& name = "") const {
        return zorvan::URL({.fileURLWithPath = (path_ / name).string()});
    }

    /// Writes a file, with the folders it stands in.
    void file(const std::string& name, const std::string& text = "x") const {
        std::filesystem::create_directories((path_ / name).parent_path());
        std::ofstream(path_ / name, std::ios::binary) << text;
    }
    void folder(const std::string& name) const {
        std::filesystem::create_directories(path_ / name);
    }
    void link(const std::string& name, const std::string& target) const {
        std::filesystem::create_symlink(target, path_ / name);
    }
    /// Files that hold "x", folders, whose names end in "/", and links as "name -> target".
    void make(const std::vector<std::string>& items) const {
        for (const std::string& item : items) {
            const std::size_t arrow = item.find(" -> ");
            if (arrow != item.npos)
                link(item.substr(0, arrow), item.substr(arrow + 4));
            else
                item.ends_with('/') ? folder(item) : file(item);
        }
    }
    void setMode(const std::string& name, unsigned mode) const {
        std::filesystem::permissions(path_ / name, std::filesystem::perms(mode));
    }
    /// How many items stand right in it.
    std::ptrdiff_t count() const {
        return std::distance(std::filesystem::directory_iterator(path_), {});
    }

    /// The path of a URL below this folder.
    std::string relative(const zorvan::URL& url) const {
        return url.path().substr(std::min(path_.string().size() + 1, url.path().size()));
    }
    std::vector<std::string> relative(const std::vector<zorvan::URL>& urls) const {
        std::vector<std::string> paths;
        for (const zorvan::URL& url : urls)
            paths.push_back(relative(url));
        return paths;
    }

private:
    std::filesystem::path path_;
};
