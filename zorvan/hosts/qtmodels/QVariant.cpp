#include <zorvan/hosts/qtmodels/QVariant.h>

#include <zorvan/hosts/qtmodels/QDateTime.h>

#include <span>

namespace zorvan {

namespace {

QVariant boxed(NSNumber number) {
    if (number.isBool())
        return number.boolValue();
    if (number.isUnsigned())
        return qulonglong{number.uint64Value()};
    if (number.isInteger())
        return qlonglong{number.int64Value()};
    return number.doubleValue();
}

QByteArray bytes(const Data& data) {
    return {reinterpret_cast<const char*>(data.data()), static_cast<qsizetype>(data.size())};
}

Data data(const QByteArray& bytes) {
    const auto all = std::as_bytes(std::span(bytes.constData(), bytes.constData() + bytes.size()));
    return {all.begin(), all.end()};
}

QVariant list(const PropertyList::Array& values) {
    QVariantList list;
    list.reserve(static_cast<qsizetype>(values.size()));
    for (const PropertyList& value : values)
        list.append(toQVariant(value));
    return list;
}

QVariant map(const PropertyList::Dictionary& values) {
    QVariantMap map;
    for (const auto& [key, value] : values)
        map.insert(QString::fromStdString(key), toQVariant(value));
    return map;
}

std::optional<PropertyList> array(const QVariantList& list) {
    PropertyList::Array values;
    values.reserve(static_cast<std::size_t>(list.size()));
    for (const QVariant& element : list) {
        std::optional<PropertyList> value = toPropertyList(element);
        if (!value)
            return std::nullopt;
        values.push_back(*std::move(value));
    }
    return values;
}

template <class Map>
std::optional<PropertyList> dictionary(const Map& map) {
    PropertyList::Dictionary values;
    for (auto entry = map.cbegin(); entry != map.cend(); ++entry) {
        std::optional<PropertyList> value = toPropertyList(entry.value());
        if (!value)
            return std::nullopt;
        values.insert_or_assign(entry.key().toStdString(), *std::move(value));
    }
    return values;
}

} // namespace

QVariant toQVariant(const PropertyList& value) {
    if (const auto* number = value.as<NSNumber>())
        return boxed(*number);
    if (const auto* text = value.as<std::string>())
        return QString::fromStdString(*text);
    if (const auto* date = value.as<Date>())
        return toQDateTime(*date);
    if (const auto* content = value.as<Data>())
        return bytes(*content);
    if (const auto* values = value.as<PropertyList::Array>())
        return list(*values);
    return map(*value.as<PropertyList::Dictionary>());
}

std::optional<PropertyList> toPropertyList(const QVariant& value) {
    switch (value.typeId()) {
    case QMetaType::Bool:
        return PropertyList(value.toBool());
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::Long:
    case QMetaType::Short:
    case QMetaType::Char:
    case QMetaType::SChar:
        return PropertyList(std::int64_t{value.toLongLong()});
    case QMetaType::UInt:
    case QMetaType::ULongLong:
    case QMetaType::ULong:
    case QMetaType::UShort:
    case QMetaType::UChar:
        return PropertyList(std::uint64_t{value.toULongLong()});
    case QMetaType::Double:
    case QMetaType::Float:
        return PropertyList(value.toDouble());
    case QMetaType::QString:
        return PropertyList(value.toString().toStdString());
    case QMetaType::QDateTime:
        return toDate(value.toDateTime());
    case QMetaType::QByteArray:
        return PropertyList(data(value.toByteArray()));
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
        return array(value.toList());
    case QMetaType::QVariantMap:
        return dictionary(value.toMap());
    case QMetaType::QVariantHash:
        return dictionary(value.toHash());
    default:
        return std::nullopt;
    }
}

} // namespace zorvan
