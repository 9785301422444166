#include <zorvan/platform/avfoundation/internal/MpvCore.h>

#include <zorvan/platform/foundation/internal/functionBeside.h>

#include <utility>

namespace zorvan::avfoundation {

std::unique_ptr<MpvCore> MpvCore::create(std::function<void()> wake) {
    static const auto make = ZORVAN_FUNCTION_BESIDE(ZORVAN_MPV_PLAYBACK, zorvanMakeMpvCore);
    std::unique_ptr<MpvCore> core;
    if (make)
        make(std::move(wake), core);
    return core;
}

} // namespace zorvan::avfoundation
