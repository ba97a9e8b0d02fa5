// Fuzz harness: the JSON defaults file of the non-persistent service. Whatever the text, parsing it
// gives a tree or a std::runtime_error naming the fault (nothing else escapes), and a tree is a map
// whose flat form rebuilds to the same tree, as the service loads it. Seeds:
// tests/fuzz/corpus/json_defaults.
#include "json_defaults.h"
#include "tree_shape.h"

#include <settings_manager/serialize.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

[[noreturn]] void Fail(const char* what) {
    std::fprintf(stderr, "fuzz: %s\n", what);
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    settings_manager::Setting tree;
    try {
        tree = hl_settingsd::ParseJsonDefaults(text, "fuzz");
    } catch (const std::runtime_error&) {
        return 0;
    }
    if (!std::holds_alternative<settings_manager::SettingMap>(tree)) {
        Fail("the defaults are not a map");
    }
    std::vector<settings_manager::impl::RawItem> items;
    if (settings_manager::Serialize(uvc::Root, tree, items).first < 0) {
        Fail("the defaults can't be serialised");
    }
    if (hl_settingsd::FirstMisnested(items)) {
        Fail("the defaults' flat form does not nest");
    }
    uvc::Path path;
    settings_manager::Setting back;
    std::vector<settings_manager::impl::RawItem> again;
    if (settings_manager::Deserialize(items, path, back).first < 0 || !path.Empty() ||
        settings_manager::Serialize(path, back, again).first < 0 || !(again == items)) {
        Fail("the defaults don't rebuild to the same tree");
    }
    return 0;
}
