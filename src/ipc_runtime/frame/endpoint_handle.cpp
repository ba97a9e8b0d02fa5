#include <ipc_runtime/endpoint_handle.h>

#include <platform/kn_channel.h>

#include <utility>

namespace hosipc_detail::api_v1 {

EndpointHandle::~EndpointHandle() {
    Close();
}

EndpointHandle::EndpointHandle(EndpointHandle&& other) noexcept
    : m_handle(std::exchange(other.m_handle, kInvalidHandle)),
      m_owned(std::exchange(other.m_owned, false)),
      m_riid(std::exchange(other.m_riid, kInvalidRiid)) {}

EndpointHandle& EndpointHandle::operator=(EndpointHandle&& other) noexcept {
    if (this != &other) {
        Close();
        m_handle = std::exchange(other.m_handle, kInvalidHandle);
        m_owned = std::exchange(other.m_owned, false);
        m_riid = std::exchange(other.m_riid, kInvalidRiid);
    }
    return *this;
}

void EndpointHandle::Adopt(std::uint32_t handle, std::uint16_t riid) {
    const std::uint32_t previous = m_handle;
    const bool previousOwned = m_owned;
    m_handle = handle;
    m_owned = true;
    m_riid = riid;
    if (previousOwned && previous != kInvalidHandle && previous != handle) {
        KnHandleClose(previous);
    }
}

void EndpointHandle::Borrow(std::uint32_t handle, std::uint16_t riid) {
    Adopt(handle, riid);
    m_owned = false;
}

void EndpointHandle::Close() {
    if (m_owned && m_handle != kInvalidHandle) {
        KnHandleClose(m_handle);
    }
    m_handle = kInvalidHandle;
    m_owned = false;
    m_riid = kInvalidRiid;
}

}  // namespace hosipc_detail::api_v1
