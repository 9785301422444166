#include <zorvan/platform/avfoundation/internal/MpvCore.h>
#include <zorvan/platform/avfoundation/internal/OperationRunner.h>
#include <zorvan/platform/avfoundation/internal/mpvPlayback.h>
#include <zorvan/platform/graphics/ExactTransforms.h>

#include <algorithm>
#include <condition_variable>
#include <list>
#include <mutex>
#include <string_view>
#include <thread>
#include <utility>

namespace zorvan::avfoundation {
namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr std::uint64_t loadId = 1, timeId = 2, endId = 3, widthId = 4, heightId = 5, turnId = 6,
                        formatId = 7, rowsId = 8;

/// How often a seek or step under way is looked after when no event comes.
constexpr auto checkInterval = 20ms;

/// The EXIF orientation of a picture that is to be turned clockwise by so many degrees. There are
/// quarter turns only.
int orientationOfTurn(std::int64_t degrees) {
    constexpr int orientations[] = {1, 6, 3, 8};
    return orientations[(degrees % 360 + 360 + 45) / 90 % 4];
}

/// Where there is no index, a search in the file may end behind the key picture that is needed.
/// Farther apart than this they seldom are.
constexpr double offsetWithoutIndex = 10;

bool hasIndex(std::string_view format) {
    return format.starts_with("mov,") || format.starts_with("matroska,") || format == "avi";
}

/// The player's thread: it owns the core, passes on what is asked for, and tells the listener.
class MpvPlayer final : public PlayerEngine {
public:
    using Status = MediaPlayer::Status;
    using Listener = MediaPlayer::Listener;

    MpvPlayer(const std::string& path, double frameDuration, std::weak_ptr<Listener> listener);
    ~MpvPlayer() override;

    Status status() const override { return locked(status_); }
    PlaybackClock clock() const override { return locked(clock_); }
    double rate() const override { return locked(rate_); }
    void setRate(double rate) override;
    void add(Operation operation) override;
    std::optional<Bitmap> picture() override;

private:
    using Lock = std::unique_lock<std::mutex>;

    template <class Value>
    Value locked(const Value& value) const {
        const Lock lock(mutex_);
        return value;
    }

    void wake();
    void run() noexcept;
    template <class Work>
    void failUnlessDone(Work work) noexcept;
    bool waitForWork();
    void doWork();
    void endOperation();
    void handleEvents();
    void handle(const mpv_event& event);
    void handleChange(const mpv_event& event);
    void startNext();
    void handle(const OperationRunner::Outcome& outcome);
    void land(const OperationRunner::Outcome& outcome);
    void drawIfAsked();

    void applyRate();
    void fail() noexcept;
    void endPlaying();
    void setReady();
    /// To where it has come when `seconds` is absent.
    void setClock(std::optional<double> seconds, bool isJump);
    /// Under the lock; those it drops are told later, without it.
    void dropWaiting() noexcept;
    std::optional<Operation> nextDropped();
    void tellDropped();

    const std::weak_ptr<Listener> listener_;

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    bool isStopping_ = false;
    bool isWoken_ = false;
    bool isRateNew_ = false;
    bool isPictureAsked_ = false;
    std::optional<Bitmap> drawn_;
    // Lists, so that dropping takes no memory: there may be none when the player fails.
    std::list<Operation> waiting_;
    std::list<Operation> dropped_;
    Status status_ = Status::opening;
    PlaybackClock clock_;
    double rate_ = 0;

    // Of the player's thread alone.
    std::unique_ptr<MpvCore> core_;
    std::unique_ptr<OperationRunner> runner_;
    std::int64_t width_ = 0, height_ = 0;
    std::int64_t rows_ = 0; // as stored; libmpv stretches narrow pixels to more
    std::int64_t turn_ = 0; // clockwise, in degrees, of what is drawn
    bool isAtEnd_ = false;

    std::mutex pictureMutex_; // one asks at a time
    std::thread thread_;
};

} // namespace

