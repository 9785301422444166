#pragma once

#include <zorvan/platform/bookmarks/internal/BookmarkRecord.h>

#include <string>

namespace zorvan::internal {

/// How many names a search looks at before it gives up.
inline constexpr std::size_t maximumSearch = 200'000;

/// The path of the file now: starts from where it once was, looks into the folder there, then below
/// each folder around it, from the inside out, without leaving the volume. Empty when it is not
/// found.
std::string findMoved(const BookmarkRecord& file);

/// The closest folder around the path that exists.
std::string existingFolder(std::string path);

} // namespace zorvan::internal
