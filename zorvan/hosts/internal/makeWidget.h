#pragma once

#include <zorvan/platform/appkit/NSView.h>

#include <memory>

class QWidget;

namespace zorvan::internal {

/// The widget that shows a view, of the kind that the class of the view wants, in `parent`.
///
/// It follows the view for as long as it lives: place, visibility, tool tip, accessible name, what
/// is in it. Inside the widget of the superview it stands where the view stands; elsewhere whoever
/// asked for it places it, and the view has to be given that size. One view may have several
/// widgets.
QWidget* makeWidget(const std::shared_ptr<NSView>& view, QWidget* parent);
/// That of a table, an outline or a collection view; null for any other view.
QWidget* makeItemWidget(const std::shared_ptr<NSView>& view, QWidget* parent);

} // namespace zorvan::internal
