#pragma once

#include <zorvan/media/ImageExportFormat.h>

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

/// What the user asked for.
struct Options {
    std::vector<std::string> paths;

    bool recursive = false;
    bool hidden = false;
    bool packages = false;
    bool noLinks = false;
    std::vector<std::string> types; // identifiers or extensions

    std::optional<std::string> sheet;
    zorvan::ImageExportFormat sheetFormat = zorvan::ImageExportFormat::png;
    std::optional<std::int64_t> columns;
    std::int64_t cell = 180;

    std::optional<std::string> screenshot; // of the window, a PNG file

    std::optional<std::string> exportFolder;
    std::int64_t exportSize = 1024;
    zorvan::ImageExportFormat exportFormat = zorvan::ImageExportFormat::jpg;

    bool json = false;
    bool quiet = false;
    bool quick = false;
    bool help = false;
    bool version = false;
};

/// The command line makes no sense; the message says why.
struct UsageError : std::runtime_error {
    using runtime_error::runtime_error;
};

/// Of `shelf`. Throws `UsageError`.
Options parseOptions(const std::vector<std::string>& arguments);
/// Of `shelf-window`, which knows fewer. Throws `UsageError`.
Options parseWindowOptions(const std::vector<std::string>& arguments);

std::string helpText();
std::string windowHelpText();
