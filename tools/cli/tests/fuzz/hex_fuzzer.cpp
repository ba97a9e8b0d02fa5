// Fuzz harness: a command-line argument of the tools as hex bytes and as a number. Bytes that parse
// come back the same from their printed form (so an answer printed by "hl-ipc call" can be pasted
// into the next call), and a number that parses fits its limit and reads back from its decimal form.
// Seeds: tests/fuzz/corpus/hex.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include <hl_cli/hex.h>

namespace {

[[noreturn]] void Fail(const char* what) {
    std::fprintf(stderr, "fuzz: %s\n", what);
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (const auto bytes = hl::cli::ParseHex(text)) {
        const auto again = hl::cli::ParseHex(hl::cli::FormatHex(bytes->data(), bytes->size()));
        if (!again || *again != *bytes) {
            Fail("printed hex does not read back as the same bytes");
        }
    }
    constexpr unsigned long kMax = 0xFFFF;
    if (const auto number = hl::cli::ParseNumber(text, kMax)) {
        if (*number > kMax || hl::cli::ParseNumber(std::to_string(*number), kMax) != number) {
            Fail("a number breaks its limit or does not read back");
        }
    }
    return 0;
}
