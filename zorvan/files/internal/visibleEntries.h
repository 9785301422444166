#pragma once

#include <zorvan/platform/foundation/URL.h>

#include <vector>

namespace zorvan::files {

/// Appends the entries of a directory: not hidden ones, not what packages hold, and what its
/// sub-folders hold only when `isRecursive`.
void appendVisibleEntries(const URL& directory, bool isRecursive, std::vector<URL>& urls);

} // namespace zorvan::files
