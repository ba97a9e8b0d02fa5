#pragma once
// UpdateQueue is the observer of `hl-settings monitor`: the settings callback thread hands each
// update to it, and the main thread takes them out and prints them, so that the callback thread
// never waits for the terminal or for a read of the new value.
//
// OnUpdate runs on the callback thread, Take on the main thread; both are thread-safe. Fd is an
// eventfd that is readable while updates are queued; it lives as long as the object. Held by
// shared_ptr, shared with the subscriber until Unsubscribe.

#include <settings_manager/i_settings_update_observer.h>
#include <uvc/path.h>

#include <cstdint>
#include <deque>
#include <mutex>

namespace hl_settings {

struct Update {
    uvc::Path path;
    std::uint8_t upd = 0;
};

class UpdateQueue final : public settings_manager::ISettingsUpdateObserver {
public:
    // Throws std::system_error when no eventfd can be made.
    UpdateQueue();
    ~UpdateQueue() override;
    UpdateQueue(const UpdateQueue&) = delete;
    UpdateQueue& operator=(const UpdateQueue&) = delete;

    void OnUpdate(const uvc::Path& path, std::uint8_t upd) override;

    // Everything queued so far, oldest first; clears the queue and the eventfd.
    std::deque<Update> Take();

    int Fd() const { return m_fd; }

private:
    std::mutex m_mutex;  // guards m_updates
    std::deque<Update> m_updates;
    int m_fd = -1;
};

}  // namespace hl_settings
