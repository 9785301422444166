#pragma once

#include <zorvan/platform/foundation/PropertyList.h>

#include <QVariant>
#include <optional>

namespace zorvan {

/// The value for Qt: `bool`, `qlonglong`, `qulonglong` or `double`; `QString`; `QDateTime`;
/// `QByteArray`; `QVariantList`; `QVariantMap`. Bytes of a text that are no UTF-8 are replaced.
[[nodiscard]] QVariant toQVariant(const PropertyList& value);

/// The value of any of these types, of Qt's other numbers, of a `QStringList` or of a
/// `QVariantHash`. Absent for anything else, also when it lies inside a list or dictionary.
[[nodiscard]] std::optional<PropertyList> toPropertyList(const QVariant& value);

} // namespace zorvan
