#pragma once

#include <zorvan/interface/Selector.h>
#include <zorvan/platform/appkit/ActionSender.h>
#include <zorvan/platform/foundation/NameLiteral.h>

#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace zorvan {

class NSWindow;

/// The application: which of its windows is the main one, and the way that actions take.
/// Main thread only.
class NSApplication {
public:
    /// Posted by nobody in particular.
    static constexpr NameLiteral looksDidChangeNotification =
        "NSApplicationLooksDidChangeNotification";

    /// The application that this process is.
    static NSApplication& shared();
    NSApplication(const NSApplication&) = delete;
    NSApplication& operator=(const NSApplication&) = delete;

    /// Performs an action on its target. False, and nothing done, when the target is gone, or when
    /// there never was one and the action needs it. The target is kept alive meanwhile.
    bool sendAction(const Selector& action, const std::weak_ptr<void>& to,
                    const std::shared_ptr<ActionSender>& from);

    /// The window that the user works in; null for none.
    std::shared_ptr<NSWindow> mainWindow() const noexcept { return mainWindow_.lock(); }

    /// Whether the application is the one that the user works with. True until a host says
    /// otherwise.
    /// @{
    bool isActive() const noexcept { return isActive_; }
    void setActive(bool active) noexcept { isActive_ = active; }
    /// @}

    /// Whether the desktop wants light text on a dark ground. False until a host says otherwise;
    /// `NSApplication::looksDidChangeNotification` is posted when that changes.
    /// @{
    bool isDark() const noexcept { return isDark_; }
    void setDark(bool dark);
    /// @}

private:
    friend class NSWindow;
    NSApplication() = default;

    std::weak_ptr<NSWindow> mainWindow_;
    bool isActive_ = true;
    bool isDark_ = false;
};

} // namespace zorvan
