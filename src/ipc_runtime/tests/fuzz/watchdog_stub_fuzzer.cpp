// Fuzz harness: an arbitrary request dispatched by the stub of hl.app_manager.ApplicationWatchdog,
// as the watchdog server receives it: the input is the delivered message (at most the server's room
// of 256 bytes; its size word is whatever the input says) followed by the received arena bytes, split
// where the first byte says. The implementation checks that the name it gets is bytes of this
// request's arena; the response must be the method's or the server failure, or untouched for an
// unknown method. Seeds: tests/fuzz/corpus/watchdog_stub.
#include <interfaces/hl/app_manager/application_watchdog.h>
#include <ipc_runtime/resource_provider.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

using hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationWatchdog;

constexpr std::size_t kMessageRoom = 256;
constexpr std::size_t kArenaRoom = 1024;
constexpr std::uint8_t kStale = 0xEE;  // what the arena holds behind this request's bytes

[[noreturn]] void Fail(const char* what) {
    std::fprintf(stderr, "fuzz: %s\n", what);
    std::abort();
}

class CheckingWatchdog final : public ApplicationWatchdog {
public:
    const unsigned char* received = nullptr;
    std::size_t receivedSize = 0;

    void Ping(const std::vector<unsigned char>& appName, int& rc) override {
        const auto* begin = received;
        const auto* end = received + receivedSize;
        if (!appName.empty() && std::search(begin, end, appName.begin(), appName.end()) == end) {
            Fail("the name is not made of this request's arena bytes");
        }
        if (appName.size() == 5 && std::memcmp(appName.data(), "throw", 5) == 0) {
            throw std::runtime_error("asked to fail");
        }
        rc = static_cast<int>(appName.size());
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    static CheckingWatchdog implementation;
    static hosipc_detail::idl_traits::Stub<ApplicationWatchdog> stub(
        &implementation,
        std::make_shared<hosipc_detail::api_v1::ResourceProvider>(hosipc_detail::api_v1::MessageCapacity{}, 0,
                                                                  hosipc::api_v1::ApplicationSettings{}));
    const std::size_t messageSize = std::clamp<std::size_t>(std::size_t{data[0]} + NK_MESSAGE_HEADER_SIZE, 0,
                                                            std::min(size - 1, kMessageRoom));
    const std::uint8_t* messageBytes = data + 1;
    const std::size_t arenaSize = std::min(size - 1 - messageSize, kArenaRoom);
    if (messageSize < NK_MESSAGE_HEADER_SIZE) {
        return 0;  // the transport never delivers less than a header
    }

    alignas(8) std::array<unsigned char, kMessageRoom> requestBytes{};
    alignas(8) std::array<unsigned char, kMessageRoom> responseBytes{};
    std::array<unsigned char, kArenaRoom> arenaBytes;
    arenaBytes.fill(kStale);
    std::memcpy(requestBytes.data(), messageBytes, messageSize);
    std::memcpy(arenaBytes.data(), messageBytes + messageSize, arenaSize);
    auto* request = reinterpret_cast<nk_message*>(requestBytes.data());
    auto* response = reinterpret_cast<nk_message*>(responseBytes.data());
    nk_arena requestArena{arenaBytes.data(), arenaBytes.data() + arenaSize,
                          arenaBytes.data() + arenaBytes.size()};
    implementation.received = arenaBytes.data();
    implementation.receivedSize = arenaSize;

    response->iid = 0x7777;
    response->mid = 0x7777;
    response->sizeFlags = nk_size_word(NK_MESSAGE_HEADER_SIZE, 0);
    const auto before = responseBytes;
    nk_arena responseArena{nullptr, nullptr, nullptr};
    stub.DispatchRequest(1, request, &requestArena, response, &responseArena);

    if (request->mid != 0) {
        if (responseBytes != before) {
            Fail("a request of an unknown method changed the response");
        }
        return 0;
    }
    if (response->iid != request->iid || response->mid != 0 ||
        (response->sizeFlags != nk_size_word(32, 0) && response->sizeFlags != NK_SERVER_FAILURE_WORD)) {
        Fail("the response header is neither Ping's nor the server failure");
    }
    return 0;
}
