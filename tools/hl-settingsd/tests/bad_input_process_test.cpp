// Requests hl-settingsd must refuse, sent over the real IPC to the real process: each gets its result
// code and a log line, the process goes on serving, and the store is as it was.
#include <settings_manager/creators.h>
#include <settings_manager/meta/path_id_rules.h>
#include <settings_manager/serialize.h>
#include <settings_manager/setting.h>
#include <uvc/path_text.h>

#include "support/raw_ism.h"
#include "support/scoped_runtime_directory.h"
#include "support/settingsd_process.h"

#include <platform/nk_message.h>

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <string>
#include <thread>

namespace {

using hl_settingsd::testing::Items;
using hl_settingsd::testing::RawIsm;
using hl_settingsd::testing::RawItems;
using settings_manager::Setting;
using settings_manager::SettingMap;

constexpr const char* kService = "hl.settings_manager.MSmgr";
constexpr std::int32_t kInvalidArgument = static_cast<std::int32_t>(0x80000046u);
constexpr std::int32_t kNotFound = static_cast<std::int32_t>(0x8000004Cu);
constexpr std::int32_t kNonRooted = static_cast<std::int32_t>(0x80000064u);
constexpr std::int32_t kLevelJump = static_cast<std::int32_t>(0x80000065u);
constexpr std::int32_t kLessThan = static_cast<std::int32_t>(0x80000064u);
constexpr std::int32_t kMoreThan = static_cast<std::int32_t>(0x80000065u);
// What a frame's answer carried: the stub's failure word, or the bare header of an unknown method.
constexpr std::int32_t kServerFailure = static_cast<std::int32_t>(NK_SERVER_FAILURE_WORD);
constexpr std::int32_t kBareHeader = static_cast<std::int32_t>(NK_MESSAGE_HEADER_SIZE);

Setting Map16() {
    SettingMap map;
    for (int i = 0; i < 15; ++i) {
        map.emplace("k" + std::to_string(10 + i), Setting(std::int32_t{i}));
    }
    return map;
}

class BadInput : public testing::Test {
protected:
    void SetUp() override {
        m_daemon =
            hl_settingsd::testing::SettingsdProcess::Start({kService}, m_directory.Path() + "/settingsd.log");
        ASSERT_NE(m_daemon, nullptr);
        m_ism = std::make_unique<RawIsm>(kService);
    }

    RawItems Tree() {
        RawItems items;
        std::uint64_t ncount = 0;
        const auto opened = m_ism->Read("", 0x16, items, ncount);
        EXPECT_EQ(opened.rc, 0);
        for (bool last = items.size() == ncount; !last;) {
            EXPECT_EQ(m_ism->ReadNext(opened.id, &items, &last), 0);
        }
        EXPECT_EQ(items.size(), ncount);
        return items;
    }
    // The first 8 of the 16 items of "t/", as an open exchange of 16.
    std::uint64_t OpenHalf() {
        const auto items = Items("t/", Map16());
        const auto opened = m_ism->Write("t/", 6, 16, {items.begin(), items.begin() + 8});
        EXPECT_EQ(opened.rc, 0);
        return opened.id;
    }
    RawItems SecondHalf() {
        const auto items = Items("t/", Map16());
        return {items.begin() + 8, items.end()};
    }

