#pragma once

#include "Options.h"

#include <zorvan/platform/foundation/URL.h>

#include <string>
#include <vector>

/// A file that is to be looked at.
struct ListedFile {
    zorvan::URL url;
    std::string name; // below the folder that the user gave, or as given
};

/// Paths of the command line that stand for nothing.
std::vector<std::string> missingPaths(const Options& options);

/// The files that the paths stand for: the paths in their order, what a folder holds in an order
/// for people, no file twice. The sheet and the screenshot are left out, so that they may stand
/// among the pictures.
std::vector<ListedFile> listFiles(const Options& options);
