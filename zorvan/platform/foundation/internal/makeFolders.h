#pragma once

#include <string>
#include <sys/types.h>

namespace zorvan::internal {

/// Makes a folder, and those on the way to it that are missing, with the mode as far as the process
/// lets it; they are on the disk when it returns. Returns 0, also when something is there already,
/// or the error number.
int makeFolders(const std::string& path, mode_t mode);

} // namespace zorvan::internal
