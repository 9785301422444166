#pragma once

#include <zorvan/platform/privatestore/internal/Database.h>
#include <zorvan/platform/settingsdatabase/internal/SettingRows.h>

namespace zorvan::internal {

// A setting in a column: integers, reals and texts as the engine's own, what it has not as bytes by
// `encodeStored`, null for a removal.

/// Binds the next parameter; null for absence. The bytes are where it may keep what it binds.
/// Throws `UnstorableValue`.
void bindSetting(privatestore::Statement& statement, const PropertyList* value, Data& bytes);

SettingContent settingIn(const privatestore::Statement& row, int column);

} // namespace zorvan::internal
