#pragma once

// The token behind ICancellationToken: an atomic action plus an auto-reset event that signals each
// change. The action is stored before the event is set, so a woken waiter sees the new action.
//
// Any thread may change or read the action; the event wakes one waiter, so a token is meant to
// have one. Nothing stops a Resume after Cancel from storing Run again: owners must not do that.
// Destroying the token stores Cancel and signals it before the event goes away.

#include <common/utils/event.h>
#include <common/utils/i_cancellation_token.h>

#include <atomic>

namespace common::utils {

class CancellationToken : public ICancellationToken {
public:
    explicit CancellationToken(ExecutionAction initialAction);
    ~CancellationToken() override;

    CancellationToken(const CancellationToken&) = delete;
    CancellationToken& operator=(const CancellationToken&) = delete;

    std::int32_t GetExecutionAction(ExecutionAction& action) const override;
    std::int32_t GetExecutionAction(ExecutionAction& action,
                                    std::chrono::milliseconds duration) const override;
    std::int32_t Pause() override;
    std::int32_t Resume() override;
    bool IsPaused() const override;
    bool IsCanceled() const override;

    // Stores Cancel and signals it.
    void Cancel();

    // Waits without limit for the next signalled change.
    void Wait() const;

private:
    void Store(ExecutionAction action);

    // Waiting consumes the auto-reset signal, which const readers are allowed to do.
    mutable Event m_event;
    std::atomic<ExecutionAction> m_action;
};

}  // namespace common::utils
