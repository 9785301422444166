#pragma once

#include <zorvan/platform/foundation/internal/FileDescriptor.h>

#include <sys/stat.h>

namespace zorvan::internal {

/// `openat` of an item for reading. Nobody is waited for to write into a pipe, but a file that
/// another program has on lease (`F_SETLEASE`) is waited for until that one gives it back. `flags`
/// may be `O_NOFOLLOW`. When there is none, `errno` says why.
FileDescriptor openForReading(int folder, const char* name, int flags = 0);

/// The same of a regular file, with its status; `errno` is EINVAL for what is another.
FileDescriptor openRegularFile(int folder, const char* name, struct stat& status, int flags = 0);

} // namespace zorvan::internal
