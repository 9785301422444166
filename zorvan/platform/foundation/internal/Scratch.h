#pragma once

#include <zorvan/platform/foundation/internal/FileDescriptor.h>

#include <string>

namespace zorvan::internal {

/// A place for an item on its way to another name; whatever is there in the end is removed.
///
/// A process that is killed removes nothing. So the names of scratch places are written down
/// beforehand, in a hidden file of their folder, ".zorvan-unfinished-" and the number of the user,
/// on which each process keeps a shared lock (`flock`) while it is at work there. Whoever can have
/// that lock alone knows that all that is written down is nobody's any more, and removes it. The
/// last one to leave removes the file. Where no such file can be made or locked, or somebody else
/// has made it, nobody waits for it, and an item that is left stays.
class Scratch {
public:
    /// The name must be one of `makeUUIDString`, after a dot if you like, and with any extension.
    /// Removes what others left in that folder.
    explicit Scratch(std::string path);

    /// At a hidden name that nothing has, in the folder of an item.
    static Scratch beside(const std::string& item) { return Scratch(pathBeside(item)); }
    static std::string pathBeside(const std::string& item);

    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;
    ~Scratch();

    const std::string& path() const noexcept { return path_; }

private:
    std::string path_;
    FileDescriptor list_;
};

/// Removes what processes that were killed have left in a folder, as far as it is written down and
/// nobody is at work there.
void removeUnfinished(const std::string& folder) noexcept;

} // namespace zorvan::internal
