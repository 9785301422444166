#include "copies.h"

#include "displayText.h"

#include <zorvan/files/NSFileManager.h>
#include <zorvan/files/URL.h>
#include <zorvan/media/ImageKeys.h>

#include <stdexcept>
#include <system_error>

using namespace zorvan;

std::optional<Data> encodedCopy(const CGImage& image, ImageExportFormat format) {
    if (format == ImageExportFormat::jpg || format == ImageExportFormat::heic)
        return image.data(format, {{kCGImageDestinationLossyCompressionQuality, 0.85}});
    return image.data(format);
}

std::string writeCopy(const URL& of, const std::string& folder, ImageExportFormat format,
                      const std::optional<Data>& copy) {
    const URL wanted = URL({.fileURLWithPath = folder})
                           .appendingPathComponent(lastPathTitle(of))
                           .appendingPathExtension(format.pathExtension());
    const auto notWritten = [&](const std::string& why) {
        return forDisplay(wanted.path()) + ": " + why;
    };
    if (!copy)
        return notWritten("the copy cannot be encoded");
    try {
        NSFileManager::defaultManager()->createAvailableFile(wanted, *copy);
        return {};
    } catch (const std::system_error& problem) {
        return notWritten(problem.code().message());
    } catch (const std::exception& problem) {
        return notWritten(problem.what());
    }
}
