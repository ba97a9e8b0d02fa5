// A settings client in a process of its own that subscribes to one path of a service and prints each
// update as "PATH UPD" (after "ready"), until it is killed.
//
//   hl_settingsd_test_subscriber SERVICE PATH_TEXT
#include <settings_manager/i_settings_update_observer.h>
#include <settings_manager/ipc/create_settings_manager.h>
#include <settings_manager/meta/path_id_rules.h>
#include <settings_manager/path_to_str.h>
#include <uvc/path_text.h>

#include <unistd.h>

#include <cstdio>
#include <memory>

namespace {

class PrintingObserver final : public settings_manager::ISettingsUpdateObserver {
public:
    void OnUpdate(const uvc::Path& path, std::uint8_t upd) override {
        std::printf("%s %u\n", settings_manager::PathToStr(path).c_str(), static_cast<unsigned>(upd));
        std::fflush(stdout);
    }
};

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s SERVICE PATH_TEXT\n", argv[0]);
        return 2;
    }
    std::shared_ptr<settings_manager::ISettingsManager> manager;
    if (settings_manager::ipc::CreateSettingsManager(
            settings_manager::ipc::SettingsManagerCmConfig{argv[1], 10000}, manager) != 0) {
        return 1;
    }
    std::shared_ptr<settings_manager::ISettingsUpdateSubscriber> subscriber;
    manager->GetSettingsUpdateSubscriber(subscriber);
    settings_manager::SubscriptionId sid;
    const auto path = uvc::FromString(argv[2], settings_manager::meta::GetIdSpecification()).first;
    if (subscriber->Subscribe(path, std::make_shared<PrintingObserver>(), sid) != 0) {
        return 1;
    }
    std::puts("ready");
    std::fflush(stdout);
    for (;;) {
        ::pause();
    }
}
