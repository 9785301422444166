#pragma once

#include <string>

namespace zorvan::files {

// Giving items their names, each in one step that no failure and no other process can cut in two.
// The functions return 0 or the error number: EXDEV when the two names are on different volumes.

/// Gives an item a new name, unless something has it: EEXIST then.
int placeItem(const std::string& from, const std::string& to) noexcept;

/// `placeItem` where the volume cannot rename without replacing: a file is linked to its new name,
/// a folder takes the place of an empty one that was made for it.
int placeItemByName(const std::string& from, const std::string& to) noexcept;

/// Puts an item in the place of another, once no reader holds the shared lock of that one. What was
/// at `original` is removed, or is at `replacement` when a folder is involved. Of two files, and of
/// two folders, the mode and as far as allowed the owner of the first stay.
int replaceItem(const std::string& original, const std::string& replacement);

} // namespace zorvan::files
