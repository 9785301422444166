#pragma once

#include <zorvan/platform/graphics/NSCompositingOperation.h>

#include <concepts>
#include <memory>
#include <utility>

namespace zorvan {

class CGContext;
class Canvas;

/// Where an application draws: a drawing context, and whether y grows downward in it. Each thread
/// has one that is current, or none; colours, paths, pictures and text that are told to draw
/// themselves draw there, and nothing when there is none.
class NSGraphicsContext {
    struct Key {};

public:
    using Pointer = std::shared_ptr<NSGraphicsContext>; ///< How a context is held.

    /// Stops the program without a drawing context. `flipped` says that the transform of the
    /// context has y growing downward, so that text and pictures are drawn upright there.
    static Pointer create(std::shared_ptr<CGContext> context, bool flipped);
    /// Draws where a view draws; see `CGContext::create`. Empty when nothing of the canvas is left.
    static Pointer create(Canvas& canvas);

    /// Of this thread; empty for none.
    /// @{
    static Pointer current();
    static void setCurrent(Pointer context);
    /// @}

    /// Keeps which context is current and its graphics state, for `restoreGraphicsState`; the two
    /// nest, and each thread has its own.
    static void saveGraphicsState();
    /// Does nothing when nothing is saved.
    static void restoreGraphicsState();

    /// Calls `body` with a context current, between saving and restoring, also when it throws.
    template <std::invocable Body>
    static void use(Pointer context, Body&& body);

    /// Never null.
    std::shared_ptr<CGContext> cgContext() const noexcept { return context_; }
    /// Whether y grows downward.
    bool isFlipped() const noexcept { return isFlipped_; }

    /// Of the drawing context.
    /// @{
    NSCompositingOperation compositingOperation() const noexcept;
    void setCompositingOperation(NSCompositingOperation operation) noexcept;
    /// @}

    /// For `create`.
    NSGraphicsContext(Key, std::shared_ptr<CGContext> context, bool isFlipped) noexcept
        : context_(std::move(context)), isFlipped_(isFlipped) {}

private:
    std::shared_ptr<CGContext> context_;
    bool isFlipped_;
};

template <std::invocable Body>
void NSGraphicsContext::use(Pointer context, Body&& body) {
    struct Restore {
        ~Restore() { restoreGraphicsState(); }
    };
    saveGraphicsState();
    const Restore restore;
    setCurrent(std::move(context));
    std::forward<Body>(body)();
}

} // namespace zorvan
