// A second, test-only interface described with the same vocabulary as the real ones: several
// sequences in one arena, a 64-bit input, a request without fields and a response with a handle.
#include <ipc_runtime/idl/interface_description.h>
#include <ipc_runtime/idl/make_proxy.h>
#include <ipc_runtime/idl/proxy_base.h>
#include <ipc_runtime/idl/stub.h>

#include "support/fake_connector.h"
#include "support/fake_transport.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace test_idl {

class Sampler {
public:
    virtual ~Sampler() = default;
    virtual void TakeHandle(const std::vector<unsigned char>& name, unsigned int& handle) = 0;
    virtual void Decide(unsigned char& decision) = 0;
    virtual void Report(const std::vector<unsigned char>& name, const std::vector<unsigned char>& error,
                        const std::vector<unsigned char>& details, int& rc) = 0;
    virtual void ChangeState(const std::vector<unsigned char>& name, std::int64_t state, int& rc) = 0;
};

}  // namespace test_idl

namespace hosipc_detail::idl_traits {

template <>
struct InterfaceDescription<test_idl::Sampler> {
    using Interface = test_idl::Sampler;
    static constexpr std::string_view kFailurePrefix = "test_Sampler_";

    using TakeHandle = Method<"TakeHandle", 0, &Interface::TakeHandle, Request<32, 128, SequenceArg<24>>,
                              Response<40, HandleArg<24>>>;
    using Decide =
        Method<"Decide", 1, &Interface::Decide, Request<24, 0>, Response<32, ValueArg<unsigned char, 24>>>;
    using Report = Method<"Report", 3, &Interface::Report,
                          Request<48, 384, SequenceArg<24>, SequenceArg<32>, SequenceArg<40>>,
                          Response<32, ValueArg<std::int32_t, 24>>>;
    using ChangeState = Method<"ChangeState", 4, &Interface::ChangeState,
                               Request<40, 128, SequenceArg<24>, ValueArg<std::int64_t, 32>>,
                               Response<32, ValueArg<std::int32_t, 24>>>;
    using Methods = MethodList<TakeHandle, Decide, Report, ChangeState>;
};

template <>
class Proxy<test_idl::Sampler> final : public ProxyBase<test_idl::Sampler> {
public:
    using ProxyBase::ProxyBase;
    void TakeHandle(const std::vector<unsigned char>& name, unsigned int& handle) override {
        Invoke<Description::TakeHandle>(name, handle);
    }
    void Decide(unsigned char& decision) override { Invoke<Description::Decide>(decision); }
    void Report(const std::vector<unsigned char>& name, const std::vector<unsigned char>& error,
                const std::vector<unsigned char>& details, int& rc) override {
        Invoke<Description::Report>(name, error, details, rc);
    }
    void ChangeState(const std::vector<unsigned char>& name, std::int64_t state, int& rc) override {
        Invoke<Description::ChangeState>(name, state, rc);
    }
};

}  // namespace hosipc_detail::idl_traits

namespace {

using hosipc_detail::idl_traits::Proxy;
using hosipc_detail::idl_traits::Stub;
using ipc_runtime_test::FakeConnector;
using ipc_runtime_test::FakeTransport;

std::vector<unsigned char> Bytes(const std::string& text) {
    return {text.begin(), text.end()};
}

template <typename T>
T ReadAt(const std::vector<unsigned char>& bytes, std::size_t offset) {
    T value;
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
}

class RecordingSampler final : public test_idl::Sampler {
public:
    void TakeHandle(const std::vector<unsigned char>& name, unsigned int& handle) override {
        calls.push_back("TakeHandle " + std::string(name.begin(), name.end()));
        handle = handleToGive;
    }
    void Decide(unsigned char& decision) override {
        calls.push_back("Decide");
        decision = 1;
    }
    void Report(const std::vector<unsigned char>& name, const std::vector<unsigned char>& error,
                const std::vector<unsigned char>& details, int& rc) override {
        calls.push_back("Report " + std::string(name.begin(), name.end()) + "|" +
                        std::string(error.begin(), error.end()) + "|" +
                        std::string(details.begin(), details.end()));
        rc = 11;
    }
    void ChangeState(const std::vector<unsigned char>& name, std::int64_t state, int& rc) override {
        calls.push_back("ChangeState " + std::string(name.begin(), name.end()) + " " + std::to_string(state));
        rc = -2;
    }

