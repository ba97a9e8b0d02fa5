// The dispatcher loop over a real server channel of the hosted platform, with the generated stub of
// the decision service in its table and a client calling through its own transport.
#include <common/hos_entity/component_code_gen_dispatcher.h>
#include <diagnostics/check_failed_exception.h>
#include <diagnostics/log_capture_for_testing.h>
#include <diagnostics/process_exception.h>
#include <ipc_runtime/application_settings.h>
#include <interfaces/hl/access_arbiter/access_arbiter.h>
#include <ipc_runtime/resource_provider.h>
#include <platform/platform.h>

#include <gtest/gtest.h>

#include <unistd.h>

#include <atomic>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using hos::logger::LogLevel;
using Interface = hosipc::idl::stdcpp_v1::hl::access_arbiter::AccessArbiter;

struct Req {
    nk_message header;
};
struct Res {
    nk_message header;
    unsigned char fields[8];
};
using Dispatcher = hos::entity::ComponentCodeGenDispatcher<Req, Res, 0, 0>;

constexpr std::int32_t kAlreadyDone = static_cast<std::int32_t>(0x80000067u);

// Answers 10, 11, 12, ... and counts its calls.
class CountingArbiter final : public Interface {
public:
    void GetUserDecision(unsigned char& decision) override {
        decision = static_cast<unsigned char>(10 + m_calls++);
    }
    int Calls() const { return m_calls; }

private:
    std::atomic<int> m_calls{0};
};

struct Answer {
    int rc = 0;
    Res response{};
};

class DispatcherLoopTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_name = "dispatcher_test_" + std::to_string(getpid());
        m_server = ServiceLocatorRegister(m_name.c_str(), nullptr, 0, &m_id);
        ASSERT_NE(m_server, NK_INVALID_HANDLE);
        m_client = ServiceLocatorConnect(m_name.c_str());
        ASSERT_NE(m_client, NK_INVALID_HANDLE);
        auto resources = std::make_shared<hosipc_detail::api_v1::ResourceProvider>(
            hosipc_detail::api_v1::MessageCapacity{}, 0u, hosipc::api_v1::ApplicationSettings{});
        m_stub = std::make_shared<hosipc_detail::idl_traits::Stub<Interface>>(&m_arbiter, resources);
        m_capture.SetLevel(LogLevel::Debug);
    }

    void TearDown() override {
        m_dispatcher.reset();
        KnHandleClose(m_client);
        KnHandleClose(m_server);
        ServiceLocatorUnregister(m_id);
    }

    std::unique_ptr<Dispatcher> MakeDispatcher() {
        return std::make_unique<Dispatcher>(std::vector<hos::entity::InterfaceDispatcher>{{1, m_stub}}, 0,
                                            m_server, 500);
    }

    // One raw request with the given iid and mid; waits at most timeoutMs for its answer.
    Answer Call(std::uint16_t iid, std::uint16_t mid, unsigned int timeoutMs = 20000) {
        NkHosTransport transport;
        NkHosTransport_Init(&transport, m_client, nullptr, 0);
        NkHosSetTransportTimeouts(&transport, NK_TIMEOUT_INFINITE, timeoutMs);
        Req request{};
        request.header.iid = iid;
        request.header.mid = mid;
        request.header.sizeFlags = nk_size_word(sizeof(Req), 0);
        Answer answer;
        answer.response.header.sizeFlags = nk_size_word(sizeof(Res), 0);
        nk_arena empty{nullptr, nullptr, nullptr};
        nk_arena responseArena{nullptr, nullptr, nullptr};
        answer.rc =
            transport.ops->call(&transport, &request.header, &empty, &answer.response.header, &responseArena);
        return answer;
    }

    std::vector<hos::logger::LogRecord> EndLines() const {
        std::vector<hos::logger::LogRecord> lines;
        for (const auto& record : m_capture.Records()) {
            if (record.message.find("End of DispatcherLoop") != std::string::npos) {
                lines.push_back(record);
            }
        }
        return lines;
    }

    hos::logger::LogCaptureForTesting m_capture;
    std::string m_name;
    unsigned int m_id = 0;
    unsigned int m_server = NK_INVALID_HANDLE;
    unsigned int m_client = NK_INVALID_HANDLE;
    CountingArbiter m_arbiter;
    std::shared_ptr<hosipc_detail::api_v1::IDispatcher> m_stub;
    std::unique_ptr<Dispatcher> m_dispatcher;
};

