#pragma once
// settings_manager::ipc::LazySemaphore: a semaphore made only when first posted or waited on, under an
// outside mutex that must outlive it, so that an Unsubscribe that never waits allocates nothing. A
// post may come before or after the wait. Post and Wait from any thread; the outside mutex must not
// be held by the caller.

#include <platform/hos_rtl/semaphore.h>

#include <memory>
#include <mutex>

namespace settings_manager::ipc {

class LazySemaphore {
public:
    explicit LazySemaphore(std::mutex& mutex) : m_mutex(&mutex) {}

    void Post() { Get().Release(); }
    void Wait() {
        hos::rtl::Semaphore& semaphore = Get();
        while (!semaphore.Wait(std::chrono::hours(1))) {
        }
    }
    bool Allocated() const { return m_semaphore != nullptr; }

private:
    hos::rtl::Semaphore& Get() {
        std::lock_guard lock(*m_mutex);
        if (!m_semaphore) {
            m_semaphore = std::make_unique<hos::rtl::Semaphore>();
        }
        return *m_semaphore;
    }

    std::mutex* m_mutex;
    std::unique_ptr<hos::rtl::Semaphore> m_semaphore;
};

}  // namespace settings_manager::ipc
