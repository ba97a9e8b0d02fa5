// A client that opens a write exchange and never finishes it: sends Write with the first 8 of 16
// nodes to the service, prints "ready" and waits to be killed.
//
//   hl_settingsd_half_writer SERVICE PATH_TEXT
#include "support/raw_ism.h"

#include <settings_manager/setting.h>

#include <unistd.h>

#include <cstdio>
#include <string>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s SERVICE PATH_TEXT\n", argv[0]);
        return 2;
    }
    settings_manager::SettingMap map;
    for (int i = 0; i < 15; ++i) {
        map.emplace("half" + std::to_string(i), settings_manager::Setting(std::string("never")));
    }
    auto items = hl_settingsd::testing::Items(argv[2], settings_manager::Setting(map));
    items.resize(8);
    hl_settingsd::testing::RawIsm ism(argv[1]);
    const auto answer = ism.Write(argv[2], 6, 16, items);
    if (answer.rc != 0) {
        std::fprintf(stderr, "Write refused: %#x\n", static_cast<unsigned>(answer.rc));
        return 1;
    }
    std::puts("ready");
    std::fflush(stdout);
    for (;;) {
        ::pause();
    }
}
