#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

/// A folder in memory where there is one, removed at the end.
class ScratchFolder {
public:
    ScratchFolder() {
        std::string name =
            std::filesystem::exists("/dev/shm") ? "/dev/shm/fuzz-XXXXXX" : "/tmp/fuzz-XXXXXX";
        if (!mkdtemp(name.data()))
            std::abort();
        path_ = name;
    }
    ~ScratchFolder() { std::filesystem::remove_all(path_); }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};
