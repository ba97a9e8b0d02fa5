#include "ipc/stub/access_arbiter_stub.h"

#include <diagnostics/check.h>

#include <utility>

namespace access_arbiter::stub {

AccessArbiterStub::AccessArbiterStub(std::shared_ptr<IAccessArbiter> arbiter)
    : m_arbiter(std::move(arbiter)) {
    HCA_CHECK(m_arbiter != nullptr) << "Stub: AccessArbiter is null";
}

void AccessArbiterStub::GetUserDecision(unsigned char& decision) {
    decision = m_arbiter->GetUserDecision();
}

}  // namespace access_arbiter::stub
