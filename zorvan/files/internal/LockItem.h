#pragma once

#include <zorvan/platform/foundation/internal/FileDescriptor.h>

#include <string>

namespace zorvan::files {

enum class LockKind { shared, exclusive };

/// Waits for the advisory lock (`flock`) of the item that has this name when the lock is granted;
/// it is held as long as the descriptor. A shared lock follows links, an exclusive one does not.
/// Without descriptor when the item cannot be opened or locked.
internal::FileDescriptor lockItem(const std::string& path, LockKind kind);

} // namespace zorvan::files
