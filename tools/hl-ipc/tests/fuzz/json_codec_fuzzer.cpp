// Fuzz harness: hl-ipc's JSON request codec over every described method. The first byte picks the
// method (of all methods of all interfaces, in catalogue order), the rest is the JSON input. Any
// input is refused with a message or encoded; an encoded request's inputs, decoded to JSON and
// encoded again, give the same message and arena bytes. Seeds: tests/fuzz/corpus/json.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <interfaces/catalogue.h>
#include <nlohmann/json.hpp>

#include "core/json_codec.h"

namespace {

[[noreturn]] void Fail(const char* what) {
    std::fprintf(stderr, "fuzz: %s\n", what);
    std::abort();
}

std::vector<const interfaces::MethodInfo*> AllMethods() {
    std::vector<const interfaces::MethodInfo*> methods;
    for (const auto& interface : interfaces::Catalogue()) {
        for (const auto& method : interface.methods) {
            methods.push_back(&method);
        }
    }
    return methods;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::vector<const interfaces::MethodInfo*> methods = AllMethods();
    if (size == 0) {
        return 0;
    }
    const interfaces::MethodInfo& method = *methods[data[0] % methods.size()];
    const auto input = nlohmann::json::parse(data + 1, data + size, nullptr, false);
    if (input.is_discarded()) {
        return 0;
    }
    hl_ipc::EncodedRequest first(method);
    std::string error;
    if (!hl_ipc::EncodeRequest(method, input, first, error)) {
        if (error.empty()) {
            Fail("a refused input has no message");
        }
        return 0;
    }
    const nlohmann::json decoded = hl_ipc::DecodeFields(method.inputs, first.Message(), first.Arena());
    hl_ipc::EncodedRequest second(method);
    if (!hl_ipc::EncodeRequest(method, method.inputs.empty() ? nlohmann::json() : decoded, second, error)) {
        Fail("a decoded request does not encode again");
    }
    if (first.MessageBytes() != second.MessageBytes() || first.ArenaBytes() != second.ArenaBytes()) {
        Fail("a decoded request encodes to other bytes");
    }
    return 0;
}
