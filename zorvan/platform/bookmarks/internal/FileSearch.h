#pragma once

#include <zorvan/platform/bookmarks/internal/FileIdentity.h>

#include <string>

namespace zorvan::internal {

/// How many names a search looks at before it gives up.
inline constexpr std::size_t maximumSearch = 200'000;

/// The path of the file now, when it once was at `path`: looks into the folder there, then below
/// each folder around it, from the inside out, without leaving the volume. Empty when it is not
/// found.
std::string findMoved(const FileIdentity& file, const std::string& path);

/// The closest folder around the path that exists.
std::string existingFolder(std::string path);

} // namespace zorvan::internal
