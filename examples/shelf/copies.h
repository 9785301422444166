#pragma once

#include <zorvan/media/CGImage.h>
#include <zorvan/media/ImageExportFormat.h>
#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/foundation/URL.h>

#include <optional>
#include <string>

/// The bytes of a copy, where there is a choice in a quality for the eye. Absent when the picture
/// cannot be encoded.
std::optional<zorvan::Data> encodedCopy(const zorvan::CGImage& image,
                                        zorvan::ImageExportFormat format);

/// Writes a copy of a picture into the folder, under the name of the picture or the first free one
/// like it. What went wrong, as a text; empty when nothing did.
std::string writeCopy(const zorvan::URL& of, const std::string& folder,
                      zorvan::ImageExportFormat format, const std::optional<zorvan::Data>& copy);
