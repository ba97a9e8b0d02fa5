#include "decision_requester.h"

#include <ipc_runtime/connection_builder.h>
#include <ipc_runtime/resource_provider.h>
#include <platform/ipc_utils/find_connection_target_for_type.h>

#include <latch>

namespace access_arbiter::bench {

namespace {

constexpr const char* kType = "hl.access_arbiter.AccessArbiter.accessArbiter";

// The runtime's connection-failure lines while the service is not yet published would only repeat
// what Connect reports.
class QuietLogger final : public hosipc::api_v1::ILogger {
public:
    void Print(Verbosity, hosipc::api_v1::ILogMessage&) override {}
};

}  // namespace

DecisionRequester::DecisionRequester()
    : m_application(std::make_shared<hosipc_detail::api_v1::ResourceProvider>(
          hosipc_detail::api_v1::MessageCapacity{}, 0,
          hosipc::api_v1::ApplicationSettings{nullptr, nullptr, std::make_shared<QuietLogger>(), nullptr})) {}

DecisionRequester::~DecisionRequester() {
    if (m_call.joinable()) {
        m_call.join();
    }
}

bool DecisionRequester::Connect(std::chrono::milliseconds wait, std::string& error) {
    const auto deadline = Clock::now() + wait;
    for (;;) {
        const auto target = shared::ipc_utils::FindConnectionTargetForType(kType, 0xffffffffU);
        if (target) {
            const hosipc::api_v1::ConnectionBuilder<hosipc::api_v1::ConnectViaDynamicChannel> connector(
                target.server, target.service, 5000, false);
            try {
                m_proxy = hosipc_detail::idl_traits::MakeProxyImpl(
                    connector, m_application.GetResourceProvider(),
                    static_cast<hosipc_detail::idl_traits::ProxyBait<Interface>*>(nullptr));
                return true;
            } catch (const std::exception& failure) {
                error = std::string("can't connect to ") + target.server + ": " + failure.what();
            }
        } else {
            error = std::string("the service ") + kType + " is not published";
        }
        if (Clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

void DecisionRequester::Begin() {
    std::latch stamped(1);
    m_answer = Answer{};
    m_call = std::thread([this, &stamped] {
        unsigned char decision = 0xff;
        m_sent = Clock::now();
        stamped.count_down();
        try {
            m_proxy->GetUserDecision(decision);
            m_answer.received = Clock::now();
            m_answer.decision = decision;
        } catch (const std::exception& failure) {
            m_answer.received = Clock::now();
            m_answer.error = failure.what();
        }
    });
    stamped.wait();
    m_answer.sent = m_sent;
}

DecisionRequester::Answer DecisionRequester::Finish() {
    if (m_call.joinable()) {
        m_call.join();
    }
    return m_answer;
}

}  // namespace access_arbiter::bench
