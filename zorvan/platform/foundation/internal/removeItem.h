#pragma once

#include <string>

namespace zorvan::internal {

/// Removes an item with all it holds, what folders that may not be written hold included. What
/// cannot be removed stays. A link is removed itself. The depth of a folder is bounded by memory
/// alone. Returns 0, or the error number when something is left.
int removeItem(const std::string& path) noexcept;

} // namespace zorvan::internal
