#include <zorvan/platform/coreservices/UTType.h>

#include <zorvan/platform/coreservices/internal/MimeDatabase.h>
#include <zorvan/platform/coreservices/internal/TypeDeclarations.h>
#include <zorvan/platform/coreservices/internal/words.h>

#include <algorithm>
#include <cstdlib>
#include <unordered_set>
#include <vector>

namespace zorvan {

using namespace coreservices;

namespace {

/// What every MIME type of a top-level class is, beyond what the database declares.
std::string_view implicitParent(std::string_view mimeType) {
    constexpr std::pair<std::string_view, std::string_view> classes[] = {
        {"image/", kUTTypeImage},    {"audio/", kUTTypeAudio},     {"video/", kUTTypeMovie},
        {"text/", kUTTypePlainText}, {"message/", kUTTypeMessage}, {"inode/", kUTTypeItem}};
    for (const auto& [prefix, parent] : classes)
        if (mimeType.starts_with(prefix))
            return parent;
    return kUTTypeData;
}

std::string identifierOfMimeType(std::string_view mimeType) {
    if (const auto named = typeWithMimeType(mimeType))
        return std::string(typeDeclarations()[*named].identifier);
    return MimeDatabase::identifierOf(mimeType);
}

std::vector<std::string> identifiersOfParents(std::string_view mimeType) {
    std::vector<std::string> identifiers;
    for (const std::string& parent : MimeDatabase::shared().declared(mimeType).parents)
        identifiers.push_back(identifierOfMimeType(parent));
    const std::string implicit(implicitParent(mimeType));
    if (std::find(identifiers.begin(), identifiers.end(), implicit) == identifiers.end())
        identifiers.push_back(implicit);
    return identifiers;
}

bool mimeTypeConforms(std::string_view mimeType, std::string_view other) {
    const auto named = typeWithIdentifier(other);
    const auto foreign = MimeDatabase::shared().typeOfIdentifier(other);
    // The database may declare circles; every type is looked at once.
    std::vector<std::string> waiting{std::string(mimeType)};
    std::unordered_set<std::string> seen(waiting.begin(), waiting.end());
    while (!waiting.empty()) {
        const std::string current = std::move(waiting.back());
        waiting.pop_back();
        if (foreign && current == *foreign)
            return true;
        const auto own = typeWithMimeType(current);
        const auto implicit = typeWithIdentifier(implicitParent(current));
        if (named && ((own && typeConforms(*own, *named)) || typeConforms(*implicit, *named)))
            return true;
        for (const std::string& parent : MimeDatabase::shared().declared(current).parents)
            if (seen.insert(parent).second)
                waiting.push_back(parent);
    }
    return false;
}

std::optional<std::string> typeOfMimeType(std::string_view tag) {
    const std::string mimeType = lowered(tag);
    if (typeWithMimeType(mimeType) || MimeDatabase::shared().contains(mimeType))
        return identifierOfMimeType(mimeType);
    return std::nullopt;
}

/// "pt_BR" and "pt" of "pt_BR.UTF-8"; nothing for English.
std::vector<std::string> preferredLanguages() {
    std::string locale;
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (const char* value = std::getenv(name); locale.empty() && value)
            locale = value;
    locale.resize(std::min(locale.find_first_of(".@"), locale.size()));
    const std::string language = locale.substr(0, locale.find('_'));
    const bool isLanguage =
        !language.empty() && std::all_of(locale.begin(), locale.end(),
                                         [](char c) { return c == '_' || internal::isLetter(c); });
    if (!isLanguage || language == "en" || language == "C" || language == "POSIX")
        return {};
    return {locale, language};
}

std::optional<std::string> translatedComment(std::string_view mimeType) {
    for (const std::string& language : preferredLanguages())
        if (auto comment = MimeDatabase::shared().comment(mimeType, language))
            return comment;
    return std::nullopt;
}

PropertyList::Array textArray(std::string_view words) {
    PropertyList::Array array;
    forEachPart(words, ' ', [&](std::string_view word) { array.emplace_back(word); });
    return array;
}

PropertyList::Array textArray(const std::vector<std::string>& texts) {
    return PropertyList::Array(texts.begin(), texts.end());
}

/// The entry unless there is nothing in it.
template <class Content>
void add(PropertyList::Dictionary& to, std::string_view key, Content content) {
    if (!content.empty())
        to.emplace(key, std::move(content));
}

template <class Texts>
PropertyList::Dictionary declarationOf(std::string_view identifier, const Texts& conformsTo,
                                       const Texts& extensions, std::string_view mimeTypes) {
    PropertyList::Dictionary result, tags;
    add(tags, kUTTagClassFilenameExtension, textArray(extensions));
    add(tags, kUTTagClassMIMEType, textArray(mimeTypes));
    add(result, "UTTypeIdentifier", std::string(identifier));
    add(result, "UTTypeDescription", UTTypeCopyDescription(identifier).value_or(""));
    add(result, "UTTypeConformsTo", textArray(conformsTo));
    add(result, "UTTypeTagSpecification", std::move(tags));
    return result;
}

} // namespace

std::optional<std::string> UTTypeCreatePreferredIdentifierForTag(std::string_view tagClass,
                                                                 std::string_view tag) {
    if (tag.empty())
        return std::nullopt;
    if (UTTypeEqual(tagClass, kUTTagClassMIMEType))
        return typeOfMimeType(tag);
    if (!UTTypeEqual(tagClass, kUTTagClassFilenameExtension))
        return std::nullopt;
    if (const auto named = typeWithExtension(tag))
        return std::string(typeDeclarations()[*named].identifier);
    const auto mimeType = MimeDatabase::shared().typeOfExtension(lowered(tag));
    return mimeType ? std::optional(identifierOfMimeType(*mimeType)) : std::nullopt;
}

bool UTTypeConformsTo(std::string_view identifier, std::string_view other) {
    if (UTTypeEqual(identifier, other))
        return true;
    if (const auto named = typeWithIdentifier(identifier)) {
        const auto namedOther = typeWithIdentifier(other);
        return namedOther && typeConforms(*named, *namedOther);
    }
    const auto mimeType = MimeDatabase::shared().typeOfIdentifier(identifier);
    return mimeType && mimeTypeConforms(*mimeType, other);
}

bool UTTypeEqual(std::string_view a, std::string_view b) noexcept {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lowered(x) == lowered(y); });
}

