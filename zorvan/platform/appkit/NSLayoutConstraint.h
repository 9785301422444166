#pragma once

#include <cstdint>
#include <memory>

namespace zorvan {

class NSView;

/// The sides of a view that a constraint can speak of.
enum class NSLayoutAttribute : std::int64_t { width = 7, height = 8 };

/// Keeps a side of a view from being shorter than a length, for as long as it is active: `setFrame`
/// then makes the view so large at least.
class NSLayoutConstraint : public std::enable_shared_from_this<NSLayoutConstraint> {
    struct Key {};
    friend class NSLayoutDimension;

public:
    /// For `NSLayoutDimension`.
    NSLayoutConstraint(Key, std::weak_ptr<NSView> view, NSLayoutAttribute attribute,
                       double constant);

    /// The view is not kept alive.
    std::shared_ptr<NSView> firstItem() const noexcept { return view_.lock(); }
    /// The side that is kept from being shorter.
    NSLayoutAttribute firstAttribute() const noexcept { return attribute_; }
    /// In points; a negative one, and what is no finite number, becomes 0. An active constraint is
    /// followed at once.
    /// @{
    double constant() const noexcept { return constant_; }
    void setConstant(double constant);
    /// @}

    /// Whether it is in force; false at first.
    bool isActive() const noexcept { return isActive_; }
    /// The view keeps an active constraint alive, and follows it at once.
    void setActive(bool active);

private:
    std::weak_ptr<NSView> view_;
    NSLayoutAttribute attribute_;
    double constant_;
    bool isActive_ = false;
};

/// A side of a view, from which constraints are made.
class NSLayoutDimension {
public:
    /// For the anchors of a view, which is not kept alive.
    NSLayoutDimension(std::weak_ptr<NSView> view, NSLayoutAttribute attribute) noexcept
        : view_(std::move(view)), attribute_(attribute) {}

    /// At least so many points, none below 0; not active until it is made so.
    std::shared_ptr<NSLayoutConstraint>
    constraintGreaterThanOrEqualToConstant(double constant) const;

private:
    std::weak_ptr<NSView> view_;
    NSLayoutAttribute attribute_;
};

} // namespace zorvan
