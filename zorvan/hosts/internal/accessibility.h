#pragma once

namespace zorvan::internal {

/// From now on screen readers are told what views say of themselves. Once for a program.
void installAccessibility();

} // namespace zorvan::internal
