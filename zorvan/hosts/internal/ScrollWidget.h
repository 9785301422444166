#pragma once

#include <zorvan/platform/appkit/NSScrollView.h>

#include <memory>

class QWidget;

namespace zorvan::internal {

/// The widget of a scroll view: an item view when its document is a table or a collection, else the
/// document between scroll bars.
QWidget* makeScrollWidget(const std::shared_ptr<NSScrollView>& scrollView, QWidget* parent);

} // namespace zorvan::internal
