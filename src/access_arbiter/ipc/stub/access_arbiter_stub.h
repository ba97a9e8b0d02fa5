#pragma once

#include "ipc/i_access_arbiter.h"

#include <interfaces/hl/access_arbiter/access_arbiter.h>

#include <memory>

namespace access_arbiter::stub {

// The served interface hl.access_arbiter.AccessArbiter over the IPC-free logic. Called by the
// generated Stub on the dispatcher thread; shares ownership of the logic.
class AccessArbiterStub final : public hosipc::idl::stdcpp_v1::hl::access_arbiter::AccessArbiter {
public:
    // Throws hca::CheckFailedException "Stub: AccessArbiter is null".
    explicit AccessArbiterStub(std::shared_ptr<IAccessArbiter> arbiter);

    void GetUserDecision(unsigned char& decision) override;

private:
    std::shared_ptr<IAccessArbiter> m_arbiter;
};

}  // namespace access_arbiter::stub
