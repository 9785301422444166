#pragma once

#include <zorvan/platform/appkit/NSView.h>

#include <QImage>
#include <QPointF>
#include <QRect>
#include <QSize>
#include <QString>
#include <string>

class QScrollBar;

namespace zorvan::internal {

inline QString toQString(const std::string& text) { return QString::fromStdString(text); }

/// A length in points as one of Qt's, which are whole and have an end.
int wholeLength(double points);

/// Large enough for the size.
QSize toQSize(CGSize size);

/// Where a part of a view stands in the widget that shows the view.
QRect toWidget(const NSView& view, const CGRect& part);

/// Where a view stands in the widget that shows its superview.
QRect placeInSuperview(const NSView& view);

/// A point of the widget that shows the view, in the coordinates of the view.
CGPoint toView(const NSView& view, const QPointF& point);

/// The pixels where they stand, which has to be for as long.
QImage imageOver(const Bitmap& bitmap);

/// For something so long, in points, of which so much is seen.
void fitBar(QScrollBar& bar, double length, int seen);
/// As far as it goes.
void moveBar(QScrollBar& bar, double to);

} // namespace zorvan::internal
