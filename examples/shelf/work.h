#pragma once

#include "ContactSheet.h"
#include "Options.h"
#include "Picture.h"
#include "PictureList.h"
#include "ProgressBar.h"

#include <cstddef>
#include <string>
#include <vector>

struct WorkResult {
    std::vector<PictureFacts> facts; // one for each file
    std::size_t exported = 0;
    std::vector<std::string> problems; // what could not be written, and why
};

/// Looks at every file, fills the sheet's cells where there is a sheet, and exports what is to be
/// exported: on all processors, one picture in memory for each of them. What is exported takes its
/// name in the order of the list.
WorkResult work(const std::vector<ListedFile>& files, const Options& options, ContactSheet* sheet,
                ProgressBar& progress);
