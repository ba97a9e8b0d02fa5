// The serving host in this process, with a client of the generated proxy on another thread: a reply
// deferred by the implementation and released from a third thread, a forgotten one, a second
// server of a name already served, the caller's pid as an implementation sees it, and an interrupt
// that ends a wait without a time limit.
#include <ipc_runtime/connection_builder.h>
#include <interfaces/hl/access_arbiter/access_arbiter.h>
#include <ipc_runtime/resource_provider.h>
#include <ipc_runtime/server/serving_host.h>

#include <support/scoped_runtime_directory.h>

#include <gtest/gtest.h>

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <stdexcept>
#include <thread>

namespace {

using namespace std::chrono_literals;
using hosipc::idl::stdcpp_v1::hl::access_arbiter::AccessArbiter;
using hosipc::server::ComponentTree;
using hosipc::server::DeferredReplies;
using hosipc::server::ServingHost;

constexpr const char* kServer = "servingHostTest_id";
constexpr const char* kEndpoint = "hl.access_arbiter.AccessArbiter.accessArbiter";
constexpr std::uint64_t kKey = 7;

// Defers its first answer under kKey; serves 1 once woken.
class DeferringArbiter final : public AccessArbiter {
public:
    explicit DeferringArbiter(std::shared_ptr<DeferredReplies> deferred) : m_deferred(std::move(deferred)) {}
    void GetUserDecision(unsigned char& decision) override {
        if (calls++ == 0) {
            m_deferred->HoldCurrent(kKey);
            return;
        }
        decision = 1;
    }
    std::atomic<int> calls{0};

private:
    std::shared_ptr<DeferredReplies> m_deferred;
};

// Answers 1 at once, noting the pid the host gives for the caller.
class PidNotingArbiter final : public AccessArbiter {
public:
    void GetUserDecision(unsigned char& decision) override {
        peer = host->PeerPid();
        decision = 1;
    }
    ServingHost* host = nullptr;
    std::atomic<int> peer{0};
};

ComponentTree Tree(AccessArbiter* implementation) {
    ComponentTree tree("hl.test.ServingHost");
    tree.Serve<AccessArbiter>(1, kEndpoint, "accessArbiter", "hl.access_arbiter.AccessArbiter", implementation);
    return tree;
}

class ServingHostTest : public testing::Test {
protected:
    // Serves the deferring arbiter on a thread of its own until the test ends.
    void Serve() {
        m_host = std::make_unique<ServingHost>(Tree(&m_arbiter), kServer, hosipc::server::ServerOptions{},
                                               m_deferred);
        m_server = std::jthread([this](std::stop_token stop) {
            while (!stop.stop_requested()) {
                const auto report = m_host->ServeOne(20);
                gone += static_cast<int>(report.gone.size());
            }
        });
    }
    void TearDown() override {
        m_server = {};  // stops and joins before the host goes
        m_host.reset();
    }
    // GetUserDecision through the generated proxy, with `timeoutMs` for the answer.
    std::future<int> Ask(unsigned int timeoutMs) {
        return std::async(std::launch::async, [timeoutMs] {
            const hosipc::api_v1::ConnectionBuilder<hosipc::api_v1::ConnectViaDynamicChannel> connector(
                kServer, kEndpoint, 5000, false);
            auto proxy = hosipc_detail::idl_traits::MakeProxyImpl(
                connector,
                std::make_shared<hosipc_detail::api_v1::ResourceProvider>(hosipc_detail::api_v1::MessageCapacity{},
                                                                          0, hosipc::api_v1::ApplicationSettings{}),
                static_cast<hosipc_detail::idl_traits::ProxyBait<AccessArbiter>*>(nullptr));
            static_cast<hosipc_detail::idl_traits::Proxy<AccessArbiter>*>(proxy.get())
                ->SetTimeouts(NK_TIMEOUT_INFINITE, timeoutMs);
            unsigned char decision = 0xff;
            try {
                proxy->GetUserDecision(decision);
            } catch (const std::exception&) {
                return -1;
            }
            return static_cast<int>(decision);
        });
    }

