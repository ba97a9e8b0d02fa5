// The requesting side of the benchmark: the generated proxy of hl.access_arbiter.AccessArbiter,
// connected through the registry the way hl-ask connects, and one GetUserDecision at a time on a
// thread of its own. The time stamps are taken right before the call (the request is sent) and right
// after it returns (the answer is received).
//
// Thread: Connect, Begin and Finish from one thread; each request runs on its own short-lived thread.
// The object owns its Application (runtime resources) and the proxy for its whole life.
#pragma once

#include <ipc_runtime/application.h>
#include <interfaces/hl/access_arbiter/access_arbiter.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <thread>

namespace access_arbiter::bench {

class DecisionRequester {
public:
    using Clock = std::chrono::steady_clock;
    using Interface = hosipc::idl::stdcpp_v1::hl::access_arbiter::AccessArbiter;

    struct Answer {
        Clock::time_point sent;
        Clock::time_point received;
        int decision = -1;  // the byte answered, -1 when the call failed
        std::string error;
    };

    DecisionRequester();
    ~DecisionRequester();
    DecisionRequester(const DecisionRequester&) = delete;
    DecisionRequester& operator=(const DecisionRequester&) = delete;

    // Finds the published service and connects, trying for up to `wait`; false with `error` if not.
    bool Connect(std::chrono::milliseconds wait, std::string& error);
    // Sends one request from a new thread; returns once that thread has taken the time stamp of the
    // sending, which it takes right before the call.
    void Begin();
    // When the request begun last was sent.
    Clock::time_point Sent() const { return m_sent; }
    // Waits for the answer of the request begun last.
    Answer Finish();

private:
    hosipc::api_v1::Application m_application;
    std::unique_ptr<Interface, hosipc_detail::api_v1::IpcDeleter> m_proxy;
    std::thread m_call;
    Clock::time_point m_sent;
    Answer m_answer;
};

}  // namespace access_arbiter::bench
