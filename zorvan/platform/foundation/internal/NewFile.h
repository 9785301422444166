#pragma once

#include <zorvan/platform/foundation/internal/FileDescriptor.h>
#include <zorvan/platform/foundation/internal/Scratch.h>

#include <optional>
#include <span>
#include <string>
#include <sys/types.h>

namespace zorvan::internal {

/// A file that is written before anybody sees it, and gets its name in one step.
///
/// Until then it has no name, and vanishes with the process. Where the volume has no such files it
/// is a scratch file. The functions return 0 or the error number.
class NewFile {
public:
    /// In the folder of a scratch name (`Scratch`), which it has where it needs one; with the mode
    /// as far as the process lets it. Removes what others left in that folder.
    NewFile(const std::string& scratchName, mode_t mode);

    /// For reading and writing.
    int descriptor() const noexcept { return file_.get(); }
    /// Why there is no file; 0 when there is.
    int error() const noexcept { return error_; }

    int write(std::span<const std::byte> bytes) const noexcept;
    /// Waits until what was written is on the disk.
    int synchronise() const noexcept;

    /// Gives it a name that nothing has: EEXIST when something does. Once only.
    int place(const std::string& path);

    /// Puts it in the place of an item (`replaceItem`). EXDEV on another volume, where only a
    /// scratch file can tell. Once only.
    int replace(const std::string& path);

private:
    FileDescriptor file_;
    std::optional<Scratch> scratch_; // unless it has no name
    int error_ = 0;
};

} // namespace zorvan::internal
