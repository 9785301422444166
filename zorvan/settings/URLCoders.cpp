#include <zorvan/settings/URLCoders.h>

#include <zorvan/settings/NSUserDefaults.h>

#include <utility>

namespace zorvan {

std::optional<URL> URLUDC::decode(NSUserDefaults& from, std::string_view key) const {
    return from.URLForKey(key);
}

void URLUDC::encode(const std::optional<URL>& value, NSUserDefaults& to,
                    std::string_view key) const {
    to.setURL(value, key);
}

std::optional<std::vector<URL>> URLArrayUDC::decode(NSUserDefaults& from,
                                                    std::string_view key) const {
    const auto texts = from.stringArrayForKey(key);
    if (!texts)
        return std::nullopt;
    std::vector<URL> urls;
    for (const std::string& text : *texts) {
        std::optional<URL> url = URL::make({.string = text});
        if (!url)
            return std::nullopt;
        urls.push_back(std::move(*url));
    }
    return urls;
}

void URLArrayUDC::encode(const std::optional<std::vector<URL>>& value, NSUserDefaults& to,
                         std::string_view key) const {
    if (!value) {
        to.removeObjectForKey(key);
        return;
    }
    PropertyList::Array texts;
    for (const URL& url : *value)
        texts.emplace_back(url.absoluteString());
    to.setObject(std::move(texts), key);
}

} // namespace zorvan
