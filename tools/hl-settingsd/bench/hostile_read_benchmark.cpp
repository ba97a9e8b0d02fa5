// hl-settingsd under hostile reads: a tree of 20 MB (2500 strings of 8000 bytes under big/), one
// client that sends Read of the root again and again and never a ReadNext (so every read stays an
// open exchange), and beside it another client's one-node read. It measures the service's memory
// (VmRSS, and VmHWM, the peak) before, during and after the hostile reads, the time of one hostile
// Read, and the time of the other client's one-node read with and without the hostile reads.
//
// Beside them, what one would use instead for the one value: a pread of its 8000 bytes from a file.
//
//   hl_settingsd_hostile_read_benchmark [--settingsd=PROGRAM] [Google Benchmark flags]
//
// --settingsd names the service program (default: the hl-settingsd of this build), so the same run
// can measure another build of it. After Google Benchmark's report the program prints one table.
#include "support/raw_ism.h"
#include "support/scoped_runtime_directory.h"
#include "support/wait_until.h"

#include <hosted_session/child_process.h>

#include <platform/kn_channel.h>
#include <platform/nk_message.h>

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <fcntl.h>
#include <stdlib.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using hl_settingsd::testing::Items;
using hl_settingsd::testing::RawIsm;
using hl_settingsd::testing::RawItems;
using settings_manager::Setting;

constexpr const char* kService = "hl.settings_manager.MSmgr";
constexpr int kStrings = 2500;
constexpr std::size_t kStringBytes = 8000;
constexpr int kHostileReads = 64;

std::string g_program = HL_SETTINGSD;

// A line of /proc/PID/status in kB ("VmRSS", "VmHWM").
long StatusKb(pid_t pid, const std::string& key) {
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind(key + ":", 0) == 0) {
            return std::stol(line.substr(key.size() + 1));
        }
    }
    return -1;
}

// The service process with its 20 MB tree, started once for the run in a runtime directory of its own.
class Service {
public:
    Service() : m_process({g_program, kService}, "/dev/null") {
        m_pid = m_process.Pid();
        const bool serving = hos::platform::testing::WaitUntil(
            [] {
                unsigned int handle = NK_INVALID_HANDLE;
                unsigned int riid = NK_INVALID_RIID;
                const bool connected = KnCmConnect(kService, "NkISM", 1000, &handle, &riid) == 0;
                if (connected) {
                    KnHandleClose(handle);
                }
                return connected;
            },
            std::chrono::seconds(10));
        if (!serving) {
            return;
        }
        started = StatusKb(m_pid, "VmRSS");
        RawIsm writer(kService);
        settings_manager::SettingMap map;
        for (int i = 0; i < kStrings; ++i) {
            map.emplace("k" + std::to_string(10000 + i), Setting(std::string(kStringBytes, 'a' + i % 26)));
        }
        const RawItems items = Items("big/", Setting(std::move(map)));
        const auto opened = writer.Write("big/", 6, items.size(), {items.begin(), items.begin() + 8});
        bool ok = opened.rc == 0;
        for (std::size_t at = 8; ok && at < items.size(); at += 8) {
            const std::size_t end = std::min(items.size(), at + 8);
            ok = writer.WriteNext(opened.id, {items.begin() + static_cast<std::ptrdiff_t>(at),
                                              items.begin() + static_cast<std::ptrdiff_t>(end)},
                                  end == items.size()) == 0;
        }
        filled = ok ? StatusKb(m_pid, "VmRSS") : -1;
    }
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    pid_t Pid() const { return m_pid; }
    long started = -1;  // kB
    long filled = -1;

private:
    hos::platform::testing::ScopedRuntimeDirectory m_directory;
    hl::hosted_session::ChildProcess m_process;  // killed and reaped with the object
    pid_t m_pid = -1;
};

Service* g_service = nullptr;
std::map<std::string, std::vector<double>> g_samples;  // seconds of each iteration, by case
std::map<std::string, long> g_memory;                  // kB, by moment

bool OneNodeRead(RawIsm& ism) {
    RawItems items;
    std::uint64_t ncount = 0;
    return ism.Read("big/k11234/", 0x16, items, ncount).rc == 0 && ncount == 1;
}

bool HostileRead(RawIsm& ism) {
    RawItems items;
    std::uint64_t ncount = 0;
    return ism.Read("", 0x16, items, ncount).rc == 0 && ncount > static_cast<std::uint64_t>(kStrings);
}

template <typename Body>
void Measure(benchmark::State& state, const std::string& name, Body&& body) {
    auto& samples = g_samples[name];
    for (auto _ : state) {
        const auto start = Clock::now();
        if (!body()) {
            state.SkipWithError("the read failed");
            return;
        }
        const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
        state.SetIterationTime(seconds);
        samples.push_back(seconds);
    }
}

