#pragma once

#include <string_view>

namespace zorvan::internal {

/// `openat` for a path that may be longer than the kernel takes at once. On the way no link is
/// followed at the points where such a path is cut. An empty path is the folder itself.
int openByPath(int folder, std::string_view path, int flags);

} // namespace zorvan::internal