    // Waits until the arbiter has held the first request.
    bool Held() const {
        const auto deadline = std::chrono::steady_clock::now() + 10s;
        while (m_arbiter.calls == 0 && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(10ms);
        }
        return m_arbiter.calls == 1;
    }

    hos::platform::testing::ScopedRuntimeDirectory m_runtime;
    std::shared_ptr<DeferredReplies> m_deferred = std::make_shared<DeferredReplies>();
    DeferringArbiter m_arbiter{m_deferred};
    std::unique_ptr<ServingHost> m_host;
    std::jthread m_server;
    std::atomic<int> gone{0};
};

TEST_F(ServingHostTest, ADeferredRequestIsAnsweredOnlyOnceAnotherThreadWakesIt) {
    Serve();

    auto answer = Ask(NK_TIMEOUT_INFINITE);
    ASSERT_TRUE(Held());
    EXPECT_EQ(answer.wait_for(500ms), std::future_status::timeout) << "a deferred request was answered";
    m_deferred->Wake(kKey);
    ASSERT_EQ(answer.wait_for(10s), std::future_status::ready);
    EXPECT_EQ(answer.get(), 1);
    EXPECT_EQ(m_arbiter.calls, 2) << "the woken request is served again, once";
}

TEST_F(ServingHostTest, AForgottenRequestIsNeverAnsweredAndAWakeAfterItFindsNothing) {
    Serve();

    auto answer = Ask(1500);
    ASSERT_TRUE(Held());
    m_deferred->Forget(kKey);
    std::this_thread::sleep_for(100ms);
    m_deferred->Wake(kKey);
    ASSERT_EQ(answer.wait_for(10s), std::future_status::ready);
    EXPECT_EQ(answer.get(), -1) << "the client's own timeout ends the call";
    EXPECT_EQ(m_arbiter.calls, 1);
}

TEST_F(ServingHostTest, AKeptRequestWhoseClientHasGoneIsReportedWhenWoken) {
    Serve();

    // The client gives up and closes its connection; the kept request stays.
    auto answer = Ask(1000);
    ASSERT_TRUE(Held());
    ASSERT_EQ(answer.wait_for(10s), std::future_status::ready);
    EXPECT_EQ(answer.get(), -1);
    m_deferred->Wake(kKey);
    const auto deadline = std::chrono::steady_clock::now() + 5s;
    while (gone == 0 && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(20ms);
    }
    EXPECT_EQ(gone, 1);
}

TEST_F(ServingHostTest, ASecondServerOfANameAlreadyServedIsRefused) {
    ServingHost first(Tree(&m_arbiter), kServer);
    EXPECT_THROW(ServingHost(Tree(&m_arbiter), kServer), std::runtime_error);
    EXPECT_THROW(ComponentTree("hl.test.Null").Serve<AccessArbiter>(1, "a", "b", "c", nullptr),
                 std::invalid_argument);
}

TEST_F(ServingHostTest, AnImplementationSeesItsCallersPidAndAnInterruptEndsAWaitWithoutLimit) {
    PidNotingArbiter arbiter;
    m_host = std::make_unique<ServingHost>(Tree(&arbiter), kServer);
    arbiter.host = m_host.get();
    std::promise<void> waited;
    std::thread server([this, &waited] {
        m_host->ServeOne(NK_TIMEOUT_INFINITE);  // the request
        m_host->ServeOne(NK_TIMEOUT_INFINITE);  // nothing comes: only the interrupt ends it
        waited.set_value();
    });
    auto answer = Ask(5000);
    ASSERT_EQ(answer.wait_for(10s), std::future_status::ready);
    EXPECT_EQ(answer.get(), 1);
    EXPECT_EQ(arbiter.peer, static_cast<int>(::getpid())) << "the client runs in this process";
    EXPECT_EQ(m_host->PeerPid(), -1) << "no request is being served";
    auto ended = waited.get_future();
    EXPECT_EQ(ended.wait_for(300ms), std::future_status::timeout);
    m_host->Interrupt();
    EXPECT_EQ(ended.wait_for(5s), std::future_status::ready);
    server.join();
}

}  // namespace