    hos::platform::testing::ScopedRuntimeDirectory m_directory;
    std::unique_ptr<hl_settingsd::testing::SettingsdProcess> m_daemon;
    std::unique_ptr<RawIsm> m_ism;
};

TEST_F(BadInput, EachRefusedRequestGetsItsCodeAndALogLineAndChangesNothing) {
    const std::string over512 = std::string(512, 'p') + "/";
    RawItems nonRooted = Items("x/", Setting(SettingMap{{"a", Setting(true)}}));
    nonRooted[1].path = "y/a/";
    RawItems levelJump = Items("x/", Setting(SettingMap{{"a", Setting(true)}}));
    levelJump[1].path = "x/a/b/";
    // w/, w/a/, w/b/c/: the last one does not lie below w/a/, under which a rebuild would put it.
    RawItems misnested = Items("w/", Setting(SettingMap{{"a", Setting(SettingMap{{"c", Setting(true)}})}}));
    misnested[2].path = "w/b/c/";
    RawItems badValue = Items("x/", Setting(true));
    badValue[0].value[0] = 16;
    const struct {
        const char* what;
        std::function<std::int32_t()> send;
        std::int32_t rc;
        const char* log;
    } cases[] = {
        {"a path of 513 bytes", [&] { return m_ism->Write(over512, 6, 1, Items("x/", Setting(true))).rc; },
         kInvalidArgument, "a path text of 513 bytes, over 512, refused"},
        {"a path with an underscore",
         [&] { return m_ism->Write("a_b/", 6, 1, Items("x/", Setting(true))).rc; }, kInvalidArgument,
         "is not a setting path"},
        {"a read of garbage bytes",
         [&] {
             RawItems items;
             std::uint64_t n = 0;
             return m_ism->Read(std::string("\xff\x01//", 4), 0x16, items, n).rc;
         },
         kInvalidArgument, "is not a setting path"},
        {"a node outside the root", [&] { return m_ism->Write("x/", 6, 2, nonRooted).rc; }, kNonRooted,
         "[RawSetting] non-rooted path"},
        {"a level jump", [&] { return m_ism->Write("x/", 6, 2, levelJump).rc; }, kLevelJump,
         "[RawSetting] path level jump"},
        {"a node that does not nest", [&] { return m_ism->Write("w/", 6, 3, misnested).rc; }, kInvalidArgument,
         "the node 'w/b/c/' does not lie below the node 'w/a/' before it"},
        {"a value index of 16", [&] { return m_ism->Write("x/", 6, 1, badValue).rc; },
         static_cast<std::int32_t>(0x8000005Eu), "[RawSetting] Invalid value index: 16"},
        {"nodes of another path", [&] { return m_ism->Write("y/", 6, 1, Items("x/", Setting(true))).rc; },
         kInvalidArgument, "begin at 'x/', not at the written path"},
        {"mode 0", [&] { return m_ism->Write("x/", 0, 1, Items("x/", Setting(true))).rc; }, kInvalidArgument,
         "mode 0x0 refused"},
        {"mode 4 alone", [&] { return m_ism->Write("x/", 4, 1, Items("x/", Setting(true))).rc; },
         kInvalidArgument, "mode 0x4 refused"},
        {"mode 8", [&] { return m_ism->Write("x/", 8, 1, Items("x/", Setting(true))).rc; }, kInvalidArgument,
         "mode 0x8 refused"},
        {"no nodes announced", [&] { return m_ism->Write("x/", 6, 0, Items("x/", Setting(true))).rc; },
         kInvalidArgument, "0 nodes announced"},
        {"more nodes than announced", [&] { return m_ism->Write("t/", 6, 3, Items("t/", Map16())).rc; },
         kMoreThan, "nodes sent where 3 were"},
        {"a WriteNext of an id never opened", [&] { return m_ism->WriteNext(0x4242, SecondHalf(), true); },
         kNotFound, "WriteNext of #4242, which is no open write exchange"},
        {"a WriteNext after Cancel",
         [&] {
             const auto id = OpenHalf();
             EXPECT_EQ(m_ism->Cancel(id), 0);
             return m_ism->WriteNext(id, SecondHalf(), true);
         },
         kNotFound, "which is no open write exchange"},
        {"a Cancel of an id never opened", [&] { return m_ism->Cancel(0x4343); }, kNotFound,
         "Cancel of #4343, which is no open exchange"},
        {"a ReadNext of an id never opened", [&] { return m_ism->ReadNext(0x4444); }, kNotFound,
         "ReadNext of #4444, which is no open read exchange"},
        {"all nodes without the last flag", [&] { return m_ism->WriteNext(OpenHalf(), SecondHalf(), false); },
         kInvalidArgument, "all nodes came without the last flag"},
        {"the last flag before all nodes",
         [&] {
             const auto items = Items("t/", Map16());
             const auto opened = m_ism->Write("t/", 6, 24, {items.begin(), items.begin() + 8});
             return m_ism->WriteNext(opened.id, SecondHalf(), true);
         },
         kLessThan, "the last chunk came before all nodes"},
        {"a read mask with an unknown bit",
         [&] {
             RawItems items;
             std::uint64_t n = 0;
             return m_ism->Read("locale/", 0x17, items, n).rc;
         },
         kInvalidArgument, "(mask 0x17): Invalid argument"},
        {"a Write frame too short for its fields",
         [&] { return static_cast<std::int32_t>(RawIsm::SendFrame(kService, 0, 1, 32, {})); }, kServerFailure,
         "malformed request of Write"},
        {"an unknown method",
         [&] { return static_cast<std::int32_t>(RawIsm::SendFrame(kService, 0, 42, 24, {})); }, kBareHeader,
         nullptr},
        {"an unknown interface",
         [&] { return static_cast<std::int32_t>(RawIsm::SendFrame(kService, 7, 0, 40, {})); }, kServerFailure,
         "request for the unknown interface"},
    };
    const RawItems before = Tree();
    ASSERT_FALSE(before.empty());
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(c.send(), c.rc);
        if (c.log != nullptr) {
            EXPECT_TRUE(m_daemon->LogContains(c.log));
        }
        EXPECT_TRUE(Tree() == before) << "the store changed";
    }
    // Still serving, and a whole exchange still goes through.
    const auto id = OpenHalf();
    EXPECT_EQ(m_ism->WriteNext(id, SecondHalf(), true), 0);
    EXPECT_FALSE(Tree() == before);
}

