// Fuzz harness: a node list as hl-settingsd takes it from a Write request. The input is the list's
// nk_ptr_t (offset, size; 8 bytes, little-endian) followed by the request's arena bytes. The service's
// path is followed: the list is read, the tree rebuilt, refused when its paths don't nest, written
// into a tree of the service's rules and applied. Whatever the bytes, each step returns a verdict;
// and a tree that took the write must read back, paged from the live tree (ReadCursor), exactly as
// the whole tree serialises. Seeds: tests/fuzz/corpus/write_nodes.
#include "read_cursor.h"
#include "settings_tree.h"
#include "tree_shape.h"

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
    if (size < sizeof(nk_ptr_t) + 1) {
        return 0;
    }
    const std::uint8_t mode = data[0];
    nk_ptr_t list;
    std::memcpy(&list, data + 1, sizeof list);
    std::vector<unsigned char> bytes(data + 1 + sizeof list, data + size);
    nk_arena arena{bytes.data(), bytes.data() + bytes.size(), bytes.data() + bytes.size()};

    std::vector<settings_manager::impl::RawItem> items;
    if (!hos::ipc::arena::impl::Read(arena, list, items)) {
        return 0;
    }
    uvc::Path path;
    settings_manager::Setting setting;
    if (settings_manager::Deserialize(items, path, setting).first < 0 || hl_settingsd::FirstMisnested(items)) {
        return 0;
    }
    hl_settingsd::SettingsTree tree(settings_manager::SettingMap{});
    hl_settingsd::TreeChange change;
    if (tree.PlanWrite(path, mode, std::move(setting), change) < 0) {
        return 0;
    }
    tree.Apply(std::move(change));
    // A list index grows a list to up to 65536 elements; reading such a tree back five times makes
    // an input take a second, so only smaller trees are read back (the writes are fuzzed all the same).
    constexpr std::size_t kReadBackNodes = 4096;
    if (hl_settingsd::ReadCursor(uvc::Root, tree.Root(), 0x16).Count() > kReadBackNodes) {
        return 0;
    }

    for (const std::uint8_t mask : {0x16, 0x12, 0x14, 0x10, 0x06}) {
        settings_manager::Setting view;
        if (tree.Read(uvc::Root, mask, view) < 0) {
            Fail("the root can't be read");
        }
        std::vector<settings_manager::impl::RawItem> whole;
        if (settings_manager::Serialize(uvc::Root, view, whole).first < 0) {
            continue;  // a value the codec refuses to write (the service answers with its code)
        }
        hl_settingsd::ReadCursor cursor(uvc::Root, tree.Root(), mask);
        if (cursor.Count() != whole.size()) {
            Fail("the cursor counts another number of nodes than the tree serialises to");
        }
        for (const auto& item : whole) {
            if (!(cursor.Next() == item)) {
                Fail("the cursor makes another item than the tree serialises to");
            }
        }
        if (!cursor.Done()) {
            Fail("the cursor is not done after its count");
        }
    }
    return 0;
}
