#pragma once

#include <zorvan/platform/foundation/internal/Release.h>
#include <zorvan/platform/graphics/Bitmap.h>

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <utility>

#include <mpv/client.h>
#include <mpv/render.h>

namespace zorvan::avfoundation {

/// One core of libmpv, set up to play a local file in silence about everything else: no window, no
/// configuration, no scripts, no playlists, no files but the one. Commands return at once, and are
/// done in their order.
///
/// Used from one thread.
class MpvCore {
public:
    /// `wake` is called on threads of libmpv when there are events or a frame. Empty when libmpv
    /// refuses, as it does under a numeric locale other than C's.
    static std::unique_ptr<MpvCore> create(std::function<void()> wake);
    MpvCore(const MpvCore&) = delete;

    void command(std::uint64_t id, std::initializer_list<const char*> words);
    /// `flags` as mpv's command "seek" has them.
    void seek(std::uint64_t id, double seconds, const char* flags);
    void setFlag(const char* property, bool value);
    void setNumber(const char* property, double value);
    void observe(std::uint64_t id, const char* property, mpv_format format);
    /// Has the value, a double, come as an event.
    void ask(std::uint64_t id, const char* property);
    /// The next event, `MPV_EVENT_NONE` when there is none. Valid until the next call.
    const mpv_event& nextEvent();
    /// Lets libmpv hand over the frame that is due; whether there was one.
    bool takeFrame();
    /// Draws the frame that was taken last.
    std::optional<Bitmap> draw(std::int64_t width, std::int64_t height);

private:
    explicit MpvCore(std::function<void()> wake) : wake_(std::move(wake)) {}
    bool start();

    const std::function<void()> wake_;
    std::unique_ptr<mpv_handle, Release<mpv_terminate_destroy>> handle_;
    std::unique_ptr<mpv_render_context, Release<mpv_render_context_free>> renderer_;
};

} // namespace zorvan::avfoundation
