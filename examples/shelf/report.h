#pragma once

#include "Picture.h"
#include "PictureList.h"

#include <string>
#include <vector>

/// "4000 x 3000".
std::string sizeText(const zorvan::CGSize& size);

/// The table for people, a line for each file and one that sums up.
std::string table(const std::vector<ListedFile>& files, const std::vector<PictureFacts>& facts);

/// An array of one object for each file, with the keys `path`, `type`, `width`, `height`,
/// `orientation`, `uprightWidth`, `uprightHeight` and `error`; what is unknown is null.
std::string json(const std::vector<ListedFile>& files, const std::vector<PictureFacts>& facts);
