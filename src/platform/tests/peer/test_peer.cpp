// A peer process for the platform's integration tests. Each mode prints "ready" once it runs.
//   hl_platform_test_peer serve NAME           registers NAME and serves the methods of
//                                              test_peer_protocol.h until killed
//   hl_platform_test_peer serve-refusing NAME  a server below the platform: answers a handshake
//                                              with riid 1 and every request with a Refused frame
//                                              of sequence 0, as for a frame it could not read
//   hl_platform_test_peer flood NAME           a client below the platform that sends requests to
//                                              NAME and never reads an answer; prints "flooding"
//                                              once the server stops taking them
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include <platform/platform.h>

#include "peer/test_peer_protocol.h"
#include "support/raw_socket.h"
#include "support/test_call.h"

namespace {

using namespace hos::platform::test_peer;
namespace testing = hos::platform::testing;

unsigned int g_keptEnd = NK_INVALID_HANDLE;
unsigned int g_server = NK_INVALID_HANDLE;

int SetTree() {
    static const HosEndpointDesc endpoints[] = {
        {0, "waylandClient", "waylandClient", "hl.WaylandClient"},
        {kEchoRiid, kEchoEndpointFull, kEchoEndpointShort, kEchoInterfaceType},
    };
    static const unsigned int serviceEndpoints[] = {kEchoRiid};
    static const HosServiceComponentDesc services[] = {
        {"echo", "echo", kEchoInterfaceType, serviceEndpoints, 1}};
    const HosComponentTree tree{"hl.test.EchoPeer", endpoints, 2, services, 1};
    return HosTaskSetComponentTree(HosTaskGetSelf(), &tree);
}

// Answers `in` in `out`: an echo of it, message and arena, changed as its method says.
void Serve(nk_message* in, nk_arena& requestArena, unsigned char* out, nk_arena& responseArena) {
    auto* header = reinterpret_cast<nk_message*>(out);
    std::memcpy(out, in, nk_message_size(in));
    const size_t arenaUsed = nk_arena_used(&requestArena);
    std::memcpy(responseArena.start, requestArena.start, arenaUsed);
    responseArena.cursor = responseArena.start + arenaUsed;
    uint32_t field = 0;
    std::memcpy(&field, out + NK_MESSAGE_HEADER_SIZE, sizeof(field));
    int rc = 0;
    switch (in->mid) {
        case kWrongMid:
            header->mid = static_cast<uint16_t>(in->mid + 1);
            break;
        case kWrongIid:
            header->iid = static_cast<uint16_t>(in->iid + 1);
            break;
        case kSlowEcho:
            std::this_thread::sleep_for(std::chrono::milliseconds(field));
            break;
        case kHang:
            std::puts("hanging");
            std::fflush(stdout);
            for (;;) {
                KnSleep(1000);
            }
        case kGiveHandle: {
            unsigned int given = NK_INVALID_HANDLE;
            KnHandleCreatePair(&g_keptEnd, &given);
            header->sizeFlags = nk_size_word(40, 1);
            std::memset(nk_message_handle_desc(header, 0), 0, sizeof(nk_handle_desc));
            nk_handle_desc_set(nk_message_handle_desc(header, 0), given);
            responseArena.cursor = responseArena.start;
            break;
        }
        case kRaise:
            rc = KnNoticeSetObjectEvent(g_keptEnd, field);
            break;
        case kCloseKept:
            KnHandleClose(g_keptEnd);
            break;
        case kUseHandle: {
            const unsigned int passed = nk_handle_desc_get(nk_message_handle_desc(in, 0));
            rc = KnNoticeSetObjectEvent(passed, 0x10000);
            KnHandleClose(passed);
            header->sizeFlags = nk_size_word(32, 0);
            break;
        }
        case kCloseServer:
            KnHandleClose(g_server);
            std::puts("closed");
            std::fflush(stdout);
            for (;;) {
                KnSleep(1000);
            }
        case kFail:
            header->sizeFlags = NK_SERVER_FAILURE_WORD;
            return;
        default:
            return;
    }
    if (in->mid == kRaise || in->mid == kUseHandle) {
        std::memcpy(out + NK_MESSAGE_HEADER_SIZE, &rc, sizeof(rc));
    }
}

int RunServer(const char* name) {
    unsigned int id = 0;
    const bool taskReady =
        SetTree() == 0 && HosTaskConnectToService(HosTaskGetSelf(), HosTaskGetSelf(), name) == 0;
    const unsigned int handle = taskReady ? ServiceLocatorRegister(name, 0, 0, &id) : NK_INVALID_HANDLE;
    g_server = handle;
    if (handle == NK_INVALID_HANDLE) {
        std::fprintf(stderr, "peer: cannot set up the task or register %s\n", name);
        return 2;
    }
    NkHosTransport transport;
    NkHosTransport_Init(&transport, handle, 0, 0);
    NkHosSetTransportTimeouts(&transport, 200, NK_TIMEOUT_INFINITE);
    std::vector<unsigned char> request(kRequestRoom), response(kRequestRoom);
    std::vector<unsigned char> requestBytes(kArenaRoom), responseBytes(kArenaRoom);
    std::puts("ready");
    std::fflush(stdout);
    for (;;) {
        auto* in = reinterpret_cast<nk_message*>(request.data());
        in->sizeFlags = nk_size_word(kRequestRoom, kRequestHandleRoom);
        nk_arena requestArena{requestBytes.data(), requestBytes.data(), requestBytes.data() + kArenaRoom};
        nk_arena responseArena{responseBytes.data(), responseBytes.data(), responseBytes.data() + kArenaRoom};
        if (transport.ops->receive(&transport, in, &requestArena) == 0) {
            Serve(in, requestArena, response.data(), responseArena);
            transport.ops->reply(&transport, reinterpret_cast<nk_message*>(response.data()), &responseArena);
        }
    }
}

sockaddr_un ServerAddress(const char* name) {
    const char* root = std::getenv("HL_RUNTIME_DIR");
    const std::string path = std::string(root != nullptr ? root : "/tmp") + "/servers/" + name;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::snprintf(address.sun_path, sizeof(address.sun_path), "%s", path.c_str());
    return address;
}

int RunRefusingServer(const char* name) {
    const char* root = std::getenv("HL_RUNTIME_DIR");
    ::mkdir((std::string(root != nullptr ? root : "/tmp") + "/servers").c_str(), 0700);
    const sockaddr_un address = ServerAddress(name);
    const int listener = ::socket(AF_UNIX, SOCK_SEQPACKET, 0);
    if (listener < 0 || ::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0 ||
        ::listen(listener, 8) != 0) {
        std::fprintf(stderr, "peer: cannot listen as %s\n", name);
        return 2;
    }
    std::puts("ready");
    std::fflush(stdout);
    for (;;) {
        const int client = ::accept(listener, nullptr, nullptr);
        unsigned char in[512];
        ssize_t got = 0;
        while (client >= 0 &&
               (got = ::recv(client, in, sizeof(in), 0)) >= static_cast<ssize_t>(NK_MESSAGE_HEADER_SIZE)) {
            uint32_t sequence = 0;
            std::memcpy(&sequence, in + 16, 4);
            std::vector<unsigned char> answer;
            if (in[8] == 3) {  // Resolve: riid 1
                answer = testing::RawFrame(testing::kRawResolved, NK_IID_ANY, 0, sequence, testing::U32Bytes(1));
            } else {
                answer = testing::RawFrame(testing::kRawRefused, 0, 0, 0, {}, {}, static_cast<int32_t>(NK_EBADMSG));
            }
            ::send(client, answer.data(), answer.size(), MSG_NOSIGNAL);
        }
        if (client >= 0) {
            ::close(client);
        }
    }
}

int RunFlood(const char* name) {
    const sockaddr_un address = ServerAddress(name);
    const int fd = ::socket(AF_UNIX, SOCK_SEQPACKET, 0);
    if (fd < 0 || ::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        std::fprintf(stderr, "peer: cannot reach %s\n", name);
        return 2;
    }
    std::puts("ready");
    std::fflush(stdout);
    bool announced = false;
    for (uint32_t sequence = 1;; ++sequence) {
        const auto request = testing::RawFrame(testing::kRawRequest, kEchoRiid, kEcho, sequence, testing::U32Bytes(0));
        if (::send(fd, request.data(), request.size(), MSG_NOSIGNAL | MSG_DONTWAIT) >= 0) {
            continue;
        }
        if (errno != EAGAIN && errno != EWOULDBLOCK) {
            return 0;  // the server has let this client go
        }
        if (!announced) {
            std::puts("flooding");
            std::fflush(stdout);
            announced = true;
        }
        pollfd waiting{fd, POLLOUT, 0};
        ::poll(&waiting, 1, 100);
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::strcmp(argv[1], "serve") == 0) {
        return RunServer(argv[2]);
    }
    if (argc == 3 && std::strcmp(argv[1], "serve-refusing") == 0) {
        return RunRefusingServer(argv[2]);
    }
    if (argc == 3 && std::strcmp(argv[1], "flood") == 0) {
        return RunFlood(argv[2]);
    }
    std::fprintf(stderr, "usage: hl_platform_test_peer serve|serve-refusing|flood NAME\n");
    return 1;
}
