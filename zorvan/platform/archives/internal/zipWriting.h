#pragma once

#include <zorvan/platform/foundation/Data.h>

#include <optional>
#include <string>

namespace zorvan::internal {

/// `zipArchiveOfFolder`, by libarchive, whose own libraries a program need not load that writes no
/// archive.
extern "C" void zorvanWriteZipArchive(const std::string& folder, std::optional<Data>& archive);

} // namespace zorvan::internal
