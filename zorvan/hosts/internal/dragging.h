#pragma once

#include <zorvan/platform/foundation/URL.h>
#include <zorvan/platform/graphics/Bitmap.h>

#include <QMimeData>
#include <QPixmap>
#include <functional>
#include <memory>
#include <vector>

namespace zorvan::internal {

/// What is dragged or copied, as the desktop wants it.
std::unique_ptr<QMimeData> toMimeData(const std::vector<URL>& urls,
                                      const Bitmap* picture = nullptr);
/// The addresses that it carries.
std::vector<URL> urlsOf(const QMimeData& data);

/// Carries the data until the person lets go, from when the event in progress has been dealt with;
/// then calls `ended`. Everything can happen meanwhile. `shown` goes along with the mouse.
void dragLater(std::unique_ptr<QMimeData> data, QPixmap shown, std::function<void()> ended = {});

} // namespace zorvan::internal
