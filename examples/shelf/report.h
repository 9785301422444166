#pragma once

#include "Picture.h"
#include "PictureList.h"

#include <string>
#include <vector>

/// "4000 x 3000".
std::string sizeText(const zorvan::CGSize& size);

/// "1:02:05".
std::string durationText(double seconds);

/// The table for people, a line for each file and one that sums up.
std::string table(const std::vector<ListedFile>& files, const std::vector<PictureFacts>& facts);

/// An array of one object for each file, with the keys `path`, `type`, `width`, `height`,
/// `orientation`, `uprightWidth`, `uprightHeight` and `error`, of a movie also `duration` and
/// `frameRate`, in seconds and pictures a second, and `date`; what is unknown is null.
std::string json(const std::vector<ListedFile>& files, const std::vector<PictureFacts>& facts);