std::optional<std::string> UTTypeCopyDescription(std::string_view identifier) {
    if (const auto named = typeWithIdentifier(identifier)) {
        const TypeDeclaration& declaration = typeDeclarations()[*named];
        const std::string_view mimeTypes = declaration.mimeTypes;
        auto translated = translatedComment(mimeTypes.substr(0, mimeTypes.find(' ')));
        return translated ? translated : std::string(declaration.description);
    }
    const auto mimeType = MimeDatabase::shared().typeOfIdentifier(identifier);
    if (!mimeType)
        return std::nullopt;
    auto translated = translatedComment(*mimeType);
    return translated ? translated : MimeDatabase::shared().comment(*mimeType, "");
}

std::optional<PropertyList::Dictionary> UTTypeCopyDeclaration(std::string_view identifier) {
    if (const auto named = typeWithIdentifier(identifier)) {
        const TypeDeclaration& declaration = typeDeclarations()[*named];
        return declarationOf(declaration.identifier, declaration.conformsTo, declaration.extensions,
                             declaration.mimeTypes);
    }
    const auto mimeType = MimeDatabase::shared().typeOfIdentifier(identifier);
    if (!mimeType)
        return std::nullopt;
    return declarationOf(MimeDatabase::identifierOf(*mimeType), identifiersOfParents(*mimeType),
                         MimeDatabase::shared().declared(*mimeType).extensions, *mimeType);
}

bool isPackageExtension(std::string_view fileExtension) {
    static const auto package = typeWithIdentifier(kUTTypePackage);
    const auto named = typeWithExtension(fileExtension);
    return named && typeConforms(*named, *package);
}

} // namespace zorvan
