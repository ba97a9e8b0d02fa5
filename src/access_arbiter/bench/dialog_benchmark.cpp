#include "dialog_benchmark.h"

#include "decision_requester.h"
#include "managed_program.h"
#include "one_shot_dialog.h"
#include "process_memory.h"
#include "settings_service.h"

#include <cstdlib>

namespace access_arbiter::bench {

namespace {

using Clock = XObserver::Clock;
using std::chrono::milliseconds;

constexpr const char* kName = "AccessArbiter";
constexpr auto kReadyLimit = milliseconds(60000);
constexpr auto kWindowLimit = milliseconds(10000);
constexpr auto kHoverPause = milliseconds(30);

double Ms(Clock::duration duration) {
    return std::chrono::duration<double, std::milli>(duration).count();
}

void SelectBackend(const std::string& backend) {
    if (backend == "default") {
        ::unsetenv("QT_QUICK_BACKEND");
    } else {
        ::setenv("QT_QUICK_BACKEND", backend.c_str(), 1);
    }
}

// Approve is the right-hand button; at (234, 110) of the 320x156 dialog.
std::pair<int, int> ApprovePoint(const XObserver::Geometry& window) {
    return {window.x + window.width * 234 / 320, window.y + window.height * 110 / 156};
}

// zenity --question lays out "No" and "Yes" at the bottom right; Yes's middle is 50 px from the right
// edge and 24 px from the bottom in GTK 3's default theme.
std::pair<int, int> YesPoint(const XObserver::Geometry& window) {
    return {window.x + window.width - 50, window.y + window.height - 24};
}

}  // namespace

DialogBenchmark::DialogBenchmark(BenchOptions options, std::unique_ptr<XObserver> x, std::FILE* log)
    : m_options(std::move(options)), m_x(std::move(x)), m_log(log) {}

int DialogBenchmark::Fail(int code, std::string error) {
    m_error = std::move(error);
    return code;
}

int DialogBenchmark::Run(ResultTable& table) {
    SettingsService settings(m_options.settingsd);
    std::string error;
    if (!m_options.settingsd.empty() && !settings.Start(milliseconds(30000), error)) {
        return Fail(2, error);
    }
    ZenitySeries zenity;
    bool zenityDone = m_options.zenity.empty();
    for (const std::string& backend : m_options.backends) {
        SelectBackend(backend);
        ProgramSeries series;
        if (const int code = MeasureStarts(series); code != 0) {
            return code;
        }
        if (const int code = MeasureResident(series, zenityDone ? nullptr : &zenity); code != 0) {
            return code;
        }
        zenityDone = true;
        const std::string subject = std::string(kName) + " (" + backend + ")";
        using S = ResultTable::Statistic;
        table.Add({"process start → ReadyToShowUI", subject, "ms", series.start,
                   ResultTable::Target{S::Median, 150}});
        table.Add({"request → mapped, first after the start", subject, "ms", series.firstMap, std::nullopt});
        table.Add({"request → mapped", subject, "ms", series.map, ResultTable::Target{S::Median, 1}});
        table.Add({"click → answer", subject, "ms", series.click, ResultTable::Target{S::Median, 1}});
        table.Add({"RSS hidden, before the first show", subject, "MiB", series.hiddenBefore,
                   ResultTable::Target{S::Max, 45}});
        table.Add({"RSS hidden", subject, "MiB", series.hidden, ResultTable::Target{S::Max, 45}});
        table.Add({"RSS shown", subject, "MiB", series.shown, ResultTable::Target{S::Max, 45}});
    }
    if (!m_options.zenity.empty()) {
        table.Add({"spawn → mapped", "zenity --question", "ms", zenity.map, std::nullopt});
        table.Add({"click → process exit", "zenity --question", "ms", zenity.click, std::nullopt});
        table.Add({"RSS shown", "zenity --question", "MiB", zenity.shown, std::nullopt});
    }
    return 0;
}

int DialogBenchmark::MeasureStarts(ProgramSeries& series) {
    for (int i = 0; i < m_options.starts; ++i) {
        ManagedProgram program(m_options.appmgr, m_options.program, kName, m_log);
        std::string error;
        if (!program.Start(error)) {
            return Fail(2, error);
        }
        const auto ready = program.WaitReady(kReadyLimit);
        if (!ready) {
            return Fail(2, "start " + std::to_string(i + 1) + ": the program did not report ReadyToShowUI");
        }
        series.start.Add(*ready / 1000.0);
        program.Stop();
    }
    return 0;
}

int DialogBenchmark::MeasureResident(ProgramSeries& series, ZenitySeries* zenity) {
    ManagedProgram program(m_options.appmgr, m_options.program, kName, m_log);
    std::string error;
    if (!program.Start(error)) {
        return Fail(2, error);
    }
    if (!program.WaitReady(kReadyLimit)) {
        return Fail(2, "the resident program did not report ReadyToShowUI");
    }
    DecisionRequester requester;
    if (!requester.Connect(milliseconds(30000), error)) {
        return Fail(2, error);
    }
    const pid_t pid = program.ProgramPid();
    // Resident and idle: a second for what the program does once after its start.
    m_x->Drain(Clock::now() + milliseconds(1000));
    if (const auto rss = ResidentMiB(pid)) {
        series.hiddenBefore.Add(*rss);
    }
    m_dialog = XCB_WINDOW_NONE;
    for (int i = 0; i <= m_options.requests; ++i) {
        int code = AskOnce(requester, pid, i == 0, series);
        if (code == 0 && zenity != nullptr && i > 0) {
            code = ZenityOnce(*zenity);
        }
        if (code != 0) {
            // Ending the program ends a call still waiting for its answer.
            program.Stop();
            return code;
        }
    }
    program.Stop();
    return 0;
}

std::optional<Clock::time_point> DialogBenchmark::ClickAt(
    xcb_window_t window, const std::function<std::pair<int, int>(const XObserver::Geometry&)>& where) {
    const auto geometry = m_x->GeometryOf(window);
    if (!geometry) {
        return std::nullopt;
    }
    const auto [x, y] = where(*geometry);
    m_x->MovePointer(x, y);
    m_x->Drain(Clock::now() + kHoverPause);
    const auto at = Clock::now();
    m_x->Click();
    return at;
}

int DialogBenchmark::AskOnce(DecisionRequester& requester, pid_t program, bool first, ProgramSeries& series) {
    requester.Begin();
    const auto mapped = m_x->WaitForMap(program, Clock::now() + kWindowLimit);
    if (!mapped) {
        requester.Finish();
        return Fail(3, "the dialog was not mapped within 10 s of a request");
    }
    if (m_dialog != XCB_WINDOW_NONE && mapped->window != m_dialog) {
        return Fail(3, "the program mapped another window than its dialog");
    }
    m_dialog = mapped->window;
    const double mapMs = Ms(mapped->at - requester.Sent());
    m_x->Drain(Clock::now() + milliseconds(m_options.settleMs));
    const auto shownRss = ResidentMiB(program);
    const auto clicked = ClickAt(m_dialog, ApprovePoint);
    if (!clicked) {
        return Fail(3, "the dialog's geometry could not be read");
    }
    const DecisionRequester::Answer answer = requester.Finish();
    if (answer.decision != 1) {
        return Fail(3, "the click on Approve was answered with " + std::to_string(answer.decision) + " " +
                           answer.error);
    }
    if (!m_x->WaitForUnmap(m_dialog, Clock::now() + kWindowLimit)) {
        return Fail(3, "the dialog was not hidden after the click");
    }
    m_x->Drain(Clock::now() + milliseconds(m_options.settleMs / 2));
    const auto hiddenRss = ResidentMiB(program);
    if (first) {
        series.firstMap.Add(mapMs);
        return 0;
    }
    series.map.Add(mapMs);
    series.click.Add(Ms(answer.received - *clicked));
    if (shownRss) {
        series.shown.Add(*shownRss);
    }
    if (hiddenRss) {
        series.hidden.Add(*hiddenRss);
    }
    return 0;
}

int DialogBenchmark::ZenityOnce(ZenitySeries& series) {
    OneShotDialog dialog(m_options.zenity);
    std::string error;
    const auto spawned = Clock::now();
    if (!dialog.Start(error)) {
        return Fail(2, error);
    }
    const auto mapped = m_x->WaitForMap(dialog.Pid(), Clock::now() + kWindowLimit);
    if (!mapped) {
        return Fail(3, "zenity's window was not mapped within 10 s");
    }
    m_x->Drain(Clock::now() + milliseconds(m_options.settleMs));
    const auto shownRss = ResidentMiB(dialog.Pid());
    const auto clicked = ClickAt(mapped->window, YesPoint);
    if (!clicked) {
        return Fail(3, "zenity's geometry could not be read");
    }
    const auto status = dialog.WaitExit();
    const auto exited = Clock::now();
    if (status != 0) {
        return Fail(3, "zenity did not answer yes to the click on Yes (status " +
                           (status ? std::to_string(*status) : std::string("signal")) + ")");
    }
    series.map.Add(Ms(mapped->at - spawned));
    series.click.Add(Ms(exited - *clicked));
    if (shownRss) {
        series.shown.Add(*shownRss);
    }
    m_x->Drain(Clock::now() + milliseconds(20));
    return 0;
}

}  // namespace access_arbiter::bench
