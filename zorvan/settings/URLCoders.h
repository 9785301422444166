#pragma once

#include <zorvan/platform/foundation/URL.h>
#include <zorvan/settings/StoredUserDefaultsCoder.h>

#include <optional>
#include <string_view>
#include <vector>

namespace zorvan {

/// Stored as the text of the whole URL.
class URLUDC : public StoredUserDefaultsCoder<URL> {};

/// Stored as an array of the texts of the whole URLs. Absent when any element is no text or no URL.
class URLArrayUDC : public StoredUserDefaultsCoder<std::vector<URL>> {};

} // namespace zorvan
