#include <common/utils/cancellation_token.h>

namespace common::utils {

CancellationToken::CancellationToken(ExecutionAction initialAction)
    : m_event(true, false), m_action(initialAction) {}

CancellationToken::~CancellationToken() {
    Store(ExecutionAction::Cancel);
}

std::int32_t CancellationToken::GetExecutionAction(ExecutionAction& action) const {
    action = m_action.load();
    return 0;
}

std::int32_t CancellationToken::GetExecutionAction(ExecutionAction& action,
                                                   std::chrono::milliseconds duration) const {
    const bool signaled = m_event.Wait(duration);
    action = m_action.load();
    return signaled ? 0 : 1;
}

std::int32_t CancellationToken::Pause() {
    Store(ExecutionAction::Pause);
    return 0;
}

std::int32_t CancellationToken::Resume() {
    Store(ExecutionAction::Run);
    return 0;
}

bool CancellationToken::IsPaused() const {
    return m_action.load() == ExecutionAction::Pause;
}

bool CancellationToken::IsCanceled() const {
    return m_action.load() == ExecutionAction::Cancel;
}

void CancellationToken::Cancel() {
    Store(ExecutionAction::Cancel);
}

void CancellationToken::Wait() const {
    m_event.Wait();
}

void CancellationToken::Store(ExecutionAction action) {
    m_action.store(action);
    m_event.Set();
}

}  // namespace common::utils
