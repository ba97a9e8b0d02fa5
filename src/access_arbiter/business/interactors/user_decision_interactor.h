#pragma once

// The one rendezvous between the dialog and the IPC side: an unbounded FIFO of decisions.
// SetUserDecision may be called from any thread (the Qt main thread in the program), GetUserDecision
// from any other (the dispatcher thread). A decision pushed while nobody waits stays queued and
// answers the next GetUserDecision at once. Destroying the interactor drops decisions still queued.

#include "business/interactors/i_user_decision_getter.h"
#include "business/interactors/i_user_decision_setter.h"
#include <common/utils/blocking_queue.h>

#include <memory>

namespace access_arbiter::interactors {

class UserDecisionInteractor : public IUserDecisionSetter, public IUserDecisionGetter {
public:
    UserDecisionInteractor();
    ~UserDecisionInteractor() override;

    UserDecisionInteractor(const UserDecisionInteractor&) = delete;
    UserDecisionInteractor& operator=(const UserDecisionInteractor&) = delete;

    std::int32_t SetUserDecision(ui::mode::UserDecision decision) override;
    std::int32_t GetUserDecision(ui::mode::UserDecision& decision) const override;

    // Closes the underlying queue: later sets are dropped and a get on an empty queue returns at once.
    void CloseQueueForTesting();

private:
    // Made once, never replaced. A pointer so that the const GetUserDecision may pop from it.
    std::unique_ptr<fdn::utils::BlockingQueue<ui::mode::UserDecision>> m_queue;
};

}  // namespace access_arbiter::interactors
