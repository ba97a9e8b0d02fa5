// hl-settingsd's documented exit codes, from the real program.
#include "support/scoped_runtime_directory.h"

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <string>

namespace {

int RunScript(const std::string& script) {
    const int status = std::system(("exec 2>/dev/null; HL=" HL_SETTINGSD "; " + script).c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(ExitCodes, EachEndingHasItsDocumentedCode) {
    hos::platform::testing::ScopedRuntimeDirectory directory;
    const std::string bad = directory.Path() + "/bad.json";
    std::ofstream(bad) << "{\"a_b\": 1}";
    const std::string dir = directory.Path();
    const struct {
        const char* what;
        std::string script;
        int code;
    } cases[] = {
        {"--help", "$HL --help >/dev/null", 0},
        {"no service", "$HL", 1},
        {"an unknown service", "$HL hl.settings_manager.Nope", 1},
        {"two services", "$HL MSmgr PSmgr", 1},
        {"defaults with a bad name", "$HL --defaults " + bad + " MSmgr", 2},
        {"a state directory that is a file", "$HL --state-dir " + bad + " PSmgr", 2},
        {"SIGTERM",
         "$HL MSmgr >" + dir + "/out & p=$!; while ! grep -q ready " + dir +
             "/out; do sleep 0.05; done; kill -TERM $p; wait $p",
         0},
        {"the name in use",
         "$HL MSmgr >" + dir + "/out2 & p=$!; while ! grep -q ready " + dir +
             "/out2; do sleep 0.05; done; $HL MSmgr; r=$?; kill -9 $p; exit $r",
         3},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(RunScript(c.script), c.code);
    }
}

}  // namespace
