#include <zorvan/platform/propertylist/NSKeyedArchiver.h>

#include <zorvan/platform/propertylist/PropertyListFile.h>
#include <zorvan/platform/propertylist/internal/ArchiveForm.h>
#include <zorvan/platform/propertylist/internal/Codecs.h>

namespace zorvan {

using namespace internal;

NSKeyedArchiver::Level::Level(NSKeyedArchiver& archiver) : archiver_(archiver) {
    if (archiver_.depth_ == propertylist::maximumDepth)
        throw ArchiveError("the objects are nested too deep");
    ++archiver_.depth_;
}

NSKeyedArchiver::NSKeyedArchiver() {
    add(archiveNull);
    scopes_.emplace_back();
}

Data NSKeyedArchiver::encodedData() const {
    const PropertyList archive = PropertyList::Dictionary{{"$archiver", archiverName},
                                                          {"$version", archiveVersion},
                                                          {"$top", scopes_.front()},
                                                          {"$objects", objects_}};
    try {
        return propertylist::writeBinary(archive, propertylist::Identifiers::admitted);
    } catch (const propertylist::Refusal& refusal) {
        throw ArchiveError(refusal.what());
    }
}

NSKeyedArchiver::Reference NSKeyedArchiver::reference(const URL& value) {
    const Reference object = reserve();
    scopes_.emplace_back();
    set(urlBaseKey, stored(0));
    set(urlKey, stored(reference(value.absoluteString())));
    finishObject(object, urlClass);
    return object;
}

NSKeyedArchiver::Reference NSKeyedArchiver::reference(const PropertyList& value) {
    if (const auto* array = value.as<PropertyList::Array>())
        return reference(*array);
    if (const auto* entries = value.as<PropertyList::Dictionary>())
        return reference(*entries);
    return add(value);
}

void NSKeyedArchiver::refuseInteger() {
    throw ArchiveError("an integer does not fit 64 signed bits");
}

PropertyList NSKeyedArchiver::stored(Reference reference) {
    return PropertyList::Dictionary{{propertylist::identifierKey, reference}};
}

NSKeyedArchiver::Reference NSKeyedArchiver::add(PropertyList object) {
    objects_.push_back(std::move(object));
    return objects_.size() - 1;
}

NSKeyedArchiver::Reference NSKeyedArchiver::classNamed(std::string_view name) {
    if (const auto known = classes_.find(name); known != classes_.end())
        return known->second;
    PropertyList::Array names{name};
    if (name != baseClass)
        names.emplace_back(baseClass);
    const Reference reference =
        add(PropertyList::Dictionary{{classNameKey, name}, {classesKey, std::move(names)}});
    classes_.emplace(name, reference);
    return reference;
}

void NSKeyedArchiver::set(std::string_view key, PropertyList value) {
    scopes_.back().insert_or_assign(archivedKey(key), std::move(value));
}

void NSKeyedArchiver::setArray(Reference object, PropertyList::Array values) {
    objects_[object] = PropertyList::Dictionary{{classKey, stored(classNamed(arrayClass))},
                                                {contentsKey, std::move(values)}};
}

void NSKeyedArchiver::setDictionary(Reference object, PropertyList::Array keys,
                                    PropertyList::Array values) {
    objects_[object] = PropertyList::Dictionary{{classKey, stored(classNamed(dictionaryClass))},
                                                {keysKey, std::move(keys)},
                                                {contentsKey, std::move(values)}};
}

void NSKeyedArchiver::finishObject(Reference object, std::string_view className) {
    PropertyList::Dictionary fields = std::move(scopes_.back());
    scopes_.pop_back();
    fields.insert_or_assign(classKey, stored(classNamed(className)));
    objects_[object] = std::move(fields);
}

} // namespace zorvan
