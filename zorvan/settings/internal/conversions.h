#pragma once

#include <zorvan/platform/foundation/PropertyList.h>
#include <zorvan/platform/foundation/URL.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// How the settings store reads a value of one kind as another. The table is in the guide page.
namespace zorvan::internal {

bool asBool(const PropertyList& value) noexcept;
std::int64_t asInteger(const PropertyList& value) noexcept;
double asDouble(const PropertyList& value);
std::optional<std::string> asString(const PropertyList& value);
/// Absent unless every element is a text.
std::optional<std::vector<std::string>> asStrings(const PropertyList& value);
std::optional<URL> asURL(const PropertyList& value);

} // namespace zorvan::internal
