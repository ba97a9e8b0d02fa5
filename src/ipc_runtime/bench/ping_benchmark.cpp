// One ApplicationWatchdog Ping round trip through the hosted platform (the generated proxy in this
// process, the stub in a server process of its own) beside a raw AF_UNIX SOCK_SEQPACKET ping-pong
// of the same sizes between two processes: both with the two processes on one CPU, and on two.
// After the run it prints the median and 95th percentile of each and the ratio hosted / raw.
//
//   hl_ipc_runtime_ping_benchmark [--benchmark_repetitions=N] [other Google Benchmark flags]
#include <ipc_runtime/application.h>
#include <ipc_runtime/connection_builder.h>
#include <interfaces/hl/app_manager/application_watchdog.h>

#include "support/peer_process.h"
#include "support/scoped_runtime_directory.h"

#include <benchmark/benchmark.h>

#include <sched.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <map>
#include <string>
#include <vector>

namespace {

using hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationWatchdog;
using Clock = std::chrono::steady_clock;

// The Ping frame: a 32-byte message with the 13-byte name "AccessArbiter" in its arena; the answer
// is a 32-byte message.
constexpr size_t kRequestBytes = 32 + 13;
constexpr size_t kResponseBytes = 32;
const std::string kAppName = "AccessArbiter";

enum Placement { kOneCpu = 0, kTwoCpus = 1 };

// Every round trip of every repetition, by benchmark name.
std::map<std::string, std::vector<double>>& Samples() {
    static std::map<std::string, std::vector<double>> samples;
    return samples;
}

bool PinTo(int cpu) {
    cpu_set_t set;
    CPU_ZERO(&set);
    CPU_SET(cpu, &set);
    return ::sched_setaffinity(0, sizeof(set), &set) == 0;
}

// Pins the server about to be started to its CPU; `PlaceClient` then pins this process.
bool PlaceServer(benchmark::State& state) {
    if (state.range(0) == kTwoCpus && ::sysconf(_SC_NPROCESSORS_ONLN) < 2) {
        state.SkipWithError("one CPU only");
        return false;
    }
    return PinTo(state.range(0) == kTwoCpus ? 1 : 0);
}

void PlaceClient() {
    PinTo(0);
}

template <typename RoundTrip>
void Measure(benchmark::State& state, const std::string& name, RoundTrip&& roundTrip) {
    auto& samples = Samples()[name + (state.range(0) == kTwoCpus ? "/two-cpus" : "/one-cpu")];
    for (auto _ : state) {
        const auto start = Clock::now();
        if (!roundTrip()) {
            state.SkipWithError("round trip failed");
            return;
        }
        const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
        state.SetIterationTime(seconds);
        samples.push_back(seconds * 1e6);
    }
    state.SetItemsProcessed(state.iterations());
}

void BM_RawSeqPacket(benchmark::State& state) {
    int pair[2];
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, pair) != 0 || !PlaceServer(state)) {
        state.SkipWithError("no socket pair or no CPU to pin to");
        return;
    }
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(pair[0]);
        char in[kRequestBytes + 1];
        char out[kResponseBytes] = {};
        while (::recv(pair[1], in, sizeof(in), 0) > 0) {
            if (::send(pair[1], out, sizeof(out), MSG_NOSIGNAL) < 0) {
                break;
            }
        }
        ::_exit(0);
    }
    ::close(pair[1]);
    PlaceClient();
    char request[kRequestBytes] = {};
    char response[kResponseBytes + 1];
    Measure(state, "raw", [&] {
        return ::send(pair[0], request, sizeof(request), MSG_NOSIGNAL) ==
                   static_cast<ssize_t>(kRequestBytes) &&
               ::recv(pair[0], response, sizeof(response), 0) == static_cast<ssize_t>(kResponseBytes);
    });
    ::close(pair[0]);
    ::waitpid(child, nullptr, 0);
}

void BM_HostedPing(benchmark::State& state) {
    hos::platform::testing::ScopedRuntimeDirectory directory;
    if (!PlaceServer(state)) {
        return;
    }
    auto server =
        hos::platform::testing::PeerProcess::Start({HL_IPC_WATCHDOG_SERVER, "hl.app_manager.BenchManager"});
    PlaceClient();
    if (!server) {
        state.SkipWithError("the watchdog server didn't come up");
        return;
    }
    const hosipc::api_v1::Application application(std::make_shared<hosipc_detail::api_v1::ResourceProvider>(
        hosipc_detail::api_v1::MessageCapacity{}, 0, hosipc::api_v1::ApplicationSettings{}));
    const hosipc::api_v1::ConnectionBuilder<hosipc::api_v1::ConnectViaDynamicChannel> connector(
        "hl.app_manager.BenchManager", "app_manager.applicationWatchdog", 0, true);
    auto proxy = hosipc_detail::idl_traits::MakeProxyImpl(
        connector, application.GetResourceProvider(),
        static_cast<hosipc_detail::idl_traits::ProxyBait<ApplicationWatchdog>*>(nullptr));
    const std::vector<unsigned char> appName(kAppName.begin(), kAppName.end());
    int rc = 0;
    Measure(state, "hosted", [&] {
        proxy->Ping(appName, rc);
        return rc == static_cast<int>(kAppName.size());
    });
}

BENCHMARK(BM_RawSeqPacket)->Arg(kOneCpu)->Arg(kTwoCpus)->UseManualTime();
BENCHMARK(BM_HostedPing)->Arg(kOneCpu)->Arg(kTwoCpus)->UseManualTime();

double Percentile(std::vector<double> values, double fraction) {
    if (values.empty()) {
        return 0;
    }
    const auto index = static_cast<size_t>(fraction * static_cast<double>(values.size() - 1) + 0.5);
    std::nth_element(values.begin(), values.begin() + static_cast<long>(index), values.end());
    return values[index];
}

std::string LoadAverage() {
    std::ifstream file("/proc/loadavg");
    std::string one, five, fifteen;
    file >> one >> five >> fifteen;
    return one + " " + five + " " + fifteen;
}

void PrintRatios(const std::string& loadBefore) {
    std::printf("\nRound trip in microseconds (load average before %s, after %s)\n", loadBefore.c_str(),
                LoadAverage().c_str());
    std::printf("%-9s | %10s | %10s | %13s | %13s | %14s | %11s\n", "CPUs", "raw median", "raw p95",
                "hosted median", "hosted p95", "median ratio", "p95 ratio");
    for (const char* placement : {"one-cpu", "two-cpus"}) {
        const auto& raw = Samples()[std::string("raw/") + placement];
        const auto& hosted = Samples()[std::string("hosted/") + placement];
        if (raw.empty() || hosted.empty()) {
            continue;
        }
        const double rawMedian = Percentile(raw, 0.5);
        const double rawP95 = Percentile(raw, 0.95);
        const double hostedMedian = Percentile(hosted, 0.5);
        const double hostedP95 = Percentile(hosted, 0.95);
        std::printf("%-9s | %10.2f | %10.2f | %13.2f | %13.2f | %14.2f | %11.2f\n", placement, rawMedian,
                    rawP95, hostedMedian, hostedP95, hostedMedian / rawMedian, hostedP95 / rawP95);
    }
}

}  // namespace

int main(int argc, char** argv) {
    // A server that dies mid-run must not end the benchmark with SIGPIPE.
    ::signal(SIGPIPE, SIG_IGN);
    const std::string loadBefore = LoadAverage();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    PrintRatios(loadBefore);
    return 0;
}
