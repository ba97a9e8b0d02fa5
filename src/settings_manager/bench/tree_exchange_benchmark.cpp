// Read and write of a 10 000-node settings tree through the settings client's chunked exchange,
// between this process (the client) and a settings service in a process of its own, over the
// hosted platform. Beside it, in the same run: a memcpy of the same raw bytes (the floor any
// exchange of them has), the raw item codec alone (Serialize and Deserialize, no IPC), and the round
// trip of a one-node read.
//
//   hl_settings_tree_exchange_benchmark [--benchmark_repetitions=N] [other Google Benchmark flags]
//
// The service program is the one the build names (HL_SETTINGS_BENCH_SERVICE: hl-settingsd, or the
// client's test service in a build without tools), started with the service name as its one
// argument in a runtime directory of the benchmark's own. Every iteration is timed; after Google Benchmark's
// report the program prints the median and 95th percentile of each case, with nodes and bytes per second.
#include <settings_manager/i_settings_getter.h>
#include <settings_manager/i_settings_value_setter.h>
#include <settings_manager/ipc/create_settings_manager.h>
#include <settings_manager/serialize.h>
#include <uvc/set_item.h>

#include <diagnostics/hos_logger.h>
#include <platform/kn_channel.h>
#include <platform/nk_message.h>

#include "support/scoped_runtime_directory.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using settings_manager::Setting;

constexpr const char* kService = "hl.settings_manager.MSmgr";
constexpr std::size_t kGroups = 99;
constexpr std::size_t kLeavesPerGroup = 100;
constexpr std::size_t kNodes = 1 + kGroups + kGroups * kLeavesPerGroup;  // root, groups, leaves
static_assert(kNodes == 10000);

// The tree: a map of 99 maps of 100 leaves each, the leaves alternately a 16-character string and
// a 64-bit integer.
Setting MakeTree() {
    Setting root = settings_manager::SettingMap{};
    for (std::size_t g = 0; g < kGroups; ++g) {
        Setting& group = uvc::SetItem(root, "group" + std::to_string(1000 + g),
                                      Setting(settings_manager::SettingMap{}), uvc::SetItemInsert);
        for (std::size_t l = 0; l < kLeavesPerGroup; ++l) {
            const std::string key = "key" + std::to_string(1000 + l);
            if (l % 2 == 0) {
                uvc::SetItem(group, key,
                             Setting(std::string("value-") + std::to_string(1000000000 + g * 1000 + l)),
                             uvc::SetItemInsert);
            } else {
                uvc::SetItem(group, key, Setting(static_cast<std::int64_t>(g * 1000 + l)),
                             uvc::SetItemInsert);
            }
        }
    }
    return root;
}

const uvc::Path& TreePath() {
    static const uvc::Path path = uvc::Path(uvc::Root).Append("bench").Append("tree");
    return path;
}

const uvc::Path& NodePath() {
    static const uvc::Path path = uvc::Path(uvc::Root).Append("bench").Append("one");
    return path;
}

// The bytes the exchange moves for the tree: every node's path, value and attribute blocks and its
// 24-byte record in a node list.
std::size_t RawBytes(const Setting& tree) {
    std::vector<settings_manager::impl::RawItem> items;
    settings_manager::Serialize(TreePath(), tree, items);
    std::size_t bytes = 0;
    for (const auto& item : items) {
        bytes += item.path.size() + item.value.size() + item.attrib.size() + 24;
    }
    return bytes;
}

// Every iteration's seconds, by case.
std::map<std::string, std::vector<double>>& Samples() {
    static std::map<std::string, std::vector<double>> samples;
    return samples;
}

template <typename Body>
void Measure(benchmark::State& state, const std::string& name, std::size_t nodes, std::size_t bytes,
             Body&& body) {
    auto& samples = Samples()[name];
    for (auto _ : state) {
        const auto start = Clock::now();
        if (!body()) {
            state.SkipWithError("the operation failed");
            return;
        }
        const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
        state.SetIterationTime(seconds);
        samples.push_back(seconds);
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * nodes));
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes));
}

