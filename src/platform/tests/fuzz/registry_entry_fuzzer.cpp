// Fuzz harness: the text of a registry file. Whatever is read must hold valid names, and writing it
// out and reading it again gives the same entry. Seeds: tests/fuzz/corpus/registry_entry.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include <platform/i_service_registry.h>

#include "registry/registry_entry_text.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace hos::platform;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto entry = ParseRegistryEntry("hl.test.Type", text);
    if (!entry) {
        return 0;
    }
    const auto again = ParseRegistryEntry("hl.test.Type", FormatRegistryEntry(*entry));
    if (!IsValidPlatformName(entry->server) || !IsValidPlatformName(entry->endpoint) || entry->pid < 0 ||
        !again || again->server != entry->server || again->endpoint != entry->endpoint ||
        again->pid != entry->pid || again->type != entry->type) {
        std::fputs("fuzz: a registry entry does not survive a write and a read\n", stderr);
        std::abort();
    }
    return 0;
}