MpvPlayer::MpvPlayer(const std::string& path, double frameDuration,
                     std::weak_ptr<Listener> listener)
    : listener_(std::move(listener)) {
    clock_.at = Clock::now();
    core_ = MpvCore::create([this] { wake(); });
    if (!core_) {
        status_ = Status::failed;
        return;
    }
    core_->observe(timeId, "time-pos", MPV_FORMAT_DOUBLE);
    core_->observe(endId, "eof-reached", MPV_FORMAT_FLAG);
    core_->observe(widthId, "video-out-params/dw", MPV_FORMAT_INT64);
    core_->observe(heightId, "video-out-params/dh", MPV_FORMAT_INT64);
    core_->observe(rowsId, "video-out-params/h", MPV_FORMAT_INT64);
    core_->observe(turnId, "current-tracks/video/demux-rotation", MPV_FORMAT_INT64);
    core_->observe(formatId, "file-format", MPV_FORMAT_STRING);
    runner_ = std::make_unique<OperationRunner>(*core_, frameDuration);
    core_->command(loadId, {"loadfile", path.c_str()});
    runner_->start({.kind = Operation::Kind::open}, Clock::now());
    thread_ = std::thread([this] { run(); });
}

MpvPlayer::~MpvPlayer() {
    {
        const Lock lock(mutex_);
        isStopping_ = true;
        changed_.notify_all();
    }
    if (thread_.joinable())
        thread_.join();
}

void MpvPlayer::setRate(double rate) {
    const Lock lock(mutex_);
    if (status_ == Status::failed)
        return;
    rate_ = rate > 0 ? std::clamp(rate, 0.01, 100.0) : 0;
    isRateNew_ = true;
    changed_.notify_all();
}

void MpvPlayer::add(Operation operation) {
    Lock lock(mutex_);
    if (status_ == Status::failed) {
        lock.unlock();
        return operation.complete(false);
    }
    if (operation.kind != Operation::Kind::step) {
        dropWaiting();
        clock_ = {operation.seconds, 0, Clock::now()};
    }
    waiting_.push_back(std::move(operation));
    changed_.notify_all();
}

std::optional<Bitmap> MpvPlayer::picture() {
    const std::scoped_lock one(pictureMutex_);
    Lock lock(mutex_);
    if (status_ != Status::ready)
        return std::nullopt;
    isPictureAsked_ = true;
    changed_.notify_all();
    changed_.wait(lock, [this] { return !isPictureAsked_ || isStopping_; });
    return std::exchange(drawn_, std::nullopt);
}

void MpvPlayer::wake() {
    const Lock lock(mutex_);
    isWoken_ = true;
    changed_.notify_all();
}

void MpvPlayer::run() noexcept {
    while (waitForWork())
        failUnlessDone([this] { doWork(); });
    failUnlessDone([this] { endOperation(); });
    failUnlessDone([this] { tellDropped(); });
}

/// Without memory a movie cannot be played, and the program goes on.
template <class Work>
void MpvPlayer::failUnlessDone(Work work) noexcept {
    try {
        work();
    } catch (...) {
        fail();
    }
}

void MpvPlayer::doWork() {
    handleEvents();
    if (core_->takeFrame())
        runner_->didTakeFrame();
    if (const auto outcome = runner_->advance(width_ > 0, Clock::now()))
        handle(*outcome);
    startNext();
    applyRate();
    drawIfAsked();
}

void MpvPlayer::endOperation() {
    runner_->abort();
    if (const auto outcome = runner_->advance(false, Clock::now()))
        outcome->operation.complete(false);
}

/// False when the player is to end.
bool MpvPlayer::waitForWork() {
    Lock lock(mutex_);
    const auto hasWork = [this] {
        if (isStopping_ || isWoken_ || isPictureAsked_ || !dropped_.empty())
            return true;
        return !runner_->isRunning() && (isRateNew_ || !waiting_.empty());
    };
    if (runner_->isRunning())
        changed_.wait_for(lock, checkInterval, hasWork);
    else
        changed_.wait(lock, hasWork);
    isWoken_ = false;
    return !isStopping_;
}

