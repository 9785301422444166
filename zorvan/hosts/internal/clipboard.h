#pragma once

class QMimeData;

namespace zorvan::internal {

/// From now on, until the application object goes, the general pasteboard and the desktop's
/// clipboard are one.
void shareClipboard();

/// The URLs, or else the text; nothing when there is neither.
void copyToPasteboard(const QMimeData& data);

} // namespace zorvan::internal
