#include "SettingsCommand.h"

#include "Options.h"

#include <zorvan/platform/settingsdatabase/SettingsFolder.h>
#include <zorvan/settings/NSUserDefaults.h>

#include <filesystem>

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