void BM_OneNodeReadQuiet(benchmark::State& state) {
    RawIsm ism(kService);
    Measure(state, "one-node read, quiet", [&] { return OneNodeRead(ism); });
}

// 64 hostile reads from one connection; the service's memory after them, and once they are gone.
void BM_HostileReads(benchmark::State& state) {
    for (auto _ : state) {
        auto hostile = std::make_unique<RawIsm>(kService);
        auto& samples = g_samples["hostile Read of the root"];
        for (int i = 0; i < kHostileReads; ++i) {
            const auto start = Clock::now();
            if (!HostileRead(*hostile)) {
                state.SkipWithError("the hostile read failed");
                return;
            }
            samples.push_back(std::chrono::duration<double>(Clock::now() - start).count());
        }
        g_memory["after 64 hostile reads"] = StatusKb(g_service->Pid(), "VmRSS");
        hostile.reset();
        std::this_thread::sleep_for(std::chrono::milliseconds(1500));
        g_memory["1.5 s after their client closed"] = StatusKb(g_service->Pid(), "VmRSS");
    }
}

// Another client's one-node read while a hostile client sends its reads without a pause.
void BM_OneNodeReadUnderHostileReads(benchmark::State& state) {
    std::atomic<bool> stop{false};
    std::thread hostile([&] {
        RawIsm ism(kService);
        while (!stop) {
            HostileRead(ism);
        }
    });
    RawIsm ism(kService);
    Measure(state, "one-node read, under hostile reads", [&] { return OneNodeRead(ism); });
    stop = true;
    hostile.join();
}

// What one would use instead of a settings service for the same value: its 8000 bytes read from a
// file (in the page cache) with pread.
void BM_FileReadInstead(benchmark::State& state) {
    char path[] = "/tmp/hl-bench-valueXXXXXX";
    const int fd = ::mkstemp(path);
    const std::string value(kStringBytes, 'v');
    if (fd < 0 || ::write(fd, value.data(), value.size()) != static_cast<ssize_t>(value.size())) {
        state.SkipWithError("no file to read");
        return;
    }
    ::unlink(path);
    std::string buffer(kStringBytes, '\0');
    Measure(state, "instead: pread of the 8000 bytes from a file", [&] {
        return ::pread(fd, buffer.data(), buffer.size(), 0) == static_cast<ssize_t>(buffer.size());
    });
    ::close(fd);
}

double Percentile(std::vector<double> values, double p) {
    std::sort(values.begin(), values.end());
    return values[static_cast<std::size_t>(p * static_cast<double>(values.size() - 1))];
}

}  // namespace

BENCHMARK(BM_FileReadInstead)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_OneNodeReadQuiet)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_HostileReads)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_OneNodeReadUnderHostileReads)->UseManualTime()->Unit(benchmark::kMicrosecond);

int main(int argc, char** argv) {
    std::vector<char*> rest;
    for (int i = 0; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument.rfind("--settingsd=", 0) == 0) {
            g_program = argument.substr(12);
        } else {
            rest.push_back(argv[i]);
        }
    }
    int count = static_cast<int>(rest.size());
    benchmark::Initialize(&count, rest.data());
    {
        Service service;
        if (service.filled < 0) {
            std::fprintf(stderr, "the service %s did not start or take the tree\n", g_program.c_str());
            return 1;
        }
        g_service = &service;
        g_memory["started"] = service.started;
        g_memory["with the 20 MB tree"] = service.filled;
        benchmark::RunSpecifiedBenchmarks();
        g_memory["peak (VmHWM)"] = StatusKb(service.Pid(), "VmHWM");
        g_service = nullptr;
    }
    std::printf("\n%s\n\n| Service memory | VmRSS MB |\n|---|---|\n", g_program.c_str());
    for (const char* moment : {"started", "with the 20 MB tree", "after 64 hostile reads",
                               "1.5 s after their client closed", "peak (VmHWM)"}) {
        std::printf("| %s | %.1f |\n", moment, static_cast<double>(g_memory[moment]) / 1024.0);
    }
    std::printf("\n| Case | n | median ms | p95 ms | max ms |\n|---|---|---|---|---|\n");
    for (const auto& [name, samples] : g_samples) {
        if (!samples.empty()) {
            std::printf("| %s | %zu | %.4f | %.4f | %.3f |\n", name.c_str(), samples.size(),
                        Percentile(samples, 0.5) * 1e3, Percentile(samples, 0.95) * 1e3,
                        *std::max_element(samples.begin(), samples.end()) * 1e3);
        }
    }
    benchmark::Shutdown();
    return 0;
}
