#include <zorvan/media/NSGraphicsContext.h>

#include <zorvan/media/CGContext.h>
#include <zorvan/platform/appkit/Canvas.h>
#include <zorvan/platform/foundation/fatalError.h>

#include <vector>

namespace zorvan {

namespace {

struct ThreadState {
    NSGraphicsContext::Pointer current;
    std::vector<NSGraphicsContext::Pointer> saved;
};

ThreadState& threadState() {
    thread_local ThreadState state;
    return state;
}

} // namespace

NSGraphicsContext::Pointer NSGraphicsContext::create(std::shared_ptr<CGContext> context,
                                                     bool flipped) {
    if (!context)
        fatalError("A graphics context needs a drawing context.");
    return std::make_shared<NSGraphicsContext>(Key{}, std::move(context), flipped);
}

NSGraphicsContext::Pointer NSGraphicsContext::create(Canvas& canvas) {
    std::shared_ptr<CGContext> context = CGContext::create(canvas);
    return context ? create(std::move(context), canvas.isFlipped()) : nullptr;
}

NSGraphicsContext::Pointer NSGraphicsContext::current() { return threadState().current; }

void NSGraphicsContext::setCurrent(Pointer context) { threadState().current = std::move(context); }

void NSGraphicsContext::saveGraphicsState() {
    ThreadState& state = threadState();
    state.saved.push_back(state.current);
    if (state.current)
        state.current->context_->saveGState();
}

void NSGraphicsContext::restoreGraphicsState() {
    ThreadState& state = threadState();
    if (state.saved.empty())
        return;
    state.current = std::move(state.saved.back());
    state.saved.pop_back();
    if (state.current)
        state.current->context_->restoreGState();
}

NSCompositingOperation NSGraphicsContext::compositingOperation() const noexcept {
    return context_->compositingOperation();
}

void NSGraphicsContext::setCompositingOperation(NSCompositingOperation operation) noexcept {
    context_->setCompositingOperation(operation);
}

} // namespace zorvan
