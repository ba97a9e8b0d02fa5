#pragma once

#include <access_arbiter/interactors/i_user_decision_setter.h>
#include <access_arbiter/ui/view/i_access_arbiter_view.h>

#include <diagnostics/process_exception.h>

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <vector>

namespace access_arbiter::testing {

// Records every decision; `onSet` lets a test look at the world at the moment of the push.
class RecordingSetter : public interactors::IUserDecisionSetter {
public:
    std::int32_t SetUserDecision(ui::mode::UserDecision decision) override {
        decisions.push_back(decision);
        if (onSet) {
            onSet();
        }
        return result;
    }

    std::vector<ui::mode::UserDecision> decisions;
    std::function<void()> onSet;
    std::int32_t result = 0;
};

class MockView : public ui::IAccessArbiterView {
public:
    MOCK_METHOD(std::unique_ptr<common::utils::ICallableGuard>, GetGuardView, (), (const, override));
    MOCK_METHOD(void, Hide, (), (noexcept, override));
    MOCK_METHOD(void, Show, (), (noexcept, override));
};

// The text ProcessException gives for whatever `action` throws; empty when nothing is thrown.
template <typename F>
std::string FailureText(F&& action) {
    try {
        action();
    } catch (...) {
        return fdn::utils::ProcessException().second;
    }
    return {};
}

}  // namespace access_arbiter::testing