TEST_F(DispatcherLoopTest, KnownInterfaceAndMethodIsServedOneRequestAfterAnother) {
    m_dispatcher = MakeDispatcher();
    ASSERT_EQ(m_dispatcher->Start(), 0);
    for (unsigned char expected : {10, 11, 12}) {
        const Answer answer = Call(1, 0);
        ASSERT_EQ(answer.rc, 0);
        EXPECT_EQ(answer.response.header.sizeFlags, 0x20u);
        EXPECT_EQ(answer.response.fields[0], expected);
    }
    EXPECT_EQ(m_dispatcher->Stop(), 0);
    // The stop is seen after the last reply (code 0) or after the next receive ran out (-11).
    const auto lines = EndLines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_TRUE(lines[0].message == "ComponentDispatcher: [riid = 0] End of DispatcherLoop with code 0!" ||
                lines[0].message == "ComponentDispatcher: [riid = 0] End of DispatcherLoop with code -11!")
        << lines[0].message;
    EXPECT_EQ(lines[0].level, LogLevel::Debug);
}

TEST_F(DispatcherLoopTest, UnknownMethodGetsTheStaleResponseBufferAndTheLoopGoesOn) {
    m_dispatcher = MakeDispatcher();
    ASSERT_EQ(m_dispatcher->Start(), 0);
    // Before any reply the buffer holds a zero header, which the platform refuses to send.
    EXPECT_EQ(Call(1, 1).rc, NK_EINVAL);
    ASSERT_EQ(Call(1, 0).rc, 0);
    // Now it holds the last answer (mid 0), which does not match the request's mid.
    EXPECT_EQ(Call(1, 1).rc, NK_EMISMATCH);
    EXPECT_EQ(m_arbiter.Calls(), 1);
    const Answer next = Call(1, 0);
    EXPECT_EQ(next.rc, 0);
    EXPECT_EQ(next.response.fields[0], 11);
    EXPECT_TRUE(EndLines().empty());
}

TEST_F(DispatcherLoopTest, UnknownInterfaceGetsTheStaleReplyAndEndsTheLoopForGood) {
    struct Case {
        std::uint16_t iid;
        bool servedBefore;
        int rc;
    };
    for (const Case& c : {Case{0, false, NK_EINVAL}, Case{2, false, NK_EINVAL}, Case{0, true, NK_EMISMATCH},
                          Case{2, true, NK_EMISMATCH}}) {
        SCOPED_TRACE(testing::Message()
                     << "iid " << c.iid << (c.servedBefore ? " after a served request" : ""));
        m_capture.Clear();
        m_dispatcher = MakeDispatcher();
        ASSERT_EQ(m_dispatcher->Start(), 0);
        if (c.servedBefore) {
            ASSERT_EQ(Call(1, 0).rc, 0);
        }
        const int callsBefore = m_arbiter.Calls();
        EXPECT_EQ(Call(c.iid, 0).rc, c.rc);
        // Nobody receives any more: the next request runs into the client's own timeout.
        EXPECT_EQ(Call(1, 0, 300).rc, NK_TRANSPORT_TIMEOUT);
        EXPECT_EQ(m_arbiter.Calls(), callsBefore);
        // The loop ended by itself, so its token still says Run: Start refuses, Stop joins.
        EXPECT_EQ(m_dispatcher->Start(), kAlreadyDone);
        EXPECT_EQ(m_dispatcher->Stop(), 0);
        const auto lines = EndLines();
        ASSERT_EQ(lines.size(), 1u);
        EXPECT_EQ(lines[0].message, "ComponentDispatcher: [riid = 0] End of DispatcherLoop with code 0!");
        EXPECT_EQ(lines[0].level, LogLevel::Debug);
        m_dispatcher.reset();
        // The request that timed out on the client side is still queued; a fresh channel starts clean.
        KnHandleClose(m_client);
        m_client = ServiceLocatorConnect(m_name.c_str());
        ASSERT_NE(m_client, NK_INVALID_HANDLE);
        NkHosTransport drain;
        NkHosTransport_Init(&drain, m_server, nullptr, 0);
        NkHosSetTransportTimeouts(&drain, 0, 0);
        Req stale{};
        stale.header.sizeFlags = nk_size_word(sizeof(Req), 0);
        nk_arena empty{nullptr, nullptr, nullptr};
        while (drain.ops->receive(&drain, &stale.header, &empty) == 0) {
            stale.header.sizeFlags = nk_size_word(sizeof(Req), 0);
        }
    }
}

