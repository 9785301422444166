#pragma once

#include "Options.h"

#include <zorvan/platform/foundation/URL.h>

#include <functional>
#include <string>
#include <vector>

/// A file that is to be looked at.
struct ListedFile {
    zorvan::URL url;
    std::string name; // below the folder that the user gave, or as given
};

/// Paths of the command line that stand for nothing.
std::vector<std::string> missingPaths(const Options& options);

/// The files that the paths stand for, as they are met, no file twice; until `found` says that it
/// wants no more. What is to be written itself, the sheet or the screenshot, is left out, so that
/// it may stand among the pictures. From any thread.
void walkFiles(const Options& options, const std::function<bool(const ListedFile&)>& found);

/// The same files: the paths in their order, what a folder holds in an order for people.
std::vector<ListedFile> listFiles(const Options& options);
