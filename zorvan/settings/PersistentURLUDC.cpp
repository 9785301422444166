#include <zorvan/settings/PersistentURLUDC.h>

#include <zorvan/platform/bookmarks/URLBookmark.h>
#include <zorvan/settings/NSUserDefaults.h>

#include <cstdio>
#include <string>
#include <utility>

namespace zorvan {

std::optional<URL> PersistentURLUDC::decode(NSUserDefaults& from, std::string_view key) const {
    const std::optional<Data> bookmark = from.dataForKey(key);
    if (!bookmark)
        return std::nullopt;
    std::string problem;
    const auto resolved =
        resolveBookmark(*bookmark, NSURLBookmarkResolutionWithSecurityScope, &problem);
    if (!resolved) {
        std::printf("%s\n", problem.c_str());
        return std::nullopt;
    }
    if (resolved->isStale)
        encode(resolved->url, from, key);
    return resolved->url;
}

void PersistentURLUDC::encode(const std::optional<URL>& value, NSUserDefaults& to,
                              std::string_view key) const {
    if (!value)
        to.removeObjectForKey(key);
    else if (auto bookmark = bookmarkData(*value, NSURLBookmarkCreationWithSecurityScope))
        to.setObject(std::move(*bookmark), key);
}

} // namespace zorvan