    std::vector<std::string> calls;
    unsigned int handleToGive = 0;
};

// A proxy whose transport hands each request to a stub in the same process.
class SamplerLoopbackTest : public testing::Test {
protected:
    SamplerLoopbackTest() {
        m_proxy = hosipc_detail::idl_traits::MakeGeneratedProxy<test_idl::Sampler>(m_connector, m_resources);
        m_transport.Attach(static_cast<Proxy<test_idl::Sampler>&>(*m_proxy).TransportForTesting());
    }

    hosipc_detail::api_v1::SharedResourceProvider m_resources =
        std::make_shared<hosipc_detail::api_v1::ResourceProvider>(hosipc_detail::api_v1::MessageCapacity{}, 0,
                                                                  hosipc::api_v1::ApplicationSettings{});
    RecordingSampler m_implementation;
    Stub<test_idl::Sampler> m_stub{&m_implementation, m_resources};
    FakeTransport m_transport{[this](const nk_message* request, const nk_arena* requestArena,
                                     nk_message* response, nk_arena* responseArena) {
        m_stub.DispatchRequest(0, request, requestArena, response, responseArena);
        return 0;
    }};
    FakeConnector m_connector{0, 2};
    std::unique_ptr<test_idl::Sampler, hosipc_detail::api_v1::IpcDeleter> m_proxy;
};

TEST_F(SamplerLoopbackTest, ThreeSequencesLieBehindEachOtherInOneArena) {
    int rc = 0;

    m_proxy->Report(Bytes("app"), Bytes("boom!"), Bytes("details"), rc);

    EXPECT_EQ(rc, 11);
    EXPECT_EQ(m_implementation.calls, std::vector<std::string>{"Report app|boom!|details"});
    const auto& request = m_transport.LastRequest();
    ASSERT_EQ(request.size(), 48U);
    EXPECT_EQ(ReadAt<std::uint16_t>(request, 2), 3);
    EXPECT_EQ(ReadAt<std::uint32_t>(request, 24), 0U);
    EXPECT_EQ(ReadAt<std::uint32_t>(request, 28), 3U);
    EXPECT_EQ(ReadAt<std::uint32_t>(request, 32), 3U);
    EXPECT_EQ(ReadAt<std::uint32_t>(request, 36), 5U);
    EXPECT_EQ(ReadAt<std::uint32_t>(request, 40), 8U);
    EXPECT_EQ(ReadAt<std::uint32_t>(request, 44), 7U);
    EXPECT_EQ(m_transport.LastArena(), Bytes("appboom!details"));
    EXPECT_EQ(m_transport.LastArenaCapacity(), 384U);
}

TEST_F(SamplerLoopbackTest, SixtyFourBitInputTravelsBehindTheSequence) {
    int rc = 0;

    m_proxy->ChangeState(Bytes("app"), -2, rc);

    EXPECT_EQ(rc, -2);
    EXPECT_EQ(m_implementation.calls, std::vector<std::string>{"ChangeState app -2"});
    EXPECT_EQ(ReadAt<std::int64_t>(m_transport.LastRequest(), 32), -2);
    EXPECT_EQ(ReadAt<std::uint32_t>(m_transport.LastRequest(), 4), 40U);
}

TEST_F(SamplerLoopbackTest, HandleResponseAnnouncesItsHandleCountAndMapsTheInvalidHandle) {
    unsigned int handle = 0;
    m_implementation.handleToGive = 0x123456;

    m_proxy->TakeHandle(Bytes("app"), handle);
    EXPECT_EQ(handle, 0x123456U);
    EXPECT_EQ(m_transport.LastResponseCapacityWord(), 0x800028U);

    m_implementation.handleToGive = 0xffffffffU;
    m_proxy->TakeHandle(Bytes("app"), handle);
    EXPECT_EQ(handle, 0xffffffffU);
}

TEST_F(SamplerLoopbackTest, RequestWithoutFieldsNeedsNoArena) {
    unsigned char decision = 0;

    m_proxy->Decide(decision);

    EXPECT_EQ(decision, 1);
    EXPECT_EQ(m_transport.LastRequest().size(), 24U);
    EXPECT_EQ(m_transport.LastArenaCapacity(), 0U);
    EXPECT_EQ(m_implementation.calls, std::vector<std::string>{"Decide"});
}

TEST_F(SamplerLoopbackTest, SecondSequenceTooLongSendsNothing) {
    int rc = 0;

    EXPECT_THROW(m_proxy->Report(Bytes("app"), std::vector<unsigned char>(129), Bytes("d"), rc),
                 std::length_error);
    EXPECT_EQ(m_transport.Calls(), 0);
    EXPECT_TRUE(m_implementation.calls.empty());
}

}  // namespace
