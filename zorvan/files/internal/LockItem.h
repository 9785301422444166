#pragma once

#include <zorvan/platform/foundation/internal/FileDescriptor.h>

#include <string>

namespace zorvan::files {

// Advisory locks (`flock`) of the items that have a name when the lock is granted.

/// Waits for the shared lock, links followed. Without descriptor when the item cannot be opened or
/// locked. To be given back by the thread that asked for it.
internal::FileDescriptor lockForReading(const std::string& path);
void unlockAfterReading(internal::FileDescriptor item) noexcept;

/// The exclusive lock of an item, links not followed. Waits for the readers to end, but for this
/// thread itself, which would wait for ever. None when the item cannot be opened or locked.
class LockForReplacing {
public:
    explicit LockForReplacing(const std::string& path);
    LockForReplacing(const LockForReplacing&) = delete;
    LockForReplacing& operator=(const LockForReplacing&) = delete;
    ~LockForReplacing();

private:
    internal::FileDescriptor item_;
    int own_ = -1; // the descriptor that this thread reads from
};

} // namespace zorvan::files
