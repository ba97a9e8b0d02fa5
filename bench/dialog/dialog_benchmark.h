// The dialog benchmark's measurements, in one run on one X server: for each Qt Quick backend the
// program's starts under hl-appmgr, then the program resident and hidden, asked `requests` times
// (each answered by an XTEST click on Approve), with as many one-shot zenity dialogs in between on
// the first backend. See main.cpp's help for what each quantity starts and ends with.
//
// Thread: the driver's main thread; the requester's call runs on a thread of its own. Owns the X
// observer; every process it starts is ended before Run returns.
#pragma once

#include "result_table.h"
#include "x_observer.h"

#include <hosted_session/session.h>

#include <sys/types.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace access_arbiter::bench {

class DecisionRequester;

struct BenchOptions {
    std::string zenity = "zenity";                  // empty: no zenity rows
    int requests = 200;                             // measured requests per backend, after the first one
    int starts = 30;                                // program starts per backend
    std::vector<std::string> backends{"software"};  // QT_QUICK_BACKEND values; "default" unsets it
    int settleMs = 200;  // pause after a map before memory is read and the click sent
};

class DialogBenchmark {
public:
    // `session` runs the program: its settings service already serves; the benchmark starts and
    // stops the manager. Both outlive the benchmark.
    DialogBenchmark(BenchOptions options, std::unique_ptr<XObserver> x, hl::hosted_session::Session& session);

    // Measures everything into `table`; 0, or 2 (set-up failed) or 3 (a measurement failed) with
    // Error() saying what happened.
    int Run(ResultTable& table);
    const std::string& Error() const { return m_error; }

private:
    struct ProgramSeries {
        SampleSeries start, firstMap, map, click, hiddenBefore, hidden, shown;
    };
    struct ZenitySeries {
        SampleSeries map, click, shown;
    };

    int MeasureStarts(ProgramSeries& series);
    int MeasureResident(ProgramSeries& series, ZenitySeries* zenity);
    // One request: mapped, memory while shown, click, answer, hidden again, memory while hidden.
    int AskOnce(DecisionRequester& requester, pid_t program, bool first, ProgramSeries& series);
    int ZenityOnce(ZenitySeries& series);
    // Moves the pointer to the point `where` gives in root coordinates for `window`'s geometry, lets
    // the window take the motion, and clicks; the time the click was sent, or empty without geometry.
    std::optional<XObserver::Clock::time_point> ClickAt(
        xcb_window_t window, const std::function<std::pair<int, int>(const XObserver::Geometry&)>& where);
    int Fail(int code, std::string error);

    const BenchOptions m_options;
    const std::unique_ptr<XObserver> m_x;
    hl::hosted_session::Session& m_session;
    xcb_window_t m_dialog = XCB_WINDOW_NONE;
    std::string m_error;
};

}  // namespace access_arbiter::bench
