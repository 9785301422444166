#pragma once

#include <sys/stat.h>

namespace zorvan::files {

/// Copies what a regular file holds to an empty one: by sharing its blocks where the file system
/// can, else within the kernel, else through memory. Holes stay holes. A file that changes
/// meanwhile is copied up to the size it had. With `startsWriting` the disk begins to write at
/// once, so that a wait for it is shorter. Returns 0 or the error number.
int copyContents(int from, const struct stat& status, int to, bool startsWriting);

} // namespace zorvan::files
