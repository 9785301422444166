// A record of your own in the settings
//
// A field that came later reads as what a new record has, so old settings stay readable. JSON is UTF-8, and the path of
// a file is any bytes: a list with a path that is not UTF-8 has no stored form. `modify` is false then and leaves the
// list as it was; an assignment would remove it. To keep such paths too, store `URL::absoluteString()`, which escapes
// them.
//
// Link Zorvan::Settings.

#include <zorvan/settings/JSONCodableUDC.h>
#include <zorvan/settings/NSUserDefaults.h>

#include <iostream>
#include <tuple>

using namespace zorvan;

struct RecentFile {
    std::string path;
    std::int64_t page = 1; // since version 2
    static constexpr auto jsonFields =
        std::tuple(JSONField("path", &RecentFile::path),
                   JSONField("page", &RecentFile::page).orAsInitialized());
};

using RecentFiles = std::vector<RecentFile>;
const EvaluedUserDefaultsKey<JSONCodableUDC<RecentFiles>> recentFiles({.name = "RecentFiles",
                                                                       .value = RecentFiles()});

int main() {
    const auto store = NSUserDefaults::create({.suiteName = "cookbook"});
    // Reads, changes and writes in one transaction: two windows, or two processes, lose nothing.
    const bool isStored = store->modify(recentFiles, [](RecentFiles& files) {
        files.insert(files.begin(), RecentFile{"report.pdf", 12});
    });
    for (const RecentFile& file : store->value(recentFiles))
        std::cout << file.path << ", page " << file.page << '\n';
    return isStored ? 0 : 1;
}
