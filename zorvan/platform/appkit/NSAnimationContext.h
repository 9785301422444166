#pragma once

#include <cstdint>

namespace zorvan {

/// How changes of views are meant to be shown while it is in force: for how long, and whether at
/// all. Whoever shows them may ask; the views themselves change at once whatever it says.
///
/// Contexts nest: `beginGrouping` makes a new one with the values of the one around it,
/// `endGrouping` returns to that. Main thread only.
class NSAnimationContext {
public:
    /// Until the `endGrouping` that belongs to it.
    static void beginGrouping();
    /// Stops the program when no grouping has begun.
    static void endGrouping();
    /// That of the innermost grouping, else the one that always is.
    static NSAnimationContext& currentContext();
    /// How many groupings are open.
    static std::int64_t groupingDepth();

    /// Seconds; 0.25 unless set. Any number is taken as it is.
    /// @{
    double duration() const noexcept { return duration_; }
    void setDuration(double seconds) { duration_ = seconds; }
    /// @}
    /// Whether plain changes are meant to be animated too, not only those made through an animator;
    /// false unless set.
    /// @{
    bool allowsImplicitAnimation() const noexcept { return allowsImplicitAnimation_; }
    void setAllowsImplicitAnimation(bool allows) { allowsImplicitAnimation_ = allows; }
    /// @}

private:
    double duration_ = 0.25;
    bool allowsImplicitAnimation_ = false;
};

} // namespace zorvan
