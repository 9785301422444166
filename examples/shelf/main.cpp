// shelf: from a folder of photos to a list, a contact sheet, or smaller copies.

#include "ContactSheet.h"
#include "Options.h"
#include "PictureList.h"
#include "ProgressBar.h"
#include "displayText.h"
#include "report.h"
#include "work.h"

#include <zorvan/platform/settingsdatabase/SettingsFolder.h>
#include <zorvan/settings/NSUserDefaults.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>

namespace {

enum ExitStatus { allWell = 0, notWritten = 1, wrongUsage = 2 };

void complain(const std::string& text) { std::fprintf(stderr, "shelf: %s\n", text.c_str()); }

bool print(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    if (std::fflush(stdout) == 0 && !std::ferror(stdout))
        return true;
    complain(std::string("standard output: ") + std::strerror(errno));
    return false;
}

/// Finds out before the work whether its result will have a place.
bool makeRoom(const Options& options) {
    std::error_code problem;
    if (options.exportFolder)
        std::filesystem::create_directories(*options.exportFolder, problem);
    if (problem) {
        complain(forDisplay(*options.exportFolder) + ": " + problem.message());
        return false;
    }
    if (!options.sheet)
        return true;
    const auto folder = std::filesystem::absolute(*options.sheet).parent_path();
    if (std::filesystem::is_directory(folder, problem))
        return true;
    complain(forDisplay(folder.string()) + ": no such folder");
    return false;
}

bool printFacts(const Options& options, const std::vector<ListedFile>& files,
                const WorkResult& result) {
    if (options.json)
        return print(json(files, result.facts));
    return options.quiet || print(table(files, result.facts));
}

/// Says what could not be written; whether all could.
bool checkWritten(const Options& options, const std::vector<ListedFile>& files,
                  const WorkResult& result) {
    for (const std::string& problem : result.problems)
        complain(problem);
    const bool isNothingWritten = options.exportFolder && result.exported == 0;
    if (isNothingWritten && result.problems.empty() && !files.empty())
        complain("no picture could be read, so none was written");
    return result.problems.empty() && !isNothingWritten;
}

int run(const Options& options) {
    const std::vector<std::string> missing = missingPaths(options);
    for (const std::string& path : missing)
        complain(forDisplay(path) + ": no such file or folder");
    if (!missing.empty())
        return wrongUsage;
    if (!makeRoom(options))
        return notWritten;

    const std::vector<ListedFile> files = listFiles(options);
    if (files.empty())
        complain("no pictures there");
    std::optional<ContactSheet> sheet;
    if (options.sheet && !files.empty()) {
        std::string reason;
        sheet = ContactSheet::make(files.size(), options, reason);
        if (!sheet) {
            complain(reason);
            return notWritten;
        }
    }
    WorkResult result;
    {
        ProgressBar progress(files.size(), !options.quiet);
        result = work(files, options, sheet ? &*sheet : nullptr, progress);
    }
    const bool isPrinted = printFacts(options, files, result);
    bool isWritten = checkWritten(options, files, result);
    if (sheet && !sheet->write(*options.sheet, options.sheetFormat)) {
        complain(forDisplay(*options.sheet) + ": the sheet cannot be written");
        isWritten = false;
    }
    if (options.sheet && !sheet)
        isWritten = false;
    return isPrinted && isWritten ? allWell : notWritten;
}

/// `shelf settings DOMAIN`: a domain of settings as an XML property list, for looking at it and for
/// keeping a copy.
std::string settingsAsXML(const std::vector<std::string>& arguments) {
    if (arguments.size() != 1)
        throw UsageError("settings needs the name of one domain");
    const std::string& domain = arguments.front();
    // To open a domain makes it; a question should not.
    const auto path = zorvan::settingsPath(domain);
    std::error_code problem;
    if (!path || !std::filesystem::exists(*path, problem))
        throw UsageError("there are no settings of '" + domain + "'");
    const auto xml = zorvan::NSUserDefaults::create({.suiteName = domain})->exportedXML();
    if (!xml)
        throw UsageError("the settings of '" + domain + "' have a text that XML cannot write");
    return {reinterpret_cast<const char*>(xml->data()), xml->size()};
}

} // namespace

int main(int argc, char** argv) {
    try {
        // A folder of that name is "./settings".
        if (argc > 1 && std::strcmp(argv[1], "settings") == 0)
            return print(settingsAsXML({argv + 2, argv + argc})) ? allWell : notWritten;
        const Options options = parseOptions({argv + 1, argv + argc});
        if (options.help || options.version)
            return print(options.help ? helpText() : "shelf " SHELF_VERSION "\n") ? allWell
                                                                                  : notWritten;
        return run(options);
    } catch (const UsageError& problem) {
        complain(std::string(problem.what()) + "\nTry 'shelf --help'.");
        return wrongUsage;
    } catch (const std::exception& problem) {
        complain(problem.what());
        return notWritten;
    }
}
