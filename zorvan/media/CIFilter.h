#pragma once

#include <zorvan/media/CIImage.h>
#include <zorvan/media/CIVector.h>
#include <zorvan/platform/foundation/NameLiteral.h>

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace zorvan {

/// The key of the picture that goes in, and of the one that comes out.
/// @{
inline constexpr NameLiteral kCIInputImageKey = "inputImage";
inline constexpr NameLiteral kCIOutputImageKey = "outputImage";
/// @}

/// Makes a picture from one, by values under keys. An application may derive filters of its own.
///
/// - "CIColorMatrix": each component of the result is the product of its vector and the pixel (red,
///   green, blue, alpha), and its part of the bias. Keys, and what they are when not set:
///   "inputRVector" (1, 0, 0, 0), "inputGVector" (0, 1, 0, 0), "inputBVector" (0, 0, 1, 0),
///   "inputAVector" (0, 0, 0, 1), "inputBiasVector" (0, 0, 0, 0).
/// - "CIToneCurve": red, green and blue each follow a smooth curve through the points, which never
///   turns back between two of them; they must stand in order of x. Keys: "inputPoint0" to
///   "inputPoint4", when not set (0, 0), (0.25, 0.25) ... (1, 1).
class CIFilter {
public:
    using Pointer = std::shared_ptr<CIFilter>; ///< How a filter is held.
    /// Nothing, a picture, numbers or one number.
    using Value = std::variant<std::monostate, CIImage::Pointer, CIVector, double>;

    /// A filter of that list; empty when it is none of them.
    static Pointer create(std::string_view name);
    /// The names that `create` knows.
    static std::vector<std::string_view> filterNames();

    /// Applications may derive filters of their own.
    virtual ~CIFilter() = default;
    CIFilter(const CIFilter&) = delete;
    CIFilter& operator=(const CIFilter&) = delete;

    /// The name it was made with.
    std::string name() const { return name_; }
    /// Replaces what was set under the key; nothing is checked before it is used.
    void setValue(Value value, std::string_view key) {
        values_.insert_or_assign(std::string(key), std::move(value));
    }
    /// The output picture under `kCIOutputImageKey`, else what has been set; nothing when that is
    /// not there.
    Value value(std::string_view key) const;

    /// Empty when the filter has no input picture.
    virtual CIImage::Pointer outputImage() const = 0;

protected:
    /// Of that name.
    explicit CIFilter(std::string_view name) : name_(name) {}

    /// What was set under `kCIInputImageKey`; empty when that is no picture.
    CIImage::Pointer inputImage() const;
    /// What was set under the key, else `unset`.
    CIVector vector(std::string_view key, const CIVector& unset) const;

private:
    std::string name_;
    std::map<std::string, Value, std::less<>> values_;
};

} // namespace zorvan
