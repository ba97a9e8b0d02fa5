// Fuzz harness: a node list as a settings service's response delivers it. The input is the list's
// nk_ptr_t (offset, size; 8 bytes, little-endian) followed by the received arena bytes. The list is
// read and the tree rebuilt; whatever the bytes, both must return a verdict, and a tree that was
// rebuilt must serialise again to items that rebuild to an equal tree. Seeds:
// tests/fuzz/corpus/node_list.
#include <settings_manager/node_arena.h>
#include <settings_manager/serialize.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

[[noreturn]] void Fail(const char* what) {
    std::fprintf(stderr, "fuzz: %s\n", what);
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < sizeof(nk_ptr_t)) {
        return 0;
    }
    nk_ptr_t list;
    std::memcpy(&list, data, sizeof list);
    std::vector<unsigned char> bytes(data + sizeof list, data + size);
    nk_arena arena{bytes.data(), bytes.data() + bytes.size(), bytes.data() + bytes.size()};

    std::vector<settings_manager::impl::RawItem> items;
    if (!hos::ipc::arena::impl::Read(arena, list, items)) {
        return 0;
    }
    uvc::Path path;
    settings_manager::Setting setting;
    if (settings_manager::Deserialize(items, path, setting).first < 0) {
        return 0;
    }
    std::vector<settings_manager::impl::RawItem> again;
    if (settings_manager::Serialize(path, setting, again).first < 0) {
        Fail("a rebuilt tree doesn't serialise");
    }
    uvc::Path path2;
    settings_manager::Setting setting2;
    if (settings_manager::Deserialize(again, path2, setting2).first < 0 || !(path2 == path)) {
        Fail("a serialised tree doesn't rebuild");
    }
    // NaN compares unequal to itself, so the values are compared as items.
    std::vector<settings_manager::impl::RawItem> third;
    if (settings_manager::Serialize(path2, setting2, third).first < 0 || !(third == again)) {
        Fail("a tree changed on its second round trip");
    }
    return 0;
}
