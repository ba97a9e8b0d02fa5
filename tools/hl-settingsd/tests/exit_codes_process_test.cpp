// hl-settingsd's documented exit codes, from the real program.
#include "support/scoped_runtime_directory.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <string>

namespace {

// `serve OUT ARGS...` starts the program in the background ($p) and waits for its ready line in OUT.
int RunScript(const std::string& script) {
    const std::string serve =
        "serve() { o=$1; shift; $HL \"$@\" >$o & p=$!; "
        "while ! grep -q ready $o; do kill -0 $p 2>/dev/null || return 9; sleep 0.05; done; }; ";
    const int status = std::system(("exec 2>/dev/null; HL=" HL_SETTINGSD "; " + serve + script).c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(ExitCodes, EachEndingHasItsDocumentedCode) {
    hos::platform::testing::ScopedRuntimeDirectory directory;
    const std::string bad = directory.Path() + "/bad.json";
    std::ofstream(bad) << "{\"a_b\": 1}";
    const std::string dir = directory.Path();
    const std::string store = "--state-dir " + dir + "/s PSmgr";
    const std::string db = dir + "/s/hl.settings_manager.PSmgr.db";
    const bool root = ::geteuid() == 0;
    const struct {
        const char* what;
        std::string script;
        int code;
        bool needsRoot = false;  // to plant another user's file
    } cases[] = {
        {"--help", "$HL --help | grep -q '^  3 .*locked by another daemon'", 0},
        {"--version", "$HL --version | grep -q '^hl-settingsd [0-9]'", 0},
        {"no service", "$HL", 2},
        {"an unknown service", "$HL hl.settings_manager.Nope", 2},
        {"two services", "$HL MSmgr PSmgr", 2},
        {"a log level out of range", "$HL --log-level 9 MSmgr", 2},
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
        {"a second daemon on one store, from another runtime directory",
         "rm -rf " + dir + "/s; HL_RUNTIME_DIR=" + dir + "/ra serve " + dir + "/o3 " + store + " || exit 9; " +
             "HL_RUNTIME_DIR=" + dir + "/rb timeout 10 $HL " + store + " 2>" + dir + "/e3; r=$?; kill -9 $p; " +
             "grep -q \"in use by pid $p\" " + dir + "/e3 || r=8; exit $r",
         3},
        {"a symbolic link on the way to the state directory",
         "mkdir -p " + dir + "/real; ln -sfn real " + dir + "/link; serve " + dir + "/o4 --state-dir " + dir +
             "/link/s PSmgr || exit 9; kill -TERM $p; wait $p",
         0},
        {"a state directory that is a symbolic link",
         "mkdir -p -m 700 " + dir + "/real2; ln -sfn real2 " + dir + "/s2; timeout 10 $HL --state-dir " + dir + "/s2 PSmgr",
         2},
        {"a state directory others may write", "mkdir -m 770 " + dir + "/s3; timeout 10 $HL --state-dir " + dir + "/s3 PSmgr",
         2},
        {"a db planted by another user",
         "rm -rf " + dir + "/s; mkdir -m 700 " + dir + "/s; : >" + db + "; chmod 666 " + db + "; chown 65534 " +
             db + "; timeout 10 $HL " + store,
         2, true},
        {"a -wal planted by another user",
         "rm -rf " + dir + "/s; mkdir -m 700 " + dir + "/s; : >" + db + "-wal; chown 65534 " + db +
             "-wal; timeout 10 $HL " + store,
         2, true},
        {"an empty db, said aloud",
         "rm -rf " + dir + "/s; mkdir -m 700 " + dir + "/s; : >" + db + "; serve " + dir + "/o5 " + store +
             " 2>" + dir + "/e5 || exit 9; kill -TERM $p; wait $p; grep -q 'is empty (0 bytes)' " + dir + "/e5",
         0},
        {"a row without its parent row",
         "rm -rf " + dir + "/s; serve " + dir + "/o6 " + store + " || exit 9; kill -TERM $p; wait $p; " +
             "sqlite3 " + db + " \"insert into nodes values('zz/child/', x'07000000000000000500000000000000', 0)\"" +
             " || exit 9; timeout 10 $HL " + store,
         2},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        if (c.needsRoot && !root) {
            continue;  // only root can give a file to another user
        }
        EXPECT_EQ(RunScript(c.script), c.code);
    }
}

}  // namespace