TEST_F(BadInput, ReadMasksChooseWhatComesBack) {
    Setting tree = SettingMap{{"n", Setting(std::int32_t{5})}, {"s", Setting(std::string("x"))}};
    tree.attributes.flag = true;
    std::get<SettingMap>(tree).at("n").attributes.flag = true;
    ASSERT_EQ(m_ism->Write("m/", 6, 3, Items("m/", tree)).rc, 0);

    const auto read = [&](std::uint8_t mask) {
        RawItems items;
        std::uint64_t ncount = 0;
        EXPECT_EQ(m_ism->Read("m/", mask, items, ncount).rc, 0);
        EXPECT_EQ(ncount, items.size());
        uvc::Path path;
        Setting setting;
        EXPECT_EQ(settings_manager::Deserialize(items, path, setting).first, 0);
        return setting;
    };
    EXPECT_TRUE(read(0x16) == tree);
    Setting noFlags = SettingMap{{"n", Setting(std::int32_t{5})}, {"s", Setting(std::string("x"))}};
    EXPECT_TRUE(read(0x12) == noFlags);
    Setting noValues = SettingMap{{"n", Setting{}}, {"s", Setting{}}};
    noValues.attributes.flag = true;
    std::get<SettingMap>(noValues).at("n").attributes.flag = true;
    EXPECT_TRUE(read(0x14) == noValues);
    Setting alone = SettingMap{};
    alone.attributes.flag = true;
    EXPECT_TRUE(read(0x06) == alone);
}

// An exchange belongs to the connection that opened it: another connection can't continue or cancel
// it, a read stays the tree it began on while a write changes that tree, and a connection's open
// exchanges close with it.
TEST_F(BadInput, AnExchangeBelongsToItsConnectionAndReadsTheTreeItBeganOn) {
    settings_manager::SettingList list;
    for (int i = 0; i < 20; ++i) {
        list.push_back(Setting(std::int32_t{i}));
    }
    const Setting before = Setting(list);
    ASSERT_EQ(m_ism->Write("l/", 6, 21, Items("l/", before)).rc, 0);
    RawItems items;
    std::uint64_t ncount = 0;
    const auto opened = m_ism->Read("l/", 0x16, items, ncount);
    ASSERT_EQ(opened.rc, 0);
    ASSERT_EQ(ncount, 21u);
    ASSERT_LT(items.size(), ncount);

    auto other = std::make_unique<RawIsm>(kService);
    EXPECT_EQ(other->ReadNext(opened.id), kNotFound);
    EXPECT_EQ(other->Cancel(opened.id), kNotFound);
    EXPECT_TRUE(m_daemon->LogContains("which is no open read exchange of connection"));
    EXPECT_EQ(other->Write("l/", 6, 1, Items("l/", Setting(settings_manager::SettingList{}))).rc, 0);
    for (bool last = false; !last;) {
        ASSERT_EQ(m_ism->ReadNext(opened.id, &items, &last), 0);
    }
    uvc::Path path;
    Setting read;
    ASSERT_EQ(settings_manager::Deserialize(items, path, read).first, 0);
    EXPECT_TRUE(read == before);

    const auto half = Items("t/", Map16());
    ASSERT_EQ(other->Write("t/", 6, 16, {half.begin(), half.begin() + 8}).rc, 0);
    other.reset();
    for (int i = 0; i < 40 && !m_daemon->LogContains("its 1 open exchanges are closed"); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    EXPECT_TRUE(m_daemon->LogContains("its 1 open exchanges are closed"));
}

}  // namespace
