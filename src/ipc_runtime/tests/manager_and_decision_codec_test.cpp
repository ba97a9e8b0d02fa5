// The application manager's controller and commands, and the decision service, through their proxies
// over a fake transport: where each field lands on the wire and where each answer is read from.
#include <ipc_runtime/idl/hl/access_arbiter/access_arbiter.h>
#include <ipc_runtime/idl/hl/app_manager/application_commands.h>
#include <ipc_runtime/idl/hl/app_manager/application_controller.h>

#include "support/fake_connector.h"
#include "support/fake_transport.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

using hosipc::idl::stdcpp_v1::hl::access_arbiter::AccessArbiter;
using hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationCommands;
using hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationController;
using ipc_runtime_test::FakeConnector;
using ipc_runtime_test::FakeTransport;

template <typename T>
auto MakeProxy() {
    static const FakeConnector connector(0, 1);
    return hosipc_detail::idl_traits::MakeProxyImpl(
        connector,
        std::make_shared<hosipc_detail::api_v1::ResourceProvider>(hosipc_detail::api_v1::MessageCapacity{}, 0,
                                                                  hosipc::api_v1::ApplicationSettings{}),
        static_cast<hosipc_detail::idl_traits::ProxyBait<T>*>(nullptr));
}

template <typename T>
NkHosTransport& TransportOf(T& proxy) {
    return static_cast<hosipc_detail::idl_traits::Proxy<T>&>(proxy).TransportForTesting();
}

template <typename V>
V ReadAt(const std::vector<unsigned char>& bytes, std::size_t offset) {
    V value{};
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
}

template <typename V>
void WriteAt(nk_message* message, std::size_t offset, V value) {
    std::memcpy(reinterpret_cast<unsigned char*>(message) + offset, &value, sizeof value);
}

ApplicationController::Bytes B(const std::string& text) {
    return {text.begin(), text.end()};
}

TEST(ControllerProxyTest, EachMethodSendsItsMidSizeAndFieldsAndReadsRcAtOffset24) {
    auto proxy = MakeProxy<ApplicationController>();
    FakeTransport transport(TransportOf(*proxy), [](nk_message* response) {
        WriteAt<std::int32_t>(response, 24, -3);
        return 0;
    });
    int rc = 0;
    proxy->FinishWithInternalError(B("app"), B("Failed"), B("why"), rc);
    EXPECT_EQ(rc, -3);
    EXPECT_EQ(ReadAt<std::uint16_t>(transport.lastRequest, 2), 3);
    ASSERT_EQ(transport.lastRequest.size(), 48U);
    // The three texts lie one behind the other in the one arena of 384 bytes.
    const std::uint32_t refs[] = {0, 3, 3, 6, 9, 3};
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(ReadAt<std::uint32_t>(transport.lastRequest, 24 + 4 * i), refs[i]) << i;
    }
    EXPECT_EQ(std::string(transport.lastArena.begin(), transport.lastArena.end()), "appFailedwhy");
    EXPECT_EQ(transport.lastArenaCapacity, 384U);

    proxy->StateChanged(B("app"), -2, rc);
    EXPECT_EQ(ReadAt<std::uint16_t>(transport.lastRequest, 2), 4);
    ASSERT_EQ(transport.lastRequest.size(), 40U);
    EXPECT_EQ(ReadAt<std::int64_t>(transport.lastRequest, 32), -2);

    proxy->ReadyToShowUI(B("app"), rc);
    EXPECT_EQ(ReadAt<std::uint16_t>(transport.lastRequest, 2), 2);
    EXPECT_EQ(transport.lastRequest.size(), 32U);
}

TEST(CommandsProxyTest, UpdateHandleComesFromTheDescriptorAndCommandFromOffsets24And32) {
    auto proxy = MakeProxy<ApplicationCommands>();
    std::uint32_t descriptorWord = 0;
    FakeTransport transport(TransportOf(*proxy), [&descriptorWord](nk_message* response) {
        // The value's low word doubles as the handle descriptor's first word.
        WriteAt<std::int64_t>(response, 24, 0x01020304'00000000LL | descriptorWord);
        WriteAt<std::int32_t>(response, 32, 17);
        return 0;
    });
    const struct {
        std::uint32_t word;
        unsigned int handle;
    } handles[] = {{0xAB000042U, 0x42U}, {0x00ffffffU, 0xffffffffU}};
    for (const auto& item : handles) {
        descriptorWord = item.word;
        unsigned int handle = 0;
        proxy->GetUpdateHandle(B("AccessArbiter"), handle);
        EXPECT_EQ(handle, item.handle);
        EXPECT_EQ(transport.lastResponseWord, 0x00800028U);  // 40 bytes with one handle
    }
    descriptorWord = 0x05060708U;
    std::int64_t value = 0;
    int rc = 0;
    proxy->GetCommand(B("stop"), value, rc);
    EXPECT_EQ(value, 0x0102030405060708LL);
    EXPECT_EQ(rc, 17);
    EXPECT_EQ(ReadAt<std::uint16_t>(transport.lastRequest, 2), 1);
}

TEST(DecisionProxyTest, RequestIsABareHeaderAndTheDecisionIsTheByteAt24) {
    auto proxy = MakeProxy<AccessArbiter>();
    FakeTransport transport(TransportOf(*proxy), [](nk_message* response) {
        WriteAt<unsigned char>(response, 24, 1);
        return 0;
    });
    unsigned char decision = 0;
    proxy->GetUserDecision(decision);
    EXPECT_EQ(decision, 1);
    EXPECT_EQ(transport.lastRequest.size(), 24U);
    EXPECT_EQ(transport.lastResponseWord, 0x20U);
}

}  // namespace
