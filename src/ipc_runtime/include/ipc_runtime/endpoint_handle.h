#pragma once

#include <cstdint>

namespace hosipc_detail::api_v1 {

// The client end of a channel and the interface id within it. Move-only; when it owns a valid handle,
// its destructor closes it. Used by one thread at a time.
class EndpointHandle {
public:
    static constexpr std::uint32_t kInvalidHandle = 0xffffffffU;
    static constexpr std::uint16_t kInvalidRiid = 0xffffU;

    EndpointHandle() = default;
    ~EndpointHandle();
    EndpointHandle(EndpointHandle&& other) noexcept;
    EndpointHandle& operator=(EndpointHandle&& other) noexcept;
    EndpointHandle(const EndpointHandle&) = delete;
    EndpointHandle& operator=(const EndpointHandle&) = delete;

    // Takes ownership of handle; a valid handle owned before is closed.
    void Adopt(std::uint32_t handle, std::uint16_t riid);
    // Uses handle without owning it (another endpoint owns and closes it, and must outlive this one);
    // a valid handle owned before is closed.
    void Borrow(std::uint32_t handle, std::uint16_t riid);

    std::uint32_t GetHandle() const { return m_handle; }
    bool IsOwned() const { return m_owned; }
    std::uint16_t GetRiid() const { return m_riid; }

private:
    void Close();

    std::uint32_t m_handle = kInvalidHandle;
    bool m_owned = false;
    std::uint16_t m_riid = kInvalidRiid;
};

}  // namespace hosipc_detail::api_v1
