// The decision service from the wire inward: a throwing implementation reached by the generated proxy
// over the hosted platform answers a server failure, a failing queue a decline, and the chain's classes
// check their parts. Decisions travelling to callers are the end-to-end tests' part.
#include "business/interactors/user_decision_interactor.h"
#include "ipc/create_dispatcher.h"
#include "ipc/stub/access_arbiter.h"
#include "ipc/stub/access_arbiter_stub.h"
#include "ipc/stub/i_access_arbiter_component.h"
#include <diagnostics/check_failure_text_for_testing.h>
#include <ipc_runtime/connection_builder.h>
#include <interfaces/hl/access_arbiter/access_arbiter.h>
#include <platform/ipc_utils/find_connection_target_for_type.h>

#include "support/scoped_runtime_directory.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <stdexcept>
#include <string>

namespace access_arbiter {
namespace {

using hca::testing::CheckFailureTextForTesting;
using ui::mode::UserDecision;

class CountingWindow final : public windows::components::IWindow {
public:
    void Show() override { ++shows; }
    bool IsVisible() const override { return shows > 0; }
    void Hide() override {}
    void Close() override {}
    void Resize(int, int) override {}
    std::atomic<int> shows{0};
};

class FailingGetter final : public interactors::IUserDecisionGetter {
public:
    // As the queue does on failure: the decision is left as it was.
    std::int32_t GetUserDecision(UserDecision& /*decision*/) const override {
        return static_cast<std::int32_t>(0x8000004Bu);
    }
};

class ThrowingArbiter final : public IAccessArbiter {
public:
    std::uint8_t GetUserDecision() override { throw std::runtime_error("the dialog is gone"); }
};

// The client side as another component would have it: the registry's entry, then the proxy.
auto ConnectToDecisionService() {
    const auto target = shared::ipc_utils::FindConnectionTargetForType(
        "hl.access_arbiter.AccessArbiter.accessArbiter", 0xffffffffu);
    EXPECT_TRUE(target.found);
    EXPECT_STREQ(target.server, "accessArbiter_id");
    const hosipc::api_v1::ConnectionBuilder<hosipc::api_v1::ConnectViaDynamicChannel> connector(
        target.server, target.service, 5000, false);
    return hosipc_detail::idl_traits::MakeProxyImpl(
        connector, stub::GetPureAppResourceProvider(),
        static_cast<
            hosipc_detail::idl_traits::ProxyBait<hosipc::idl::stdcpp_v1::hl::access_arbiter::AccessArbiter>*>(
            nullptr));
}

// Each case serves "accessArbiter_id" in a runtime directory of its own, so that programs started
// by other tests at the same time don't hold the name.
class DecisionServiceTest : public ::testing::Test {
protected:
    hos::platform::testing::ScopedRuntimeDirectory m_runtime;
};

TEST_F(DecisionServiceTest, AThrowingImplementationAnswersAServerFailureAndTheNextCallerIsServed) {
    auto component = stub::CreateAccessArbiterComponent(std::make_shared<ThrowingArbiter>());
    auto facade = CreateDispatcher(component->GetComponentDispatcher());
    ASSERT_NE(facade, nullptr);
    auto proxy = ConnectToDecisionService();
    for (int attempt = 0; attempt < 2; ++attempt) {
        unsigned char answer = 0;
        try {
            proxy->GetUserDecision(answer);
            ADD_FAILURE() << "a server failure was answered as a decision";
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), "hl_access_arbiter_AccessArbiter_GetUserDecision server error");
        }
    }
}

TEST_F(DecisionServiceTest, AFailingQueueAnswersDeclineAfterShowingTheWindow) {
    auto window = std::make_shared<CountingWindow>();
    stub::AccessArbiter arbiter(window, std::make_shared<FailingGetter>());
    EXPECT_EQ(arbiter.GetUserDecision(), 0);
    EXPECT_EQ(window->shows, 1);
}

TEST_F(DecisionServiceTest, TheChainRefusesMissingPartsWithItsTexts) {
    auto window = std::make_shared<CountingWindow>();
    auto getter = std::make_shared<FailingGetter>();
    EXPECT_NE(CheckFailureTextForTesting([&] {
                  stub::AccessArbiter(nullptr, getter);
              }).find("AccessArbiterWindow is null!"),
              std::string::npos);
    EXPECT_NE(CheckFailureTextForTesting([&] {
                  stub::AccessArbiter(window, nullptr);
              }).find("User decision getter is null!"),
              std::string::npos);
    EXPECT_NE(CheckFailureTextForTesting([] {
                  stub::AccessArbiterStub(nullptr);
              }).find("Stub: AccessArbiter is null"),
              std::string::npos);
    EXPECT_NE(CheckFailureTextForTesting([] {
                  stub::CreateAccessArbiterComponent(nullptr);
              }).find("Stub: AccessArbiter is null"),
              std::string::npos);
}

}  // namespace
}  // namespace access_arbiter
