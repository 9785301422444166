#pragma once

#include <zorvan/platform/appkit/NSView.h>

#include <memory>

class QWidget;

namespace zorvan::internal {

/// The widget of a table, an outline or a collection view; null for any other view.
QWidget* makeItemWidget(const std::shared_ptr<NSView>& view, QWidget* parent);

} // namespace zorvan::internal
