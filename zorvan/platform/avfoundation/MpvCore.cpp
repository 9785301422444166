#include <zorvan/platform/avfoundation/internal/MpvCore.h>

#include <zorvan/platform/avfoundation/internal/containers.h>

#include <array>
#include <vector>

namespace zorvan::avfoundation {
namespace {

constexpr std::pair<const char*, const char*> options[] = {
    // Pictures are asked for, sound may have nowhere to go.
    {"vo", "libmpv"},
    {"audio-fallback-to-null", "yes"},
    {"hwdec", "no"},
    // The renderer cannot turn pictures, and says that it can.
    {"video-rotate", "no"},
    {"osd-level", "0"},
    {"sid", "no"},
    {"audio-display", "no"},
    {"stop-screensaver", "no"},
    // The player waits at the start, and stays at the end.
    {"idle", "yes"},
    {"pause", "yes"},
    {"keep-open", "yes"},
    // Nothing from the user's configuration, nothing on the terminal, no scripts.
    {"config", "no"},
    {"terminal", "no"},
    {"load-scripts", "no"},
    {"load-auto-profiles", "no"},
    {"load-stats-overlay", "no"},
    {"load-osd-console", "no"},
    {"osc", "no"},
    {"ytdl", "no"},
    {"input-default-bindings", "no"},
    {"input-media-keys", "no"},
    {"resume-playback", "no"},
    // No file but the one. Forcing the demuxer rules out playlists, archives and folders.
    {"demuxer", "lavf"},
    {"access-references", "no"},
    {"load-unsafe-playlists", "no"},
    {"autoload-files", "no"},
    {"sub-auto", "no"},
    {"audio-file-auto", "no"},
    {"cover-art-auto", "no"},
    {"ordered-chapters", "no"},
    {"cache", "no"},
    {"demuxer-max-bytes", "32MiB"},
    {"demuxer-max-back-bytes", "16MiB"},
};

mpv_node textNode(const char* text) {
    mpv_node node{};
    node.format = MPV_FORMAT_STRING;
    node.u.string = const_cast<char*>(text);
    return node;
}

/// What only FFmpeg's demuxer can be told.
void restrictDemuxer(mpv_handle* handle) {
    std::array<char*, 2> keys{const_cast<char*>("protocol_whitelist"),
                              const_cast<char*>("format_whitelist")};
    std::array<mpv_node, 2> values{textNode("file"), textNode(readContainers)};
    mpv_node_list list{2, values.data(), keys.data()};
    mpv_node map{};
    map.format = MPV_FORMAT_NODE_MAP;
    map.u.list = &list;
    mpv_set_option(handle, "demuxer-lavf-o", MPV_FORMAT_NODE, &map);
}

void callWake(void* wake) { (*static_cast<const std::function<void()>*>(wake))(); }

} // namespace

bool MpvCore::start() {
    handle_.reset(mpv_create());
    if (!handle_)
        return false;
    // Options of parts that this build of libmpv was made without are unknown to it, and not
    // needed.
    for (const auto& [name, value] : options)
        mpv_set_option_string(handle_.get(), name, value);
    restrictDemuxer(handle_.get());
    if (mpv_initialize(handle_.get()) < 0)
        return false;
    mpv_render_param parameters[] = {
        {MPV_RENDER_PARAM_API_TYPE, const_cast<char*>(MPV_RENDER_API_TYPE_SW)},
        {MPV_RENDER_PARAM_INVALID, nullptr}};
    mpv_render_context* renderer = nullptr;
    if (mpv_render_context_create(&renderer, handle_.get(), parameters) < 0)
        return false;
    renderer_.reset(renderer);
    void* const wake = const_cast<std::function<void()>*>(&wake_);
    mpv_set_wakeup_callback(handle_.get(), &callWake, wake);
    mpv_render_context_set_update_callback(renderer_.get(), &callWake, wake);
    return true;
}

void MpvCore::command(std::uint64_t id, std::initializer_list<const char*> words) {
    std::vector<const char*> arguments(words);
    arguments.push_back(nullptr);
    mpv_command_async(handle_.get(), id, arguments.data());
}

void MpvCore::seek(std::uint64_t id, double seconds, const char* flags) {
    // As a number, since text would be read by the rules of the locale.
    mpv_node target{};
    target.format = MPV_FORMAT_DOUBLE;
    target.u.double_ = seconds;
    std::array<mpv_node, 3> words{textNode("seek"), target, textNode(flags)};
    mpv_node_list list{3, words.data(), nullptr};
    mpv_node node{};
    node.format = MPV_FORMAT_NODE_ARRAY;
    node.u.list = &list;
    mpv_command_node_async(handle_.get(), id, &node);
}

void MpvCore::setFlag(const char* property, bool value) {
    int flag = value ? 1 : 0;
    mpv_set_property_async(handle_.get(), 0, property, MPV_FORMAT_FLAG, &flag);
}

void MpvCore::setNumber(const char* property, double value) {
    mpv_set_property_async(handle_.get(), 0, property, MPV_FORMAT_DOUBLE, &value);
}

void MpvCore::observe(std::uint64_t id, const char* property, mpv_format format) {
    mpv_observe_property(handle_.get(), id, property, format);
}

void MpvCore::ask(std::uint64_t id, const char* property) {
    mpv_get_property_async(handle_.get(), id, property, MPV_FORMAT_DOUBLE);
}

const mpv_event& MpvCore::nextEvent() { return *mpv_wait_event(handle_.get(), 0); }

bool MpvCore::takeFrame() {
    if ((mpv_render_context_update(renderer_.get()) & MPV_RENDER_UPDATE_FRAME) == 0)
        return false;
    int yes = 1, no = 0;
    mpv_render_param parameters[] = {{MPV_RENDER_PARAM_SKIP_RENDERING, &yes},
                                     {MPV_RENDER_PARAM_BLOCK_FOR_TARGET_TIME, &no},
                                     {MPV_RENDER_PARAM_INVALID, nullptr}};
    return mpv_render_context_render(renderer_.get(), parameters) >= 0;
}

std::optional<Bitmap> MpvCore::draw(std::int64_t width, std::int64_t height) {
    auto bitmap = Bitmap::make(width, height);
    if (!bitmap)
        return std::nullopt;
    int size[] = {static_cast<int>(width), static_cast<int>(height)};
    auto stride = static_cast<std::size_t>(bitmap->bytesPerRow());
    int no = 0;
    mpv_render_param parameters[] = {{MPV_RENDER_PARAM_SW_SIZE, size},
                                     {MPV_RENDER_PARAM_SW_FORMAT, const_cast<char*>("rgb0")},
                                     {MPV_RENDER_PARAM_SW_STRIDE, &stride},
                                     {MPV_RENDER_PARAM_SW_POINTER, bitmap->data()},
                                     {MPV_RENDER_PARAM_BLOCK_FOR_TARGET_TIME, &no},
                                     {MPV_RENDER_PARAM_INVALID, nullptr}};
    if (mpv_render_context_render(renderer_.get(), parameters) < 0)
        return std::nullopt;
    // The fourth byte of a pixel is left as it is.
    for (std::int64_t i = 3; i < bitmap->byteCount(); i += 4)
        bitmap->data()[i] = 255;
    return bitmap;
}

std::unique_ptr<MpvCore> MpvCore::create(std::function<void()> wake) {
    std::unique_ptr<MpvCore> core(new MpvCore(std::move(wake)));
    return core->start() ? std::move(core) : nullptr;
}

} // namespace zorvan::avfoundation
