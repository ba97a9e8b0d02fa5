// One ApplicationWatchdog Ping round trip: the generated proxy in this process, the stub in a server
// process of its own, over the hosted platform's channels.
#include <ipc_runtime/application.h>
#include <ipc_runtime/connection_builder.h>
#include <ipc_runtime/idl/hl/app_manager/application_watchdog.h>

#include "support/peer_process.h"
#include "support/scoped_runtime_directory.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

using hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationWatchdog;

void BM_PingRoundTrip(benchmark::State& state) {
    hos::platform::testing::ScopedRuntimeDirectory directory;
    auto server =
        hos::platform::testing::PeerProcess::Start({HL_IPC_WATCHDOG_SERVER, "hl.app_manager.BenchManager"});
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
    const std::string name = "AccessArbiter";
    const std::vector<unsigned char> appName(name.begin(), name.end());
    int rc = 0;

    for (auto _ : state) {
        proxy->Ping(appName, rc);
        benchmark::DoNotOptimize(rc);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_PingRoundTrip)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
