#include "core/update_queue.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace hl_settings {

UpdateQueue::UpdateQueue() : m_fd(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (m_fd < 0) {
        throw std::system_error(errno, std::generic_category(), "eventfd");
    }
}

UpdateQueue::~UpdateQueue() {
    ::close(m_fd);
}

void UpdateQueue::OnUpdate(const uvc::Path& path, std::uint8_t upd) {
    {
        std::lock_guard lock(m_mutex);
        m_updates.push_back({path, upd});
    }
    const std::uint64_t one = 1;
    // A full counter (never reached) would only mean the reader is already due to wake.
    [[maybe_unused]] const ssize_t written = ::write(m_fd, &one, sizeof(one));
}

std::deque<Update> UpdateQueue::Take() {
    std::uint64_t count = 0;
    [[maybe_unused]] const ssize_t read = ::read(m_fd, &count, sizeof(count));
    std::lock_guard lock(m_mutex);
    return std::exchange(m_updates, {});
}

}  // namespace hl_settings