// The service process, started once for the whole run, with its output thrown away; it is there
// when its NkISM interface answers a connect. Owned by main and gone before main returns: the
// client's teardown must not run among the static destructors, after the platform's per-thread
// buffers are gone.
class Service {
public:
    Service() {
        m_pid = ::fork();
        if (m_pid == 0) {
            const int null = ::open("/dev/null", O_WRONLY);
            ::dup2(null, STDOUT_FILENO);
            ::execl(HL_SETTINGS_BENCH_SERVICE, HL_SETTINGS_BENCH_SERVICE, kService,
                    static_cast<char*>(nullptr));
            ::_exit(127);
        }
        const auto deadline = Clock::now() + std::chrono::seconds(10);
        for (;;) {
            unsigned int handle = NK_INVALID_HANDLE;
            unsigned int riid = NK_INVALID_RIID;
            if (KnCmConnect(kService, "NkISM", 1000, &handle, &riid) == 0) {
                KnHandleClose(handle);
                break;
            }
            if (Clock::now() > deadline) {
                return;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        settings_manager::ipc::CreateSettingsManager(
            settings_manager::ipc::SettingsManagerCmConfig{kService, 5000}, m_manager);
    }
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    ~Service() {
        m_manager.reset();
        if (m_pid > 0) {
            ::kill(m_pid, SIGKILL);
            ::waitpid(m_pid, nullptr, 0);
        }
    }

    settings_manager::ISettingsManager* Manager() const { return m_manager.get(); }

private:
    hos::platform::testing::ScopedRuntimeDirectory m_directory;
    pid_t m_pid = -1;
    std::shared_ptr<settings_manager::ISettingsManager> m_manager;
};

Service* g_service = nullptr;  // set by main for the run

const Setting& Tree() {
    static const Setting tree = MakeTree();
    return tree;
}

void BM_Memcpy(benchmark::State& state) {
    const std::size_t bytes = RawBytes(Tree());
    std::vector<unsigned char> source(bytes, 0x5a);
    std::vector<unsigned char> target(bytes);
    Measure(state, "memcpy", kNodes, bytes, [&] {
        std::memcpy(target.data(), source.data(), bytes);
        benchmark::DoNotOptimize(target.data());
        benchmark::ClobberMemory();
        return true;
    });
}

void BM_CodecOnly(benchmark::State& state) {
    const std::size_t bytes = RawBytes(Tree());
    Measure(state, "codec", kNodes, bytes, [&] {
        std::vector<settings_manager::impl::RawItem> items;
        uvc::Path path;
        Setting back;
        return settings_manager::Serialize(TreePath(), Tree(), items).first == 0 &&
               settings_manager::Deserialize(items, path, back).first == 0 && back.index() == uvc::IndexMap;
    });
}

settings_manager::ISettingsManager* ManagerOrSkip(benchmark::State& state) {
    settings_manager::ISettingsManager* manager = g_service == nullptr ? nullptr : g_service->Manager();
    if (manager == nullptr) {
        state.SkipWithError("the settings service didn't come up");
    }
    return manager;
}

void BM_WriteTree(benchmark::State& state) {
    auto* manager = ManagerOrSkip(state);
    if (manager == nullptr) {
        return;
    }
    std::shared_ptr<settings_manager::ISettingsValueSetter> setter;
    manager->GetSettingsValueSetter(setter);
    Measure(state, "write", kNodes, RawBytes(Tree()),
            [&] { return setter->SetValue(TreePath(), Tree().GetValue()) >= 0; });
}

void BM_ReadTree(benchmark::State& state) {
    auto* manager = ManagerOrSkip(state);
    if (manager == nullptr) {
        return;
    }
    std::shared_ptr<settings_manager::ISettingsValueSetter> setter;
    std::shared_ptr<settings_manager::ISettingsGetter> getter;
    manager->GetSettingsValueSetter(setter);
    manager->GetSettingsGetter(getter);
    if (setter->SetValue(TreePath(), Tree().GetValue()) < 0) {
        state.SkipWithError("the tree can't be written");
        return;
    }
    Measure(state, "read", kNodes, RawBytes(Tree()), [&] {
        Setting back;
        return getter->GetSetting(TreePath(), back) >= 0 &&
               std::get<settings_manager::SettingMap>(back).size() == kGroups;
    });
}

void BM_ReadOneNode(benchmark::State& state) {
    auto* manager = ManagerOrSkip(state);
    if (manager == nullptr) {
        return;
    }
    std::shared_ptr<settings_manager::ISettingsValueSetter> setter;
    std::shared_ptr<settings_manager::ISettingsGetter> getter;
    manager->GetSettingsValueSetter(setter);
    manager->GetSettingsGetter(getter);
    const Setting one(std::string("en-US"));
    if (setter->SetValue(NodePath(), one.GetValue()) < 0) {
        state.SkipWithError("the node can't be written");
        return;
    }
    std::vector<settings_manager::impl::RawItem> items;
    settings_manager::Serialize(NodePath(), one, items);
    const std::size_t bytes = items[0].path.size() + items[0].value.size() + items[0].attrib.size() + 24;
    Measure(state, "read one node", 1, bytes, [&] {
        Setting back;
        return getter->GetSetting(NodePath(), back) >= 0 && back == one;
    });
}

BENCHMARK(BM_Memcpy)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_CodecOnly)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WriteTree)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadTree)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadOneNode)->UseManualTime()->Unit(benchmark::kMicrosecond);

