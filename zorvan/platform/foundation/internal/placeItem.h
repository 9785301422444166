#pragma once

#include <string>
#include <sys/types.h>

namespace zorvan::internal {

// Giving items their names, each in one step that no failure and no other process can cut in two,
// but where the text below says so. The functions return 0 or the error number: EXDEV when the two
// names are on different volumes.

/// Gives an item a new name, unless something has it: EEXIST then.
int placeItem(const std::string& from, const std::string& to) noexcept;

/// `placeItem` where the volume cannot rename without replacing: a file is linked to its new name;
/// a folder, or a file where there are no links, takes the place of an empty one that was made for
/// it.
int placeItemByName(const std::string& from, const std::string& to) noexcept;

/// Puts an item in the place of another, and waits until its name is on the disk. What was at
/// `original` is removed, or is at `replacement` when a folder is involved. Of two files, and of
/// two folders, the mode, the access list and as far as allowed the owner of the first stay: given
/// to what is open as `opened`, if anything is, whatever another user has put at `replacement`
/// meanwhile. A link that is found there is not followed.
int replaceItem(const std::string& original, const std::string& replacement, int opened = -1);

/// `replaceItem` with a folder where the volume cannot exchange two items. The old one is renamed
/// first, to its name with ".old-" and a UUID; for a moment nothing has its name, and a process
/// that ends in this moment leaves it so.
int replaceItemInTwoSteps(const std::string& original, const std::string& replacement);

/// Makes a folder, and those on the way to it that are missing, with the mode as far as the process
/// lets it; they are on the disk when it returns. It is no error that something is there already.
int makeFolders(const std::string& path, mode_t mode);

/// The folder that holds the item of a path; "." for a bare name.
std::string folderOf(const std::string& path);

/// Waits until the names in a folder are on the disk, where that can be waited for.
void synchroniseFolder(const std::string& path);

} // namespace zorvan::internal
