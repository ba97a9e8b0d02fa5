// Fuzz harness: the text of a unit file. A text is either refused with a "line N: " reason or read
// into a unit that holds what the manager relies on (a program, a name, positive intervals, a start
// limit from 1 to 1000, environment keys that are not empty). Seeds: tests/fuzz/corpus/unit_file.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "core/unit_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace hl_appmgr;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const UnitParseResult parsed = ParseUnit(text);
    if (!parsed.ok) {
        if (parsed.error.rfind("line ", 0) != 0) {
            std::fputs("fuzz: a refusal without its line\n", stderr);
            std::abort();
        }
        return 0;
    }
    const Unit& unit = parsed.unit;
    bool environmentOk = true;
    for (const auto& [key, value] : unit.environment) {
        environmentOk = environmentOk && !key.empty() && key.find('=') == std::string::npos;
    }
    if (unit.program.empty() || unit.name.empty() || unit.watchdogIntervalMs <= 0 || unit.startLimit < 1 ||
        unit.startLimit > 1000 || unit.startLimitIntervalMs <= 0 || unit.stopTimeoutMs <= 0 ||
        unit.startTimeoutMs < 0 || !environmentOk || !parsed.error.empty()) {
        std::fputs("fuzz: an accepted unit breaks what the manager relies on\n", stderr);
        std::abort();
    }
    return 0;
}