double Percentile(std::vector<double> values, double fraction) {
    if (values.empty()) {
        return 0;
    }
    const auto index = static_cast<std::size_t>(fraction * static_cast<double>(values.size() - 1) + 0.5);
    std::nth_element(values.begin(), values.begin() + static_cast<long>(index), values.end());
    return values[index];
}

std::string LoadAverage() {
    std::ifstream file("/proc/loadavg");
    std::string one, five, fifteen;
    file >> one >> five >> fifteen;
    return one + " " + five + " " + fifteen;
}

void PrintTable(const std::string& loadBefore) {
    const std::size_t bytes = RawBytes(Tree());
    std::printf(
        "\nTree of %zu nodes, %zu raw bytes (paths, values, attributes, 24-byte records); service %s\n",
        kNodes, bytes, HL_SETTINGS_BENCH_SERVICE);
    std::printf("Load average before %s, after %s\n", loadBefore.c_str(), LoadAverage().c_str());
    std::printf("%-14s | %7s | %12s | %12s | %14s | %12s | %12s\n", "case", "samples", "median (us)",
                "p95 (us)", "nodes/s (med)", "MB/s (med)", "x memcpy");
    const double floor = Percentile(Samples()["memcpy"], 0.5);
    for (const char* name : {"memcpy", "codec", "write", "read", "read one node"}) {
        const auto& samples = Samples()[name];
        if (samples.empty()) {
            continue;
        }
        const bool one = std::strcmp(name, "read one node") == 0;
        const double median = Percentile(samples, 0.5);
        const double p95 = Percentile(samples, 0.95);
        const double nodes = one ? 1.0 : static_cast<double>(kNodes);
        const std::string ratio = one || floor <= 0 ? "-" : fmt::format("{:.0f}", median / floor);
        std::printf("%-14s | %7zu | %12.1f | %12.1f | %14.0f | %12.2f | %12s\n", name, samples.size(),
                    median * 1e6, p95 * 1e6, nodes / median,
                    one ? 0.0 : static_cast<double>(bytes) / median / 1e6, ratio.c_str());
    }
}

}  // namespace

int main(int argc, char** argv) {
    // A service that dies mid-run must not end the benchmark with SIGPIPE.
    ::signal(SIGPIPE, SIG_IGN);
    // The client's log lines (connects, traces) would only disturb the timing.
    hos::logger::HOSLogger::Setup("SMBENCH", hos::logger::LogLevel::Off, nullptr);
    const std::string loadBefore = LoadAverage();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    {
        Service service;
        g_service = &service;
        benchmark::RunSpecifiedBenchmarks();
        g_service = nullptr;
    }
    benchmark::Shutdown();
    PrintTable(loadBefore);
    return 0;
}
