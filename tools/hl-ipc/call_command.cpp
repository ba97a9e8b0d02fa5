// hl-ipc call: one request to a service; with --raw, raw bytes to raw ids and the response in hex.
#include <cstdio>
#include <cstring>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <platform/kn_channel.h>
#include <platform/nk_message.h>
#include <platform/nk_result.h>
#include <platform/nk_transport.h>

#include "commands.h"
#include "core/json_codec.h"

#include <interfaces/catalogue.h>
#include <nlohmann/json.hpp>

#include <exception>
#include <hl_cli/hex.h>
#include <hl_cli/tool.h>

namespace hl_ipc {
namespace {

constexpr const char* kRawHelp =
    "METHOD is a method of the interface that SERVICE names (its IDL name, or a published type that\n"
    "begins with it), or INTERFACE.METHOD; JSON is an object of its inputs by field name, as\n"
    "hl-ipc introspect lists them: integers as numbers, byte sequences as strings or {\"hex\": HEX}.\n"
    "The answer's fields are printed as one JSON object. Example:\n"
    "  hl-ipc call accessArbiter_id hl.access_arbiter.AccessArbiter.accessArbiter GetUserDecision\n"
    "\n"
    "With --raw, METHOD is IID MID HEX: one request of a 24-byte header with IID and MID, followed by\n"
    "the bytes of HEX as the method's fields. IID may be '-' for the riid that the handshake answers,\n"
    "HEX '-' for none. Prints the result code, the response header, its fields and its arena in hex.";

struct CallOptions {
    bool raw = false;
    std::string server;
    std::string service;
    std::vector<std::string> method;  // METHOD [JSON], or with --raw IID MID HEX
    std::string arenaHex;
    unsigned int timeoutMs = 25000;
    std::uint32_t responseRoom = 8192;
    std::uint32_t handleRoom = 8;
    std::uint32_t arenaRoom = 131072;
};

// The transport's time limit of --timeout: 0 is none.
unsigned int Limit(const CallOptions& options) {
    return options.timeoutMs == 0 ? NK_TIMEOUT_INFINITE : options.timeoutMs;
}

struct RawRequest {
    std::optional<unsigned long> iid;  // nothing: the resolved riid
    unsigned long mid = 0;
    std::vector<unsigned char> fields;
    std::vector<unsigned char> arena;
};

// The raw request of the arguments, or nothing with error set.
std::optional<RawRequest> ReadRawRequest(const CallOptions& options, std::string& error) {
    if (options.method.size() != 3) {
        error = "call --raw takes SERVER SERVICE IID MID HEX";
        return std::nullopt;
    }
    RawRequest request;
    if (options.method[0] != "-") {
        request.iid = hl::cli::ParseNumber(options.method[0], 0xFFFF);
        if (!request.iid) {
            error = "IID '" + options.method[0] + "' is no number from 0 to 65535 (or '-')";
            return std::nullopt;
        }
    }
    const auto mid = hl::cli::ParseNumber(options.method[1], 0xFFFF);
    if (!mid) {
        error = "MID '" + options.method[1] + "' is no number from 0 to 65535";
        return std::nullopt;
    }
    request.mid = *mid;
    const auto fields = options.method[2] == "-" ? std::vector<unsigned char>{} : hl::cli::ParseHex(options.method[2]);
    if (!fields) {
        error = "HEX '" + options.method[2] + "' is no hex bytes";
        return std::nullopt;
    }
    request.fields = *fields;
    const auto arena = hl::cli::ParseHex(options.arenaHex);
    if (!arena) {
        error = "--arena '" + options.arenaHex + "' is no hex bytes";
        return std::nullopt;
    }
    request.arena = *arena;
    return request;
}

void PrintResponse(const std::vector<unsigned char>& response, const nk_arena& arena) {
    const auto* header = reinterpret_cast<const nk_message*>(response.data());
    const uint32_t size = nk_message_size(header);
    const uint32_t handles = nk_message_handle_count(header);
    std::printf("response: iid %u, mid %u, size %u, handles %u, server failed: %s\n", header->iid,
                header->mid, size, handles, nk_message_failed(header) ? "yes" : "no");
    std::printf("header: %s\n", hl::cli::FormatHex(response.data(), NK_MESSAGE_HEADER_SIZE).c_str());
    for (uint32_t i = 0; i < handles; ++i) {
        std::printf("handle %u: %u\n", i, nk_handle_desc_get(nk_message_handle_desc_const(header, i)));
    }
    const size_t fieldsStart = NK_MESSAGE_HEADER_SIZE + size_t{handles} * NK_HANDLE_DESC_SIZE;
    const size_t fieldsSize = size > fieldsStart ? size - fieldsStart : 0;
    std::printf("fields (%zu bytes): %s\n", fieldsSize,
                hl::cli::FormatHex(response.data() + fieldsStart, fieldsSize).c_str());
    const size_t arenaSize = nk_arena_used(&arena);
    std::printf("arena (%zu bytes): %s\n", arenaSize, hl::cli::FormatHex(arena.start, arenaSize).c_str());
}

int UsageError(const std::string& message) {
    std::fprintf(stderr, "hl-ipc: %s\nTry 'hl-ipc call --help' for more information.\n", message.c_str());
    return hl::cli::kExitUsage;
}

// Connects to the server's service; false, with the reason on standard error, when it can't.
bool Connect(const CallOptions& options, unsigned int& handle, unsigned int& riid) {
    const int connected =
        KnCmConnect(options.server.c_str(), options.service.c_str(), Limit(options), &handle, &riid);
    if (connected != NK_EOK) {
        std::fprintf(stderr, "hl-ipc: connect to '%s' '%s': 0x%08x (%s)\n", options.server.c_str(),
                     options.service.c_str(), static_cast<unsigned int>(connected), NkResultText(connected));
        return false;
    }
    return true;
}

int RunRawCall(const CallOptions& options) {
    std::string error;
    const auto raw = ReadRawRequest(options, error);
    if (!raw) {
        return UsageError(error);
    }
    unsigned int handle = NK_INVALID_HANDLE;
    unsigned int riid = NK_INVALID_RIID;
    if (!Connect(options, handle, riid)) {
        return kExitConnect;
    }
    const size_t size = NK_MESSAGE_HEADER_SIZE + raw->fields.size();
    std::vector<unsigned char> request(size, 0);
    auto* header = reinterpret_cast<nk_message*>(request.data());
    header->iid = static_cast<uint16_t>(raw->iid.value_or(riid));
    header->mid = static_cast<uint16_t>(raw->mid);
    header->sizeFlags = nk_size_word(static_cast<uint32_t>(size), 0);
    if (!raw->fields.empty()) {
        std::memcpy(request.data() + NK_MESSAGE_HEADER_SIZE, raw->fields.data(), raw->fields.size());
    }
    std::vector<unsigned char> requestBytes = raw->arena;
    nk_arena requestArena{nullptr, nullptr, nullptr};
    if (!requestBytes.empty()) {
        requestArena = {requestBytes.data(), requestBytes.data() + requestBytes.size(),
                        requestBytes.data() + requestBytes.size()};
    }
    std::vector<unsigned char> response(options.responseRoom, 0);
    reinterpret_cast<nk_message*>(response.data())->sizeFlags =
        nk_size_word(options.responseRoom, options.handleRoom);
    std::vector<unsigned char> responseBytes(options.arenaRoom);
    nk_arena responseArena{responseBytes.data(), responseBytes.data(),
                           responseBytes.data() + responseBytes.size()};

    NkHosTransport transport;
    NkHosTransport_Init(&transport, handle, nullptr, 0);
    NkHosSetTransportTimeouts(&transport, NK_TIMEOUT_INFINITE, Limit(options));
    const int rc = transport.ops->call(&transport, header, &requestArena,
                                       reinterpret_cast<nk_message*>(response.data()), &responseArena);
    KnHandleClose(handle);
    if (rc != NK_EOK) {
        std::fprintf(stderr, "hl-ipc: call: 0x%08x (%s)\n", static_cast<unsigned int>(rc), NkResultText(rc));
        return kExitCall;
    }
    std::printf("connected: handle %u, riid %u\n", handle, riid);
    PrintResponse(response, responseArena);
    if (nk_message_failed(reinterpret_cast<nk_message*>(response.data()))) {
        std::fprintf(stderr, "hl-ipc: call: the server answered with its failure flag set\n");
        return kExitServerFailed;
    }
    return kExitOk;
}

// The method that METHOD names: "Method" of the interface SERVICE names, or "interface.Method".
const interfaces::MethodInfo* FindCalledMethod(const CallOptions& options, std::string& error) {
    const std::string& text = options.method[0];
    const interfaces::InterfaceInfo* interface = interfaces::FindInterface(options.service);
    std::string methodName = text;
    if (const auto dot = text.rfind('.'); dot != std::string::npos) {
        interface = interfaces::FindInterface(text.substr(0, dot));
        methodName = text.substr(dot + 1);
    }
    if (interface == nullptr) {
        error = "no described interface is named by '" + options.service +
                "'; name the method as INTERFACE.METHOD (see hl-ipc introspect)";
        return nullptr;
    }
    const interfaces::MethodInfo* method = interfaces::FindMethod(*interface, methodName);
    if (method == nullptr) {
        error = std::string(interface->name) + " has no method '" + methodName + "' (see hl-ipc introspect " +
                std::string(interface->name) + ")";
    }
    return method;
}

int RunTypedCall(const CallOptions& options) {
    if (options.method.size() > 2) {
        return UsageError("call takes SERVER SERVICE METHOD [JSON]");
    }
    std::string error;
    const interfaces::MethodInfo* method = FindCalledMethod(options, error);
    if (method == nullptr) {
        return UsageError(error);
    }
    nlohmann::json input;
    if (options.method.size() == 2) {
        input = nlohmann::json::parse(options.method[1], nullptr, false);
        if (input.is_discarded()) {
            return UsageError("JSON '" + options.method[1] + "' is no JSON document");
        }
    }
    EncodedRequest request(*method);
    if (!EncodeRequest(*method, input, request, error)) {
        return UsageError(error);
    }

    unsigned int handle = NK_INVALID_HANDLE;
    unsigned int riid = NK_INVALID_RIID;
    if (!Connect(options, handle, riid)) {
        return kExitConnect;
    }
    request.Message()->iid = static_cast<std::uint16_t>(riid);
    std::vector<unsigned char> response(method->responseSize, 0);
    auto* responseHeader = reinterpret_cast<nk_message*>(response.data());
    responseHeader->iid = static_cast<std::uint16_t>(riid);
    responseHeader->mid = method->mid;
    responseHeader->sizeFlags = method->responseSizeWord;
    std::vector<unsigned char> responseBytes(method->responseArenaSize);
    nk_arena responseArena{responseBytes.data(), responseBytes.data(), responseBytes.data() + responseBytes.size()};
    if (responseBytes.empty()) {
        responseArena = {nullptr, nullptr, nullptr};
    }

    NkHosTransport transport;
    NkHosTransport_Init(&transport, handle, nullptr, 0);
    NkHosSetTransportTimeouts(&transport, NK_TIMEOUT_INFINITE, Limit(options));
    const int rc = transport.ops->call(&transport, request.Message(), request.Arena(), responseHeader, &responseArena);
    KnHandleClose(handle);
    if (rc != NK_EOK) {
        std::fprintf(stderr, "hl-ipc: call %.*s: 0x%08x (%s)\n", static_cast<int>(method->name.size()),
                     method->name.data(), static_cast<unsigned int>(rc), NkResultText(rc));
        return kExitCall;
    }
    if (nk_message_failed(responseHeader)) {
        std::fprintf(stderr, "hl-ipc: call %.*s: the server failed the request (its failure flag is set)\n",
                     static_cast<int>(method->name.size()), method->name.data());
        return kExitServerFailed;
    }
    try {
        std::printf("%s\n", DecodeFields(method->outputs, responseHeader, &responseArena)
                                .dump(-1, ' ', false, nlohmann::json::error_handler_t::replace)
                                .c_str());
    } catch (const std::exception& failure) {
        // A response whose fields don't read as described (a sequence outside its arena).
        std::fprintf(stderr, "hl-ipc: call %.*s: the response doesn't match the description: %s\n",
                     static_cast<int>(method->name.size()), method->name.data(), failure.what());
        return kExitServerFailed;
    }
    return kExitOk;
}

int RunCall(const CallOptions& options) {
    return options.raw ? RunRawCall(options) : RunTypedCall(options);
}

}  // namespace

Command AddCall(CLI::App& app) {
    auto options = std::make_shared<CallOptions>();
    auto* call = app.add_subcommand("call", "call a method of a service and print the answer");
    call->footer(std::string(kRawHelp) + "\n\n" + app.get_footer());
    call->add_option("SERVER", options->server, "the server (as hl-ipc list shows it)")->required();
    call->add_option("SERVICE", options->service, "the endpoint name or published type to resolve there")
        ->required();
    call->add_option("METHOD", options->method, "the method and its input: METHOD [JSON], or with --raw IID MID HEX")->required();
    call->add_flag("--raw", options->raw, "send raw bytes to raw ids and print the answer in hex");
    call->add_option("--arena", options->arenaHex, "--raw: bytes of the request arena")->option_text("HEX");
    call->add_option("--timeout", options->timeoutMs, "connect and call time limit (default 25000; 0: none, for a method that waits for a person)")
        ->option_text("MS");
    call->add_option("--response-room", options->responseRoom, "--raw: room for the response message (default 8192)")
        ->check(CLI::Range(static_cast<std::uint32_t>(NK_MESSAGE_HEADER_SIZE), static_cast<std::uint32_t>(NK_MESSAGE_SIZE_MASK)))
        ->option_text("BYTES");
    call->add_option("--handle-room", options->handleRoom, "--raw: room for handle descriptors in the response (default 8)")
        ->check(CLI::Range(0U, 255U))
        ->option_text("N");
    call->add_option("--arena-room", options->arenaRoom, "--raw: room for the response arena (default 131072)")
        ->check(CLI::Range(0U, static_cast<std::uint32_t>(NK_MESSAGE_SIZE_MASK)))
        ->option_text("BYTES");
    return {call, [options] { return RunCall(*options); }};
}

}  // namespace hl_ipc
