#pragma once

#include <compare>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

/// One thing that a process does to what is below a folder. Files and folders are numbered in the
/// order in which they come up; the folder itself is 0.
struct DiskEvent {
    enum class Kind {
        write,       ///< `bytes` at `offset` of `item`
        resize,      ///< `item` to `offset` bytes
        synchronize, ///< what happened to `item` is on the disk from here on
        names,       ///< those `gone` are no longer there, those `come` are, all at once
        say,         ///< the process told the tester `offset`
    };
    static constexpr int everything = -1;

    /// That a folder has an item under a name.
    struct Entry {
        int folder = 0;
        std::string name;
        int item = 0;
        bool isFolder = false;
        friend auto operator<=>(const Entry&, const Entry&) = default;
    };

    Kind kind{};
    int item = 0; ///< or `everything`, to synchronize
    std::uint64_t offset = 0;
    std::string bytes{};
    std::vector<Entry> gone{}, come{};
};

/// Runs work in a process of its own and records what it, with all its threads, does to a folder
/// that is empty, and when it asks for it to be on the disk. Throws when it does what cannot be
/// recorded.
std::vector<DiskEvent> recordDisk(const std::filesystem::path& folder,
                                  const std::function<void()>& work);

/// Called by the work: what it was promised so far.
void sayToRecorder(std::int64_t number);

/// How many of the first events happen before the power fails, and what becomes of those that were
/// not waited for: all or none of them survive, or, with another seed, some.
struct PowerFailure {
    std::size_t after = 0;
    std::uint32_t seed = 0;
    static constexpr std::uint32_t allSurvive = 0, noneSurvive = 1;
};

/// Makes, in an empty folder, what a disk may hold after a power failure: everything that was
/// waited for; of other writes and sizes any, each whole, in part (up to a boundary of 512 bytes)
/// or not at all; of other changes of names, which file systems keep in order, those up to any
/// moment. What a folder holds is only waited for by synchronizing the folder.
void restoreDisk(const std::vector<DiskEvent>& events, PowerFailure failure,
                 const std::filesystem::path& folder);
