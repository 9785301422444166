#include <zorvan/platform/settingsdatabase/internal/SettingCell.h>

#include <zorvan/platform/settingsdatabase/internal/StoredValue.h>

#include <cmath>

namespace zorvan::internal {

using privatestore::Statement;

void bindSetting(Statement& statement, const PropertyList* value, Data& bytes) {
    if (!value) {
        statement.bindNull();
        return;
    }
    const auto* text = value->as<std::string>();
    const auto* number = value->as<NSNumber>();
    if (text && text->size() <= maximumStoredSize) {
        statement.bindText(*text);
    } else if (number && number->isInteger() && !number->isUnsigned()) {
        statement.bind(number->int64Value());
    } else if (number && number->isReal() && !std::isnan(number->doubleValue())) {
        statement.bindReal(number->doubleValue());
    } else {
        bytes = encodeStored(*value);
        statement.bindBytes(bytes);
    }
}

SettingContent settingIn(const Statement& row, int column) {
    switch (row.kind(column)) {
    case Statement::Kind::integer:
        return PropertyList(row.integer(column));
    case Statement::Kind::real:
        return PropertyList(row.real(column));
    case Statement::Kind::text:
        return PropertyList(row.text(column));
    case Statement::Kind::bytes: {
        const auto bytes = row.bytes(column);
        return EncodedSetting{Data(bytes.begin(), bytes.end())};
    }
    case Statement::Kind::null:
        break;
    }
    return std::monostate();
}

} // namespace zorvan::internal
