#pragma once

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/foundation/URL.h>

namespace zorvan {

/// Writes the bytes beside the file and moves them into its place, so that the file is never seen
/// half written; keeps the permissions of a file that was there. False, and nothing changed, on
/// failure.
bool writeFileAtomically(const URL& url, const Data& bytes);

} // namespace zorvan
