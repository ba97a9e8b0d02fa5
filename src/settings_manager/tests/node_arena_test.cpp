// Tests that raw items go into a message arena at the documented offsets and limits, and that
// reading refuses every reference outside the used bytes.
#include <settings_manager/node_arena.h>
#include <settings_manager/serialize.h>
#include <uvc/set_item.h>

#include <diagnostics/log_capture_for_testing.h>

#include "support/path_of_ids.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

namespace arena = hos::ipc::arena;
using settings_manager::Setting;
using settings_manager::impl::RawItem;
using Items = std::vector<RawItem>;

struct Memory {
    explicit Memory(std::size_t size) : bytes(size), nk{bytes.data(), bytes.data(), bytes.data() + size} {}
    std::size_t Position() const { return static_cast<std::size_t>(nk.cursor - nk.start); }
    std::vector<unsigned char> bytes;
    nk_arena nk;
};

bool Same(const nk_ptr_t& a, const nk_ptr_t& b) {
    return a.offset == b.offset && a.size == b.size;
}

using settings_manager::testing::P;

TEST(NodeArena, WriteRequestOfTheLocaleExampleHasTheDocumentedLayout) {
    Setting locale = settings_manager::SettingMap{};
    uvc::SetItem(locale, "language", Setting(std::string("en")), uvc::SetItemInsert);
    Items items;
    ASSERT_EQ(settings_manager::Serialize(P({"locale"}), locale, items), uvc::ResultOk);

    Memory memory(70464);
    arena::conv::Status status;
    const std::string path = "locale/";
    const nk_ptr_t pathRef =
        arena::conv::Put(memory.nk, {reinterpret_cast<const unsigned char*>(path.data()), path.size()},
                         arena::kMaxPathBytes, status);
    EXPECT_TRUE(Same(pathRef, {0, 7}));
    auto first = items.cbegin();
    const nk_ptr_t list = arena::impl::Write(memory.nk, first, items.cend());
    EXPECT_TRUE(status.Ok());
    EXPECT_TRUE(first == items.cend());
    EXPECT_TRUE(Same(list, {100, 48}));
    EXPECT_EQ(memory.Position(), 148u);
    hl_settings_manager_Types_NkNode records[2];
    std::memcpy(records, memory.bytes.data() + 100, sizeof records);
    EXPECT_TRUE(Same(records[0].path, {7, 7}) && Same(records[0].value, {14, 16}) &&
                Same(records[0].attrib, {30, 16}));
    EXPECT_TRUE(Same(records[1].path, {46, 16}) && Same(records[1].value, {62, 19}) &&
                Same(records[1].attrib, {81, 16}));

    Items back;
    ASSERT_TRUE(arena::impl::Read(memory.nk, list, back));
    EXPECT_EQ(back, items);
}

TEST(NodeArena, MemberLimitsDecideWhatFits) {
    const struct {
        std::size_t stringBytes;
        std::size_t pathBytes;
        bool fits;
    } cases[] = {{8175, 1, true}, {8176, 1, false}, {1, 511, true}, {1, 512, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.stringBytes << " " << c.pathBytes);
        // A path text of pathBytes + 1 bytes: pathBytes name characters and the delimiter.
        Items items = {
            RawItem(P({std::string(c.pathBytes, 'p').c_str()}), Setting(std::string(c.stringBytes, 's')))};
        Memory memory(arena::kMaxNodeBytes * 2);
        hos::logger::LogCaptureForTesting capture;
        auto first = items.cbegin();
        const nk_ptr_t list = arena::impl::Write(memory.nk, first, items.cend());
        EXPECT_EQ(!arena::IsInvalid(list), c.fits);
        EXPECT_EQ(first == items.cend(), c.fits);
        EXPECT_EQ(capture.Contains("[SM_P] ToNk(SMNode) fail: '"), !c.fits);
        if (!c.fits) {
            EXPECT_EQ(memory.Position(), 0u);
        }
    }
}

TEST(NodeArena, RootPathTakesOneByteAndAnEmptyListTakesARecord) {
    Items items;
    ASSERT_EQ(settings_manager::Serialize(uvc::Root, Setting(1), items), uvc::ResultOk);
    Memory memory(256);
    arena::conv::Status status;
    const auto node = arena::conv::ToNk(memory.nk, items[0], status);
    EXPECT_TRUE(Same(node.path, {0, 0}));
    EXPECT_TRUE(Same(node.value, {1, 16}));

    Memory empty(64);
    empty.nk.cursor += 5;
    auto first = items.cend();
    EXPECT_TRUE(Same(arena::impl::Write(empty.nk, first, items.cend()), {8, 0}));
    EXPECT_EQ(empty.Position(), 32u);
}

TEST(NodeArena, WriteStopsAtTheFirstItemThatDoesNotFitAndNextChunkContinues) {
    Items items;
    for (int i = 0; i < 5; ++i) {
        items.push_back(RawItem(P({"k", std::uint64_t(i)}), Setting(std::string(100, 'v'))));
    }
    // Each item takes 4 + 117 + 16 bytes and a 24-byte record: two fit 330 bytes, three don't.
    Memory memory(330);
    auto first = items.cbegin();
    const nk_ptr_t list = arena::impl::Write(memory.nk, first, items.cend());
    ASSERT_FALSE(arena::IsInvalid(list));
    EXPECT_EQ(list.size, 48u);
    EXPECT_EQ(first - items.cbegin(), 2);
    Items back;
    ASSERT_TRUE(arena::impl::Read(memory.nk, list, back));
    EXPECT_EQ(back, Items(items.begin(), items.begin() + 2));

    Memory tiny(100);
    auto again = items.cbegin();
    EXPECT_TRUE(arena::IsInvalid(arena::impl::Write(tiny.nk, again, items.cend())));
    EXPECT_TRUE(again == items.cbegin());
}

TEST(NodeArena, ReadRefusesListsAndMembersOutsideTheUsedBytes) {
    Items items = {RawItem(P({"a"}), Setting(1))};
    Memory memory(256);
    auto first = items.cbegin();
    const nk_ptr_t list = arena::impl::Write(memory.nk, first, items.cend());  // node at 36, used 60
    ASSERT_TRUE(Same(list, {36, 24}));
    const struct {
        nk_ptr_t list;
        bool ok;
    } lists[] = {{{36, 24}, true},  {{36, 0}, true},   {{60, 0}, false},  {{37, 24}, false},
                 {{36, 25}, false}, {{36, 48}, false}, {{40, 24}, false}, {{0xFFFFFFFF, 0xFFFFFFFF}, false}};
    for (const auto& c : lists) {
        Items out;
        EXPECT_EQ(arena::impl::Read(memory.nk, c.list, out), c.ok) << c.list.offset << "/" << c.list.size;
    }
    // A member reference behind the used bytes spoils the whole list, and items stay as they were.
    nk_ptr_t bad{50, 20};
    std::memcpy(memory.bytes.data() + 36 + 8, &bad, sizeof bad);
    Items kept = items;
    EXPECT_FALSE(arena::impl::Read(memory.nk, list, kept));
    EXPECT_EQ(kept, items);
}

}  // namespace
