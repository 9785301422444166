#include <zorvan/platform/appkit/NSLayoutConstraint.h>

#include <zorvan/platform/appkit/NSView.h>

#include <cmath>

namespace zorvan {

namespace {

double length(double constant) { return std::isfinite(constant) && constant > 0 ? constant : 0; }

} // namespace

NSLayoutConstraint::NSLayoutConstraint(Key, std::weak_ptr<NSView> view, NSLayoutAttribute attribute,
                                       double constant)
    : view_(std::move(view)), attribute_(attribute), constant_(length(constant)) {}

void NSLayoutConstraint::setConstant(double constant) {
    constant_ = length(constant);
    if (const auto view = view_.lock(); view && isActive_)
        view->followConstraints();
}

void NSLayoutConstraint::setActive(bool active) {
    const auto view = view_.lock();
    if (!view || active == isActive_)
        return;
    isActive_ = active;
    const auto self = shared_from_this();
    if (active)
        view->constraints_.push_back(self);
    else
        std::erase(view->constraints_, self);
    view->followConstraints();
}

std::shared_ptr<NSLayoutConstraint>
NSLayoutDimension::constraintGreaterThanOrEqualToConstant(double constant) const {
    return std::make_shared<NSLayoutConstraint>(NSLayoutConstraint::Key{}, view_, attribute_,
                                                constant);
}

} // namespace zorvan
