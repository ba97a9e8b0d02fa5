#include "dialog_benchmark.h"

#include "decision_requester.h"
#include "process_memory.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>

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

// "2026-11-21T20:58:10.123456Z ..." as microseconds since the epoch; empty for another line.
std::optional<std::int64_t> StampUs(const std::string& line) {
    std::tm utc{};
    int micros = 0;
    if (std::sscanf(line.c_str(), "%4d-%2d-%2dT%2d:%2d:%2d.%6dZ", &utc.tm_year, &utc.tm_mon, &utc.tm_mday,
                    &utc.tm_hour, &utc.tm_min, &utc.tm_sec, &micros) != 7) {
        return std::nullopt;
    }
    utc.tm_year -= 1900;
    utc.tm_mon -= 1;
    return static_cast<std::int64_t>(::timegm(&utc)) * 1000000 + micros;
}

// The manager's last "NAME[PID]: started" to the ReadyToShowUI after it, in ms by its own stamps.
std::optional<double> LastStartToReadyMs(const std::string& log) {
    const auto started = log.rfind("]: started ");
    const auto ready = log.find("]: ReadyToShowUI", started == std::string::npos ? 0 : started);
    if (started == std::string::npos || ready == std::string::npos) {
        return std::nullopt;
    }
    const auto lineOf = [&log](std::size_t at) {
        const auto begin = log.rfind('\n', at);
        return log.substr(begin == std::string::npos ? 0 : begin + 1);
    };
    const auto from = StampUs(lineOf(started));
    const auto to = StampUs(lineOf(ready));
    if (!from || !to) {
        return std::nullopt;
    }
    return static_cast<double>(*to - *from) / 1000.0;
}

}  // namespace

DialogBenchmark::DialogBenchmark(BenchOptions options, std::unique_ptr<XObserver> x,
                                 hl::hosted_session::Session& session)
    : m_options(std::move(options)), m_x(std::move(x)), m_session(session) {}

int DialogBenchmark::Fail(int code, std::string error) {
    m_error = std::move(error);
    return code;
}

int DialogBenchmark::Run(ResultTable& table) {
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
        const bool ready = m_session.Start("restart=no\n", kReadyLimit);
        const auto startMs = LastStartToReadyMs(m_session.Log());
        m_session.Stop();
        if (!ready || !startMs) {
            return Fail(2, "start " + std::to_string(i + 1) + ": the program did not report ReadyToShowUI");
        }
        series.start.Add(*startMs);
    }
    return 0;
}

int DialogBenchmark::MeasureResident(ProgramSeries& series, ZenitySeries* zenity) {
    if (!m_session.Start("restart=no\n", kReadyLimit)) {
        m_session.Stop();
        return Fail(2, "the resident program did not report ReadyToShowUI");
    }
    DecisionRequester requester;
    std::string error;
    if (!requester.Connect(milliseconds(30000), error)) {
        m_session.Stop();
        return Fail(2, error);
    }
    const pid_t pid = m_session.ProgramPid();
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
            m_session.Stop();
            return code;
        }
    }
    m_session.Stop();
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
    const auto spawned = Clock::now();
    hl::hosted_session::ChildProcess dialog(
        {m_options.zenity, "--question", "--title", "Connection request", "--text",
         "A user requests access to manage your device"},
        "/dev/null");
    if (!dialog.Started()) {
        return Fail(2, dialog.Error());
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
    const auto status = dialog.Wait(kWindowLimit);
    const auto exited = Clock::now();
    if (status != 0) {
        return Fail(3, "zenity did not answer yes to the click on Yes (status " +
                           (status ? std::to_string(*status) : std::string("still running")) + ")");
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
