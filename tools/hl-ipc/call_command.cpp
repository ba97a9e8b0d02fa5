// hl-ipc call: one raw request to a server, the response printed in hex.
#include <cstdio>
#include <cstring>
#include <optional>

#include <platform/kn_channel.h>
#include <platform/nk_message.h>
#include <platform/nk_result.h>
#include <platform/nk_transport.h>

#include "commands.h"
#include "hex.h"

namespace hl_ipc {
namespace {

constexpr const char* kUsage =
    "Usage: hl-ipc call SERVER SERVICE IID MID HEX [options]\n"
    "\n"
    "Connects to SERVER, resolves SERVICE (an endpoint name or interface type) and sends one\n"
    "request: a 24-byte header with IID and MID, followed by the bytes of HEX as the method\n"
    "fields. IID may be '-' for the riid that the handshake answers. HEX may be '-' for none.\n"
    "Prints the result code, the response header, its fields and its arena in hex.\n"
    "\n"
    "Options:\n"
    "  --arena HEX           bytes of the request arena\n"
    "  --timeout MS          connect and call timeout in milliseconds (default 5000)\n"
    "  --response-room N     room for the response message in bytes (default 8192)\n"
    "  --handle-room N       room for handle descriptors in the response (default 8)\n"
    "  --arena-room N        room for the response arena in bytes (default 131072)\n"
    "\n"
    "Exit codes: 0 the call succeeded; 1 usage error; 2 the connect failed (0x90000013: no\n"
    "such server); 3 the call failed (-11: timed out); 4 the server answered with its failure\n"
    "flag set.\n";

struct CallOptions {
    std::string server;
    std::string service;
    std::optional<unsigned long> iid;  // nothing: the resolved riid
    unsigned long mid = 0;
    std::vector<unsigned char> fields;
    std::vector<unsigned char> arena;
    unsigned long timeoutMs = 5000;
    unsigned long responseRoom = 8192;
    unsigned long handleRoom = 8;
    unsigned long arenaRoom = 131072;
};

bool ParseArguments(const std::vector<std::string>& arguments, CallOptions& options) {
    if (arguments.size() < 5) {
        return false;
    }
    options.server = arguments[0];
    options.service = arguments[1];
    if (arguments[2] != "-") {
        options.iid = ParseNumber(arguments[2], 0xFFFF);
        if (!options.iid) {
            return false;
        }
    }
    const auto mid = ParseNumber(arguments[3], 0xFFFF);
    const auto fields = ParseHex(arguments[4]);
    if (!mid || !fields) {
        return false;
    }
    options.mid = *mid;
    options.fields = *fields;
    for (size_t i = 5; i < arguments.size(); i += 2) {
        if (i + 1 >= arguments.size()) {
            return false;
        }
        const std::string& name = arguments[i];
        const std::string& value = arguments[i + 1];
        std::optional<unsigned long> number;
        if (name == "--arena") {
            const auto arena = ParseHex(value);
            if (!arena) {
                return false;
            }
            options.arena = *arena;
            continue;
        }
        number = ParseNumber(value, name == "--handle-room" ? 0xFF : NK_MESSAGE_SIZE_MASK);
        if (!number) {
            return false;
        }
        if (name == "--timeout") {
            options.timeoutMs = *number;
        } else if (name == "--response-room") {
            options.responseRoom = *number;
        } else if (name == "--handle-room") {
            options.handleRoom = *number;
        } else if (name == "--arena-room") {
            options.arenaRoom = *number;
        } else {
            return false;
        }
    }
    return options.responseRoom >= NK_MESSAGE_HEADER_SIZE;
}

void PrintResponse(const std::vector<unsigned char>& response, const nk_arena& arena) {
    const auto* header = reinterpret_cast<const nk_message*>(response.data());
    const uint32_t size = nk_message_size(header);
    const uint32_t handles = nk_message_handle_count(header);
    std::printf("response: iid %u, mid %u, size %u, handles %u, server failed: %s\n", header->iid,
                header->mid, size, handles, nk_message_failed(header) ? "yes" : "no");
    std::printf("header: %s\n", FormatHex(response.data(), NK_MESSAGE_HEADER_SIZE).c_str());
    for (uint32_t i = 0; i < handles; ++i) {
        std::printf("handle %u: %u\n", i, nk_handle_desc_get(nk_message_handle_desc_const(header, i)));
    }
    const size_t fieldsStart = NK_MESSAGE_HEADER_SIZE + size_t{handles} * NK_HANDLE_DESC_SIZE;
    const size_t fieldsSize = size > fieldsStart ? size - fieldsStart : 0;
    std::printf("fields (%zu bytes): %s\n", fieldsSize,
                FormatHex(response.data() + fieldsStart, fieldsSize).c_str());
    const size_t arenaSize = nk_arena_used(&arena);
    std::printf("arena (%zu bytes): %s\n", arenaSize, FormatHex(arena.start, arenaSize).c_str());
}

}  // namespace

int RunCall(const std::vector<std::string>& arguments) {
    if (!arguments.empty() && (arguments[0] == "--help" || arguments[0] == "-h")) {
        std::fputs(kUsage, stdout);
        return 0;
    }
    CallOptions options;
    if (!ParseArguments(arguments, options)) {
        std::fputs(kUsage, stderr);
        return 1;
    }
    unsigned int handle = NK_INVALID_HANDLE;
    unsigned int riid = NK_INVALID_RIID;
    const int connected = KnCmConnect(options.server.c_str(), options.service.c_str(),
                                      static_cast<unsigned int>(options.timeoutMs), &handle, &riid);
    if (connected != NK_EOK) {
        std::printf("connect: 0x%08x (%s)\n", static_cast<unsigned int>(connected), NkResultText(connected));
        return 2;
    }
    std::printf("connected: handle %u, riid %u\n", handle, riid);

    const size_t size = NK_MESSAGE_HEADER_SIZE + options.fields.size();
    std::vector<unsigned char> request(size, 0);
    auto* header = reinterpret_cast<nk_message*>(request.data());
    header->iid = static_cast<uint16_t>(options.iid.value_or(riid));
    header->mid = static_cast<uint16_t>(options.mid);
    header->sizeFlags = nk_size_word(static_cast<uint32_t>(size), 0);
    if (!options.fields.empty()) {
        std::memcpy(request.data() + NK_MESSAGE_HEADER_SIZE, options.fields.data(), options.fields.size());
    }
    nk_arena requestArena{nullptr, nullptr, nullptr};
    if (!options.arena.empty()) {
        requestArena = {options.arena.data(), options.arena.data() + options.arena.size(),
                        options.arena.data() + options.arena.size()};
    }
    std::vector<unsigned char> response(options.responseRoom, 0);
    reinterpret_cast<nk_message*>(response.data())->sizeFlags =
        nk_size_word(static_cast<uint32_t>(options.responseRoom), static_cast<uint32_t>(options.handleRoom));
    std::vector<unsigned char> responseBytes(options.arenaRoom);
    nk_arena responseArena{responseBytes.data(), responseBytes.data(),
                           responseBytes.data() + responseBytes.size()};

    NkHosTransport transport;
    NkHosTransport_Init(&transport, handle, nullptr, 0);
    NkHosSetTransportTimeouts(&transport, NK_TIMEOUT_INFINITE, static_cast<unsigned int>(options.timeoutMs));
    const int rc = transport.ops->call(&transport, header, &requestArena,
                                       reinterpret_cast<nk_message*>(response.data()), &responseArena);
    std::printf("result: 0x%08x (%s)\n", static_cast<unsigned int>(rc), NkResultText(rc));
    int exitCode = 0;
    if (rc != NK_EOK) {
        exitCode = 3;
    } else {
        PrintResponse(response, responseArena);
        exitCode = nk_message_failed(reinterpret_cast<nk_message*>(response.data())) ? 4 : 0;
    }
    KnHandleClose(handle);
    return exitCode;
}

}  // namespace hl_ipc
