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
PropertyList& PropertyList::operator=(const PropertyList& other) = default;
PropertyList& PropertyList::operator=(PropertyList&& other) noexcept = default;
PropertyList::~PropertyList() = default;

bool PropertyList::isEqual(const PropertyList& other) const { return value_ == other.value_; }

} // namespace zorvan
