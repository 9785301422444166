#include <zorvan/platform/foundation/PropertyList.h>

namespace zorvan {

// Here rather than in the header: what a variant of six kinds is made of costs the compiler much.

PropertyList::PropertyList(NSNumber value) : value_(value) {}
PropertyList::PropertyList(std::string value) : value_(std::move(value)) {}
PropertyList::PropertyList(std::string_view value) : value_(std::string(value)) {}
PropertyList::PropertyList(const char* value) : value_(std::string(value)) {}
PropertyList::PropertyList(Date value) : value_(value) {}
PropertyList::PropertyList(Data value) : value_(std::move(value)) {}
PropertyList::PropertyList(Array value) : value_(std::move(value)) {}
PropertyList::PropertyList(Dictionary value) : value_(std::move(value)) {}

PropertyList::PropertyList(const PropertyList& other) = default;
PropertyList::PropertyList(PropertyList&& other) noexcept = default;
PropertyList::~PropertyList() = default;

// What is assigned may lie within what it replaces, and goes with that unless it is taken out
// first.
PropertyList& PropertyList::operator=(const PropertyList& other) {
    return *this = PropertyList(other);
}
PropertyList& PropertyList::operator=(PropertyList&& other) noexcept {
    Value taken = std::move(other.value_);
    value_ = std::move(taken);
    return *this;
}

bool PropertyList::isEqual(const PropertyList& other) const { return value_ == other.value_; }

} // namespace zorvan
