#pragma once

#include <zorvan/platform/foundation/PropertyList.h>
#include <zorvan/settings/StoredUserDefaultsCoder.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zorvan {

/// Stored as a date; absent when something else is stored.
class DateUDC : public StoredUserDefaultsCoder<Date> {};

/// Stored as bytes.
class DataUDC : public StoredUserDefaultsCoder<Data> {};

/// Stored as a text. A stored number reads as its text.
class StringUDC : public StoredUserDefaultsCoder<std::string> {};

/// Stored as an array of texts; absent when any element is something else.
class StringArrayUDC : public StoredUserDefaultsCoder<std::vector<std::string>> {};

/// Stored as it is.
class DictUDC : public StoredUserDefaultsCoder<PropertyList::Dictionary> {};

/// Stored as it is.
class NSArrayUDC : public StoredUserDefaultsCoder<PropertyList::Array> {};

/// Stored as it is, truth values included.
class NSNumberUDC : public StoredUserDefaultsCoder<NSNumber> {};

/// Any value, stored as it is.
class NSObjectUDC : public StoredUserDefaultsCoder<PropertyList> {};

} // namespace zorvan
