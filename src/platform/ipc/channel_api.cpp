// The C entry points for channels and handles.
#include <platform/kn_channel.h>
#include <platform/nk_message.h>

#include <sys/socket.h>

#include <cerrno>
#include <chrono>
#include <thread>

#include <diagnostics/log.h>

#include "core/handle_table.h"
#include "ipc/client_channel.h"
#include "ipc/packet_io.h"

namespace {

using hos::logger::LogLevel;
using hos::platform::Deadline;
using hos::platform::HandleObject;
using hos::platform::HandleTable;
using hos::platform::UniqueFd;

}  // namespace

extern "C" int KnCmConnect(const char* server, const char* service, unsigned int timeoutMs,
                           unsigned int* handle, unsigned int* riid) {
    if (server == nullptr || service == nullptr || handle == nullptr || riid == nullptr) {
        return NK_EINVAL;
    }
    const Deadline deadline = Deadline::FromTimeoutMs(timeoutMs);
    UniqueFd fd;
    int rc = hos::platform::client_channel::Connect(server, deadline, fd);
    if (rc != NK_EOK) {
        return rc;
    }
    auto channel = std::make_shared<HandleObject>(HandleObject::Kind::Channel, std::move(fd));
    unsigned int resolved = NK_INVALID_RIID;
    rc = hos::platform::client_channel::Resolve(*channel, service, deadline, resolved);
    if (rc != NK_EOK) {
        HL_LOG(LogLevel::Info, "KnCmConnect: {}:{} failed with {:#x}", server, service,
               static_cast<unsigned int>(rc));
        return rc;
    }
    const unsigned int newHandle = HandleTable::Instance().Insert(std::move(channel));
    if (newHandle == NK_INVALID_HANDLE) {
        return NK_ENOMEM;
    }
    *handle = newHandle;
    *riid = resolved;
    return NK_EOK;
}

extern "C" int KnHandleClose(unsigned int handle) {
    const auto object = HandleTable::Instance().Remove(handle);
    if (!object) {
        return NK_EBADHANDLE;
    }
    object->OnClosed();
    return NK_EOK;
}

extern "C" int KnSleep(unsigned int milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    return NK_EOK;
}

extern "C" int KnHandleCreatePair(unsigned int* first, unsigned int* second) {
    if (first == nullptr || second == nullptr) {
        return NK_EINVAL;
    }
    int fds[2] = {-1, -1};
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, fds) != 0) {
        return NK_ENOMEM;
    }
    auto a = std::make_shared<HandleObject>(HandleObject::Kind::ObjectEnd, UniqueFd(fds[0]));
    auto b = std::make_shared<HandleObject>(HandleObject::Kind::ObjectEnd, UniqueFd(fds[1]));
    const unsigned int ha = HandleTable::Instance().Insert(std::move(a));
    if (ha == NK_INVALID_HANDLE) {
        return NK_ENOMEM;
    }
    const unsigned int hb = HandleTable::Instance().Insert(std::move(b));
    if (hb == NK_INVALID_HANDLE) {
        HandleTable::Instance().Remove(ha);
        return NK_ENOMEM;
    }
    *first = ha;
    *second = hb;
    return NK_EOK;
}
