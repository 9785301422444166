#include <zorvan/platform/bundles/internal/KeyFile.h>

#include <zorvan/platform/foundation/internal/ascii.h>
#include <zorvan/platform/foundation/internal/forEachPart.h>
#include <zorvan/platform/foundation/internal/readRegularFile.h>

#include <charconv>
#include <system_error>

namespace zorvan::desktop {

std::optional<KeyFile> KeyFile::read(const std::string& path) {
    constexpr std::size_t largest = std::size_t{1} << 20;
    const std::optional<std::string> bytes = internal::readRegularFile(path, largest);
    if (!bytes)
        return std::nullopt;

    KeyFile file;
    Group* group = nullptr;
    internal::forEachPart(*bytes, '\n', [&](std::string_view line) {
        const std::string_view text = internal::withoutSpace(line);
        const std::size_t equals = text.find('=');
        if (text.starts_with('[') && text.ends_with(']'))
            group = &file.groups_[std::string(text.substr(1, text.size() - 2))];
        else if (group && equals != std::string_view::npos && !text.starts_with('#'))
            group->try_emplace(std::string(internal::withoutSpace(text.substr(0, equals))),
                               internal::withoutSpace(text.substr(equals + 1)));
    });
    return file;
}

const std::string* KeyFile::value(std::string_view group, std::string_view key) const {
    const auto foundGroup = groups_.find(group);
    if (foundGroup == groups_.end())
        return nullptr;
    const auto found = foundGroup->second.find(key);
    return found == foundGroup->second.end() ? nullptr : &found->second;
}

std::int64_t KeyFile::number(std::string_view group, std::string_view key,
                             std::int64_t otherwise) const {
    const std::string* text = value(group, key);
    std::uint16_t number = 0;
    if (!text ||
        std::from_chars(text->data(), text->data() + text->size(), number).ec != std::errc())
        return otherwise;
    return number;
}

} // namespace zorvan::desktop
