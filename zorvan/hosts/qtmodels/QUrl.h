#pragma once

#include <zorvan/platform/foundation/URL.h>

#include <QUrl>
#include <optional>

namespace zorvan {

/// The address for Qt. The path of a file keeps its bytes, also those that are no text, although
/// `QUrl::toLocalFile` cannot tell them.
[[nodiscard]] QUrl toQUrl(const URL& url);

/// Absent for an invalid or relative address, and for a file on another host.
[[nodiscard]] std::optional<URL> toURL(const QUrl& url);

} // namespace zorvan
