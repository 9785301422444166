#pragma once

#include <zorvan/platform/graphics/Bitmap.h>

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>

#include <mpv/client.h>

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
    virtual ~MpvCore() = default;
    MpvCore(const MpvCore&) = delete;
    MpvCore& operator=(const MpvCore&) = delete;

    virtual void command(std::uint64_t id, std::initializer_list<const char*> words) = 0;
    /// `flags` as mpv's command "seek" has them.
    virtual void seek(std::uint64_t id, double seconds, const char* flags) = 0;
    virtual void setFlag(const char* property, bool value) = 0;
    virtual void setNumber(const char* property, double value) = 0;
    virtual void observe(std::uint64_t id, const char* property, mpv_format format) = 0;
    /// Has the value, a double, come as an event.
    virtual void ask(std::uint64_t id, const char* property) = 0;

    /// The next event, `MPV_EVENT_NONE` when there is none. Valid until the next call.
    virtual const mpv_event& nextEvent() = 0;

    /// Lets libmpv hand over the frame that is due; whether there was one.
    virtual bool takeFrame() = 0;
    /// Draws the frame that was taken last.
    virtual std::optional<Bitmap> draw(std::int64_t width, std::int64_t height) = 0;

protected:
    MpvCore() = default;
};

} // namespace zorvan::avfoundation