void MpvPlayer::handleEvents() {
    for (;;) {
        const mpv_event& event = core_->nextEvent();
        if (event.event_id == MPV_EVENT_NONE)
            return;
        handle(event);
    }
}

void MpvPlayer::handle(const mpv_event& event) {
    switch (event.event_id) {
    case MPV_EVENT_SEEK:
        runner_->didSeek();
        break;
    case MPV_EVENT_PLAYBACK_RESTART:
        runner_->didRestart(Clock::now());
        break;
    case MPV_EVENT_COMMAND_REPLY:
        if (event.error < 0)
            event.reply_userdata == loadId ? fail() : runner_->commandDidFail(event.reply_userdata);
        break;
    case MPV_EVENT_GET_PROPERTY_REPLY: {
        std::optional<double> seconds;
        if (event.error >= 0)
            seconds = *static_cast<double*>(static_cast<mpv_event_property*>(event.data)->data);
        runner_->didAnswer(event.reply_userdata, seconds, Clock::now());
        break;
    }
    case MPV_EVENT_PROPERTY_CHANGE:
        handleChange(event);
        break;
    // A file that plays stays open at its end; one that closes cannot be played.
    case MPV_EVENT_END_FILE:
    case MPV_EVENT_SHUTDOWN:
        fail();
        break;
    default:
        break;
    }
}

void MpvPlayer::handleChange(const mpv_event& event) {
    const auto& property = *static_cast<const mpv_event_property*>(event.data);
    if (property.format == MPV_FORMAT_NONE)
        return;
    switch (event.reply_userdata) {
    case timeId: {
        const double seconds = *static_cast<const double*>(property.data);
        runner_->didChangeTime(seconds);
        if (!runner_->isRunning())
            setClock(seconds, false);
        break;
    }
    case endId:
        isAtEnd_ = *static_cast<const int*>(property.data) != 0;
        runner_->didReachEnd(isAtEnd_);
        if (isAtEnd_ && !runner_->isRunning())
            endPlaying();
        break;
    case widthId:
        width_ = *static_cast<const std::int64_t*>(property.data);
        break;
    case heightId:
        height_ = *static_cast<const std::int64_t*>(property.data);
        break;
    case rowsId:
        rows_ = *static_cast<const std::int64_t*>(property.data);
        break;
    case turnId:
        turn_ = *static_cast<const std::int64_t*>(property.data);
        break;
    case formatId:
        if (!hasIndex(*static_cast<char* const*>(property.data)))
            runner_->setDemuxerOffset(offsetWithoutIndex);
        break;
    }
}

void MpvPlayer::startNext() {
    tellDropped();
    std::optional<Operation> next;
    PlaybackClock clock;
    {
        const Lock lock(mutex_);
        if (waiting_.empty())
            return;
        if (runner_->isRunning()) {
            if (waiting_.front().kind != Operation::Kind::step)
                runner_->cutShort();
            return;
        }
        next = std::move(waiting_.front());
        waiting_.pop_front();
        const bool isStep = next->kind == Operation::Kind::step;
        const double seconds = isStep ? clock_.secondsAt(Clock::now()) : next->seconds;
        clock = clock_ = {seconds, 0, Clock::now()};
    }
    runner_->start(std::move(*next), Clock::now());
    if (const auto listener = listener_.lock())
        listener->clockDidChange(clock, false);
}

/// Whoever waits is told, also when all else fails.
void MpvPlayer::handle(const OperationRunner::Outcome& outcome) {
    try {
        land(outcome);
    } catch (...) {
        outcome.operation.complete(false);
        throw;
    }
    outcome.operation.complete(outcome.finished);
}