TEST_F(DispatcherLoopTest, StartAndStopAnswerAlreadyDoneOutOfTurnAnIdleStopLogsItsTimeoutAndAStoppedDispatcherRestarts) {
    m_dispatcher = MakeDispatcher();
    EXPECT_EQ(m_dispatcher->Stop(), kAlreadyDone) << "never started";
    EXPECT_EQ(m_dispatcher->Start(), 0);
    EXPECT_EQ(m_dispatcher->Start(), kAlreadyDone);
    EXPECT_EQ(m_dispatcher->Stop(), 0);
    // An idle dispatcher's loop ends with its receive timeout, at debug level.
    ASSERT_EQ(EndLines().size(), 1u);
    EXPECT_EQ(EndLines()[0].message, "ComponentDispatcher: [riid = 0] End of DispatcherLoop with code -11!");
    EXPECT_EQ(EndLines()[0].level, LogLevel::Debug);
    EXPECT_EQ(m_dispatcher->Stop(), kAlreadyDone);
    EXPECT_EQ(m_dispatcher->Start(), 0);
    const Answer answer = Call(1, 0);
    EXPECT_EQ(answer.rc, 0);
    EXPECT_EQ(answer.response.fields[0], 10);
    EXPECT_EQ(m_dispatcher->Stop(), 0);
    EXPECT_EQ(EndLines().size(), 2u);
}

TEST_F(DispatcherLoopTest, AReceiveFailureOtherThanATimeoutKeepsTheLoopGoingAndEndsItWithAnErrorLine) {
    m_dispatcher = MakeDispatcher();
    ASSERT_EQ(m_dispatcher->Start(), 0);
    ASSERT_EQ(Call(1, 0).rc, 0);
    // The channel goes away under the loop: every receive fails at once from here on.
    ASSERT_EQ(KnHandleClose(m_server), 0);
    KnSleep(100);
    EXPECT_TRUE(EndLines().empty()) << "the loop must not end on a failed receive";
    EXPECT_EQ(m_dispatcher->Stop(), 0);
    const auto lines = EndLines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].level, LogLevel::Error);
    EXPECT_EQ(lines[0].message.find("with code -11!"), std::string::npos);
    m_server = NK_INVALID_HANDLE;
}

TEST_F(DispatcherLoopTest, DestroyingARunningDispatcherWhileRequestsArriveEndsCleanly) {
    for (int round = 0; round < 5; ++round) {
        m_dispatcher = MakeDispatcher();
        ASSERT_EQ(m_dispatcher->Start(), 0);
        std::atomic<bool> stop{false};
        std::atomic<int> answered{0};
        std::thread caller([&] {
            while (!stop) {
                const Answer answer = Call(1, 0, 200);
                // Served (a request caught by the teardown gets the stale answer), or not received any
                // more (timeout); never a broken frame.
                if (answer.rc == 0) {
                    EXPECT_EQ(answer.response.header.sizeFlags, 0x20u);
                    ++answered;
                } else {
                    EXPECT_EQ(answer.rc, NK_TRANSPORT_TIMEOUT);
                }
            }
        });
        while (answered == 0) {
            std::this_thread::yield();
        }
        m_dispatcher.reset();
        stop = true;
        caller.join();
        // A fresh channel for the next round: requests left over belong to no one.
        KnHandleClose(m_client);
        KnHandleClose(m_server);
        ServiceLocatorUnregister(m_id);
        m_server = ServiceLocatorRegister(m_name.c_str(), nullptr, 0, &m_id);
        ASSERT_NE(m_server, NK_INVALID_HANDLE);
        m_client = ServiceLocatorConnect(m_name.c_str());
        ASSERT_NE(m_client, NK_INVALID_HANDLE);
    }
}

TEST_F(DispatcherLoopTest, ConstructionChecksItsArguments) {
    const auto table = std::vector<hos::entity::InterfaceDispatcher>{{1, m_stub}};
    EXPECT_THROW(Dispatcher(table, 0xFFFF, m_server, 500), hca::CheckFailedException);
    EXPECT_THROW(Dispatcher(table, 0, NK_INVALID_HANDLE, 500), hca::CheckFailedException);
    try {
        Dispatcher({}, 0, m_server, 500);
        ADD_FAILURE() << "an empty table was taken";
    } catch (const hca::CheckFailedException&) {
        const auto [code, text] = common::utils::ProcessException();
        EXPECT_NE(text.find("InterfaceDispatchers is empty"), std::string::npos) << text;
    }
}

}  // namespace
