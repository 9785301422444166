#include <zorvan/platform/security/internal/ItemQuery.h>

#include <zorvan/platform/security/internal/Failure.h>

#include <algorithm>
#include <limits>
#include <string_view>
#include <utility>

namespace zorvan::security {

namespace {

constexpr std::string_view accessibleConstants[] = {
    kSecAttrAccessibleWhenUnlocked,
    kSecAttrAccessibleAfterFirstUnlock,
    kSecAttrAccessibleWhenUnlockedThisDeviceOnly,
    kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly,
    kSecAttrAccessibleWhenPasscodeSetThisDeviceOnly,
};

template <class Kind>
const Kind& required(const PropertyList& value) {
    const Kind* const content = value.as<Kind>();
    if (!content)
        throw Failure{errSecParam};
    return *content;
}

bool truth(const PropertyList& value) {
    const NSNumber& number = required<NSNumber>(value);
    if (!number.isBool())
        throw Failure{errSecParam};
    return number.boolValue();
}

bool isText(const PropertyList& value, std::string_view text) {
    const auto* content = value.as<std::string>();
    return content && *content == text;
}

std::string textOf(std::size_t column, const PropertyList& value) {
    if (const auto* bytes = value.as<Data>(); bytes && column == genericText)
        return std::string(reinterpret_cast<const char*>(bytes->data()), bytes->size());
    const std::string& text = required<std::string>(value);
    if (column == accessibleText &&
        std::ranges::find(accessibleConstants, text) == std::end(accessibleConstants))
        throw Failure{errSecParam};
    return text;
}

/// Takes an attribute that items are described by; false when it is none of these.
bool takeAttribute(ItemAttributes& attributes, std::string_view key, const PropertyList& value) {
    const auto* column = std::ranges::find(textColumns, key, &TextColumn::key);
    if (column != std::end(textColumns)) {
        const auto index = static_cast<std::size_t>(column - textColumns);
        attributes.texts[index] = textOf(index, value);
        return true;
    }
    if (key == kSecAttrSynchronizable) {
        attributes.isSynchronizable = truth(value);
        return true;
    }
    return false;
}

bool takeValue(ItemAttributes& attributes, std::string_view key, const PropertyList& value) {
    if (key != kSecValueData)
        return false;
    attributes.value = &required<Data>(value);
    return true;
}

void requireSize(const Data* value) {
    if (value && value->size() > maximumSecretSize)
        throw Failure{errSecDataTooLarge};
}

void requireClass(const PropertyList::Dictionary& attributes) {
    const auto found = attributes.find(kSecClass);
    if (found == attributes.end() || !isText(found->second, kSecClassGenericPassword))
        throw Failure{errSecParam};
}

bool isAny(std::string_view key, const PropertyList& value) {
    return key == kSecAttrSynchronizable && isText(value, kSecAttrSynchronizableAny);
}

void setLimit(ItemQuery& query, const PropertyList& value) {
    query.returnsOne = isText(value, kSecMatchLimitOne);
    if (query.returnsOne) {
        query.limit = 1;
    } else if (isText(value, kSecMatchLimitAll)) {
        query.limit = std::numeric_limits<std::size_t>::max();
    } else {
        const NSNumber& number = required<NSNumber>(value);
        if (!number.isInteger() || number.int64Value() < 1)
            throw Failure{errSecParam};
        query.limit = static_cast<std::size_t>(number.int64Value());
        query.returnsOne = query.limit == 1;
    }
}

bool takeReturn(ItemQuery& query, std::string_view key, const PropertyList& value) {
    if (key == kSecReturnData)
        query.returnsData = truth(value);
    else if (key == kSecReturnAttributes)
        query.returnsAttributes = truth(value);
    else if (key == kSecReturnPersistentRef)
        query.returnsReference = truth(value);
    else if (key == kSecMatchLimit)
        setLimit(query, value);
    else
        return false;
    return true;
}

/// A key that the service knows, in the wrong place, or one that it does not know.
[[noreturn]] void refuse(std::string_view key) {
    constexpr std::string_view known[] = {kSecValueData,           kSecValuePersistentRef,
                                          kSecReturnData,          kSecReturnAttributes,
                                          kSecReturnPersistentRef, kSecMatchLimit,
                                          kSecAttrCreationDate,    kSecAttrModificationDate};
    throw Failure{std::ranges::find(known, key) != std::end(known) ? errSecParam
                                                                   : errSecNoSuchAttr};
}

ItemQuery queryOf(const PropertyList::Dictionary& dictionary, bool returnsSomething) {
    ItemQuery query;
    for (const auto& [key, value] : dictionary) {
        if (key == kSecClass || isAny(key, value))
            continue;
        if (key == kSecValuePersistentRef) {
            query.reference = referenceIn(required<Data>(value));
            if (!query.reference)
                throw Failure{errSecItemNotFound};
        } else if (!takeAttribute(query.attributes, key, value) &&
                   !(returnsSomething && takeReturn(query, key, value))) {
            refuse(key);
        }
    }
    if (!query.reference || dictionary.contains(kSecClass))
        requireClass(dictionary);
    return query;
}

} // namespace

NewItem::NewItem(ItemAttributes givenAttributes, bool isDuplicate)
    : given(std::move(givenAttributes)), attributes(given), isDuplicateOfEitherState(isDuplicate) {
    requireSize(given.value);
    for (std::size_t i = 0; i < identifyingTexts; ++i)
        if (!attributes.texts[i])
            attributes.texts[i].emplace();
    if (!attributes.texts[accessibleText])
        attributes.texts[accessibleText] = kSecAttrAccessibleWhenUnlocked;
}

NewItem newItem(const PropertyList::Dictionary& attributes) {
    requireClass(attributes);
    ItemAttributes given;
    bool isDuplicateOfEitherState = false;
    for (const auto& [key, value] : attributes) {
        if (key == kSecClass)
            continue;
        if (isAny(key, value))
            isDuplicateOfEitherState = true;
        else if (!takeAttribute(given, key, value) && !takeValue(given, key, value))
            refuse(key);
    }
    return {std::move(given), isDuplicateOfEitherState};
}

ItemAttributes changes(const PropertyList::Dictionary& attributes) {
    if (attributes.empty())
        throw Failure{errSecParam};
    ItemAttributes result;
    for (const auto& [key, value] : attributes)
        if (!takeAttribute(result, key, value) && !takeValue(result, key, value)) {
            if (key == kSecClass)
                throw Failure{errSecParam};
            refuse(key);
        }
    requireSize(result.value);
    return result;
}

ItemQuery searchQuery(const PropertyList::Dictionary& query) { return queryOf(query, true); }

ItemQuery matchQuery(const PropertyList::Dictionary& query) {
    ItemQuery result = queryOf(query, false);
    result.limit = std::numeric_limits<std::size_t>::max();
    return result;
}

} // namespace zorvan::security