void MpvPlayer::land(const OperationRunner::Outcome& outcome) {
    const bool isOpening = outcome.operation.kind == Operation::Kind::open;
    if (isOpening && outcome.finished)
        setReady();
    else if (isOpening)
        fail();
    {
        const Lock lock(mutex_);
        isRateNew_ = true; // the core stands still
    }
    setClock(outcome.seconds, true);
}

void MpvPlayer::applyRate() {
    double rate = 0;
    {
        const Lock lock(mutex_);
        if (!isRateNew_ || runner_->isRunning() || !waiting_.empty())
            return;
        isRateNew_ = false;
        if (status_ != Status::ready)
            return;
        rate = rate_;
    }
    if (rate > 0 && isAtEnd_)
        return endPlaying();
    if (rate > 0)
        core_->setNumber("speed", rate);
    core_->setFlag("pause", rate <= 0);
    if (rate != clock().rate)
        setClock(std::nullopt, true);
}

/// The end was reached, or is where playing was to begin.
void MpvPlayer::endPlaying() {
    {
        const Lock lock(mutex_);
        if (!waiting_.empty() || rate_ == 0)
            return;
        rate_ = 0;
    }
    setClock(std::nullopt, true);
}

void MpvPlayer::drawIfAsked() {
    if (!locked(isPictureAsked_))
        return;
    const std::int64_t height = rows_ > 0 ? std::min(rows_, height_) : height_;
    const std::int64_t width = height_ > 0 ? (width_ * height + height_ / 2) / height_ : 0;
    auto bitmap = width > 0 && height > 0 ? core_->draw(width, height) : std::nullopt;
    if (bitmap && turn_ != 0)
        bitmap = oriented(*bitmap, orientationOfTurn(turn_));
    const Lock lock(mutex_);
    drawn_ = std::move(bitmap);
    isPictureAsked_ = false;
    changed_.notify_all();
}

void MpvPlayer::fail() noexcept {
    {
        const Lock lock(mutex_);
        if (status_ == Status::failed)
            return;
        status_ = Status::failed;
        rate_ = 0;
        dropWaiting();
        isPictureAsked_ = false;
        isWoken_ = true; // what is aborted is still to be told
        changed_.notify_all();
    }
    runner_->abort();
    core_->setFlag("pause", true); // or it would be heard on
    if (const auto listener = listener_.lock())
        listener->statusDidChange(Status::failed);
}

void MpvPlayer::setReady() {
    {
        const Lock lock(mutex_);
        if (status_ == Status::failed)
            return;
        status_ = Status::ready;
    }
    if (const auto listener = listener_.lock())
        listener->statusDidChange(Status::ready);
}

void MpvPlayer::setClock(std::optional<double> seconds, bool isJump) {
    PlaybackClock clock;
    {
        const Lock lock(mutex_);
        if (!waiting_.empty()) // the clock stands where the seek is to land
            return;
        const PlaybackClock::TimePoint now = Clock::now();
        clock = clock_ = {seconds.value_or(clock_.secondsAt(now)),
                          status_ == Status::ready ? rate_ : 0, now};
    }
    if (const auto listener = listener_.lock())
        listener->clockDidChange(clock, isJump);
}

void MpvPlayer::dropWaiting() noexcept { dropped_.splice(dropped_.end(), waiting_); }

std::optional<Operation> MpvPlayer::nextDropped() {
    const Lock lock(mutex_);
    if (isStopping_)
        dropWaiting();
    if (dropped_.empty())
        return std::nullopt;
    std::optional<Operation> next(std::move(dropped_.front()));
    dropped_.pop_front();
    return next;
}

void MpvPlayer::tellDropped() {
    while (const auto operation = nextDropped())
        operation->complete(false);
}

extern "C" void zorvanMakePlayerEngine(const std::string& path, double frameDuration,
                                       std::weak_ptr<MediaPlayer::Listener> listener,
                                       std::unique_ptr<PlayerEngine>& engine) {
    engine = std::make_unique<MpvPlayer>(path, frameDuration, std::move(listener));
}

} // namespace zorvan::avfoundation
