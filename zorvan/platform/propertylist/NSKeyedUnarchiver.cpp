#include <zorvan/platform/propertylist/NSKeyedUnarchiver.h>

#include <zorvan/platform/foundation/internal/valueUnder.h>
#include <zorvan/platform/propertylist/PropertyListFile.h>
#include <zorvan/platform/propertylist/internal/ArchiveForm.h>
#include <zorvan/platform/propertylist/internal/Codecs.h>

namespace zorvan {

using namespace internal;

/// What is known of an archive while it is read.
struct NSKeyedUnarchiver::Archive {
    PropertyList::Dictionary top;
    PropertyList::Array objects;
    std::vector<bool> isVisited; // by number
    std::size_t fullBudget;
    /// What one value of the top may still have of objects that were read before, with the bytes
    /// that are copied again, and of the numbers that stand within it. How often the program asks
    /// for it is its own affair.
    std::size_t budget;
    /// The objects that pointers share; absent while one is being made.
    std::map<std::pair<std::size_t, std::type_index>, std::optional<std::shared_ptr<void>>> shared;

    void pay(std::size_t cost) {
        if (cost > budget)
            refuse("the archive unfolds to far more than its size");
        budget -= cost;
    }
};

namespace {

constexpr std::size_t minimumBudget = 1 << 20;
constexpr const char* otherClass = "an object is of another class than asked for";

template <class Kind>
Kind takeEntry(PropertyList::Dictionary& dictionary, std::string_view key) {
    const auto entry = dictionary.find(key);
    Kind* const value = entry == dictionary.end() ? nullptr : entry->second.as<Kind>();
    if (!value)
        throw ArchiveError("it is no keyed archive");
    return std::move(*value);
}

/// What stands for an object; an object of another kind is of another class.
template <class Kind>
const Kind& valueOf(const PropertyList& object) {
    const auto* value = object.as<Kind>();
    if (!value)
        throw ArchiveError(otherClass);
    return *value;
}

PropertyList::Dictionary readArchive(std::span<const std::byte> bytes) {
    try {
        PropertyList list = propertylist::readBinary(bytes, propertylist::Identifiers::admitted);
        if (auto* archive = list.as<PropertyList::Dictionary>())
            return std::move(*archive);
    } catch (const propertylist::Refusal& refusal) {
        throw ArchiveError(refusal.what());
    }
    throw ArchiveError("it is no keyed archive");
}

} // namespace

NSKeyedUnarchiver::NSKeyedUnarchiver(std::span<const std::byte> bytes)
    : archive_(std::make_shared<Archive>()), depth_(0) {
    PropertyList::Dictionary archive = readArchive(bytes);
    const auto* version = valueUnder<NSNumber>(archive, "$version");
    if (takeEntry<std::string>(archive, "$archiver") != archiverName || !version ||
        *version != NSNumber(archiveVersion))
        refuse("it is a keyed archive of an unknown kind");
    archive_->top = takeEntry<PropertyList::Dictionary>(archive, "$top");
    archive_->objects = takeEntry<PropertyList::Array>(archive, "$objects");
    archive_->isVisited.resize(archive_->objects.size());
    archive_->fullBudget = archive_->budget = bytes.size() * 16 + minimumBudget;
    fields_ = &archive_->top;
}

NSKeyedUnarchiver::NSKeyedUnarchiver(std::shared_ptr<Archive> archive,
                                     const PropertyList::Dictionary& fields, std::size_t depth)
    : archive_(std::move(archive)), fields_(&fields), depth_(depth) {
    if (depth_ > propertylist::maximumDepth)
        refuse("the objects are nested too deep");
}

bool NSKeyedUnarchiver::contains(std::string_view key) const {
    return fields_->contains(archivedKey(key));
}

void NSKeyedUnarchiver::refuse(const char* reason) { throw ArchiveError(reason); }

void NSKeyedUnarchiver::refuseClass() { refuse(otherClass); }

const PropertyList& NSKeyedUnarchiver::field(std::string_view key) const {
    if (depth_ == 0)
        archive_->budget = archive_->fullBudget;
    const auto entry = fields_->find(archivedKey(key));
    if (entry == fields_->end())
        throw ArchiveError("there is nothing under the name \"" + std::string(key) + '"');
    return entry->second;
}

NSKeyedUnarchiver::Object NSKeyedUnarchiver::object(const PropertyList& stored) const {
    const auto number = propertylist::identifierIn(stored);
    if (!number) {
        // Only numbers stand by themselves.
        if (!stored.as<NSNumber>())
            refuse("a field of an object is damaged");
        archive_->pay(1);
        return {&stored, 0, false, false};
    }
    if (*number >= archive_->objects.size())
        refuse("an object is missing");
    const PropertyList& value = archive_->objects[*number];
    const bool isKnown = archive_->isVisited[*number];
    if (isKnown)
        archive_->pay(1);
    archive_->isVisited[*number] = true;
    return {&value, *number, *number == 0, isKnown};
}

template <class Bytes>
const Bytes& NSKeyedUnarchiver::copied(const Object& object) const {
    const auto& bytes = valueOf<Bytes>(*object.value);
    if (object.isKnown)
        archive_->pay(bytes.size());
    return bytes;
}

const NSNumber& NSKeyedUnarchiver::numberOf(const Object& object) const {
    return valueOf<NSNumber>(*object.value);
}

std::string NSKeyedUnarchiver::read(const Object& object, Of<std::string>) const {
    if (object.isNull)
        refuseClass();
    return copied<std::string>(object);
}

Data NSKeyedUnarchiver::read(const Object& object, Of<Data>) const { return copied<Data>(object); }

Date NSKeyedUnarchiver::read(const Object& object, Of<Date>) const {
    return valueOf<Date>(*object.value);
}

URL NSKeyedUnarchiver::read(const Object& object, Of<URL>) const {
    const NSKeyedUnarchiver fields = fieldsOf(object, urlClass);
    std::optional<URL> url = URL::make({.string = fields.decode<std::string>(urlKey)});
    if (!url)
        refuse("a URL is damaged");
    return std::move(*url);
}

PropertyList NSKeyedUnarchiver::read(const Object& object, Of<PropertyList>) const {
    const auto* fields = object.value->as<PropertyList::Dictionary>();
    if (!fields) {
        if (object.isNull || object.value->as<PropertyList::Array>())
            refuseClass();
        if (object.value->as<std::string>())
            return copied<std::string>(object);
        if (object.value->as<Data>())
            return copied<Data>(object);
        return *object.value;
    }
    if (fields->contains(keysKey))
        return read(object, Of<PropertyList::Dictionary>());
    return read(object, Of<PropertyList::Array>());
}

const PropertyList::Array& NSKeyedUnarchiver::arrayOf(const Object& object) const {
    const auto* values =
        valueUnder<PropertyList::Array>(*fieldsOf(object, arrayClass).fields_, contentsKey);
    if (!values)
        refuse("an array is damaged");
    return *values;
}

NSKeyedUnarchiver::Contents NSKeyedUnarchiver::contentsOf(const Object& object) const {
    const PropertyList::Dictionary& fields = *fieldsOf(object, dictionaryClass).fields_;
    const auto* keys = valueUnder<PropertyList::Array>(fields, keysKey);
    const auto* values = valueUnder<PropertyList::Array>(fields, contentsKey);
    if (!keys || !values || keys->size() != values->size())
        refuse("a dictionary is damaged");
    return {keys, values};
}

NSKeyedUnarchiver NSKeyedUnarchiver::fieldsOf(const Object& object,
                                              std::string_view className) const {
    const auto& fields = valueOf<PropertyList::Dictionary>(*object.value);
    const auto tag = fields.find(classKey);
    if (tag == fields.end())
        refuseClass();
    const auto number = propertylist::identifierIn(tag->second);
    if (!number || *number >= archive_->objects.size())
        refuse("the class of an object is missing");
    const auto* described = archive_->objects[*number].as<PropertyList::Dictionary>();
    const auto* name = described ? valueUnder<std::string>(*described, classNameKey) : nullptr;
    if (!name || *name != className)
        refuseClass();
    return NSKeyedUnarchiver(archive_, fields, depth_ + 1);
}

NSKeyedUnarchiver NSKeyedUnarchiver::deeper() const {
    return NSKeyedUnarchiver(archive_, *fields_, depth_ + 1);
}

std::optional<std::shared_ptr<void>> NSKeyedUnarchiver::sharedBefore(const Object& object,
                                                                     std::type_index type) const {
    if (object.number == 0)
        return std::nullopt;
    const auto [entry, isNew] = archive_->shared.try_emplace(std::pair(object.number, type));
    if (!isNew && !entry->second)
        refuse("an object holds itself");
    return entry->second;
}

void NSKeyedUnarchiver::remember(const Object& object, std::type_index type,
                                 std::shared_ptr<void> made) const {
    if (object.number != 0)
        archive_->shared[std::pair(object.number, type)] = std::move(made);
}

void NSKeyedUnarchiver::forget(const Object& object, std::type_index type) const noexcept {
    archive_->shared.erase(std::pair(object.number, type));
}

} // namespace zorvan
