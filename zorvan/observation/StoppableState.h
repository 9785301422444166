#pragma once

namespace zorvan {

/// Whether to go on.
enum class StoppableState { pursue, stop };

/// `stop` if either side is `stop`. Both sides are evaluated.
[[nodiscard]] constexpr StoppableState operator||(StoppableState a, StoppableState b) noexcept {
    return a == StoppableState::stop ? a : b;
}

} // namespace zorvan
