#include <zorvan/platform/foundation/internal/Wakeup.h>

#include <cerrno>
#include <sys/eventfd.h>
#include <system_error>

namespace zorvan::internal {

Wakeup::Wakeup() : event_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!event_)
        throw std::system_error(errno, std::generic_category(), "eventfd");
}

void Wakeup::signal() const noexcept { ::eventfd_write(event_.get(), 1); }

void Wakeup::clear() const noexcept {
    eventfd_t count;
    ::eventfd_read(event_.get(), &count);
}

} // namespace zorvan::internal
