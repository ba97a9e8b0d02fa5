#include "business/interactors/user_decision_interactor.h"

#include <diagnostics/log.h>
#include <diagnostics/process_exception.h>
#include <diagnostics/result_code.h>

namespace access_arbiter::interactors {

UserDecisionInteractor::UserDecisionInteractor()
    : m_queue(std::make_unique<fdn::utils::BlockingQueue<ui::mode::UserDecision>>()) {}

UserDecisionInteractor::~UserDecisionInteractor() = default;

std::int32_t UserDecisionInteractor::SetUserDecision(ui::mode::UserDecision decision) {
    try {
        m_queue->Push(decision);
        return hca::result_code::kNoError;
    } catch (...) {
        const auto [code, message] = fdn::utils::ProcessException();
        HL_LOG(hos::logger::LogLevel::Error, "Failed to push user decision with code={}, message: '{}'", code,
               message);
        return hca::result_code::kUnspecifiedError;
    }
}

std::int32_t UserDecisionInteractor::GetUserDecision(ui::mode::UserDecision& decision) const {
    try {
        // No limit: the caller waits for as long as the user takes. The count is not looked at, so
        // a closed queue would return 0 with `decision` untouched.
        m_queue->Pop(decision, 0);
        return hca::result_code::kNoError;
    } catch (...) {
        const auto [code, message] = fdn::utils::ProcessException();
        HL_LOG(hos::logger::LogLevel::Error, "Failed to get user decision with code={}, message: '{}'", code,
               message);
        return hca::result_code::kUnspecifiedError;
    }
}

void UserDecisionInteractor::CloseQueueForTesting() {
    m_queue->CloseForTesting();
}

}  // namespace access_arbiter::interactors
