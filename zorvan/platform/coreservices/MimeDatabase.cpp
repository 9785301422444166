#include <zorvan/platform/coreservices/internal/MimeDatabase.h>

#include <zorvan/platform/coreservices/internal/words.h>
#include <zorvan/platform/foundation/internal/desktopFolders.h>
#include <zorvan/platform/foundation/internal/readRegularFile.h>

#include <charconv>

namespace zorvan::coreservices {

namespace {

constexpr std::size_t maximumFileSize = std::size_t{16} << 20;

/// Empty for what cannot be read.
std::string readFile(const std::string& path) {
    return internal::readRegularFile(path, maximumFileSize).value_or("");
}

/// A MIME type is a file name under the database's directory, so it must not lead out of it.
bool isSoundType(std::string_view type) {
    const std::size_t slash = type.find('/');
    if (slash == 0 || slash == std::string_view::npos || slash + 1 == type.size())
        return false;
    const std::string_view others = "/.+-_";
    return type.find('/', slash + 1) == std::string_view::npos &&
           type.find("..") == std::string_view::npos &&
           std::all_of(type.begin(), type.end(), [&](char c) {
               return internal::isAlphanumeric(c) || others.find(c) != std::string_view::npos;
           });
}

/// "tga" of "*.tga"; empty for every other pattern.
std::string_view plainExtension(std::string_view pattern) {
    if (!pattern.starts_with("*."))
        return {};
    const std::string_view extension = pattern.substr(2);
    return extension.find_first_of("*?[.") == std::string_view::npos ? extension
                                                                     : std::string_view();
}

std::string withoutEntities(std::string_view text) {
    constexpr std::pair<std::string_view, char> entities[] = {
        {"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}};
    std::string plain;
    while (!text.empty()) {
        std::pair<std::string_view, char> next{text.substr(0, 1), text.front()};
        for (const auto& entity : entities)
            if (text.starts_with(entity.first))
                next = entity;
        plain += next.second;
        text.remove_prefix(next.first.size());
    }
    return plain;
}

} // namespace

const MimeDatabase& MimeDatabase::shared() {
    static const MimeDatabase database = [] {
        std::vector<std::string> directories;
        for (const std::filesystem::path& data : internal::dataFolders())
            directories.push_back(data / "mime");
        return MimeDatabase(std::move(directories));
    }();
    return database;
}

MimeDatabase::MimeDatabase(std::vector<std::string> directories)
    : directories_(std::move(directories)) {
    for (const std::string& directory : directories_) {
        readGlobs(readFile(directory + "/globs2"));
        readSubclasses(readFile(directory + "/subclasses"));
    }
    for (const auto& [type, declaration] : types_)
        byIdentifier_.emplace(lowered(identifierOf(type)), type);
}

void MimeDatabase::readGlobs(std::string_view text) {
    forEachPart(text, '\n', [&](std::string_view line) { readGlob(line); });
}

/// A line is "weight:type:pattern", then perhaps ":flags".
void MimeDatabase::readGlob(std::string_view line) {
    if (line.starts_with('#'))
        return;
    std::vector<std::string_view> fields;
    forEachPart(line, ':', [&](std::string_view field) { fields.push_back(field); });
    // With flags the pattern minds case, as "*.C" does; extensions here do not.
    if (fields.size() != 3 || !isSoundType(fields[1]))
        return;
    int weight = 0;
    const char* end = fields[0].data() + fields[0].size();
    const auto parsed = std::from_chars(fields[0].data(), end, weight);
    if (parsed.ec != std::errc() || parsed.ptr != end)
        return;

    const std::string type = lowered(fields[1]);
    Type& declaration = types_[type];
    const std::string extension = lowered(plainExtension(fields[2]));
    if (extension.empty())
        return;
    declaration.extensions.push_back(extension);
    Match& match = byExtension_[extension];
    if (match.type.empty() || weight > match.weight)
        match = {type, weight};
}

/// A line is "type parent".
void MimeDatabase::readSubclasses(std::string_view text) {
    forEachPart(text, '\n', [&](std::string_view line) {
        const std::size_t space = line.find(' ');
        if (space == std::string_view::npos)
            return;
        const std::string_view type = line.substr(0, space);
        const std::string_view parent = line.substr(space + 1);
        if (isSoundType(type) && isSoundType(parent)) {
            types_[lowered(type)].parents.push_back(lowered(parent));
            types_[lowered(parent)];
        }
    });
}

std::optional<std::string> MimeDatabase::typeOfExtension(std::string_view lowerExtension) const {
    const auto found = byExtension_.find(std::string(lowerExtension));
    return found == byExtension_.end() ? std::nullopt : std::optional(found->second.type);
}

std::optional<std::string> MimeDatabase::typeOfIdentifier(std::string_view identifier) const {
    const auto found = byIdentifier_.find(lowered(identifier));
    return found == byIdentifier_.end() ? std::nullopt : std::optional(found->second);
}

const MimeDatabase::Type& MimeDatabase::declared(std::string_view type) const {
    static const Type unknown;
    const auto found = types_.find(std::string(type));
    return found == types_.end() ? unknown : found->second;
}

std::optional<std::string> MimeDatabase::comment(std::string_view type,
                                                 std::string_view language) const {
    const std::string opening =
        language.empty() ? "<comment>" : "<comment xml:lang=\"" + std::string(language) + "\">";
    if (!isSoundType(type))
        return std::nullopt;
    for (const std::string& directory : directories_) {
        const std::string text = readFile(directory + '/' + std::string(type) + ".xml");
        const std::size_t start = text.find(opening);
        const std::size_t end = start == std::string::npos ? start : text.find("</comment>", start);
        if (end != std::string::npos)
            return withoutEntities(std::string_view(text).substr(start + opening.size(),
                                                                 end - start - opening.size()));
    }
    return std::nullopt;
}

std::string MimeDatabase::identifierOf(std::string_view type) {
    std::string identifier = "org.freedesktop.mime.";
    for (const char c : type)
        identifier += c == '/' ? '.' : c == '+' || c == '_' ? '-' : c;
    return identifier;
}

} // namespace zorvan::coreservices
