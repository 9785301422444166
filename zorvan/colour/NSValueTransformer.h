#pragma once

#include <any>
#include <memory>
#include <string>
#include <string_view>

namespace zorvan {

/// Turns the values of one class into those of another, for interface bindings and stored settings.
/// An empty `std::any` is an absent value.
///
/// Transformers are registered under names for the whole process. The registry may be used from any
/// thread; a transformer too, unless it says otherwise.
class NSValueTransformer {
public:
    /// Transformers are destroyed as such.
    virtual ~NSValueTransformer() = default;

    /// The value of the other class; an empty `std::any` when there is none.
    [[nodiscard]] virtual std::any transformedValue(const std::any& value) const = 0;
    /// Absent unless the transformer works both ways.
    [[nodiscard]] virtual std::any reverseTransformedValue(const std::any& value) const;

    /// Replaces what was registered under the name; an empty pointer removes it.
    static void setValueTransformer(std::shared_ptr<const NSValueTransformer> transformer,
                                    std::string_view name);
    /// Registers unless the name is taken or the pointer is empty; whether it did.
    static bool addValueTransformer(std::shared_ptr<const NSValueTransformer> transformer,
                                    std::string_view name);
    /// Empty when nothing is registered under the name.
    [[nodiscard]] static std::shared_ptr<const NSValueTransformer>
    valueTransformer(std::string_view name);
};

} // namespace zorvan
