#pragma once

#include <QString>
#include <QTextDocument>

namespace zorvan::internal {

/// A text for a button or a line of a menu, where Qt takes an ampersand for a mark of the key that
/// chooses it.
inline QString withoutKeyMark(QString text) {
    return text.replace(QLatin1Char('&'), QLatin1String("&&"));
}

/// A text for a tool tip, which Qt shows as HTML when it looks like that.
inline QString plainToolTip(const QString& text) {
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal) : text;
}

} // namespace zorvan::internal
