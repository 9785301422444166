#pragma once

namespace zorvan::internal {

/// From now on, until the application object goes, the general pasteboard and the desktop's
/// clipboard are one.
void shareClipboard();

} // namespace zorvan::internal
