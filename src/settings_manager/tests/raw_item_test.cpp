// Tests that settings trees become their pre-order raw items byte for byte, and come back equal.
#include <settings_manager/serialize.h>
#include <uvc/set_item.h>

#include "support/path_of_ids.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace {

using settings_manager::Attributes;
using settings_manager::Setting;
using settings_manager::SettingList;
using settings_manager::SettingMap;
using settings_manager::impl::RawItem;
using Bytes = std::vector<unsigned char>;

using settings_manager::testing::P;

Bytes Block(std::uint64_t index, std::uint64_t aux, Bytes payload = {}) {
    Bytes bytes(16);
    for (int i = 0; i < 8; ++i) {
        bytes[i] = static_cast<unsigned char>(index >> (8 * i));
        bytes[8 + i] = static_cast<unsigned char>(aux >> (8 * i));
    }
    bytes.insert(bytes.end(), payload.begin(), payload.end());
    return bytes;
}

const Bytes kClearedAttrib = {0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};

TEST(RawItem, EveryAlternativeHasItsBlockAndComesBackEqual) {
    const struct {
        Setting setting;
        Bytes block;
    } cases[] = {
        {Setting(), Block(0, 0)},
        {Setting(SettingList{}), Block(1, 0)},
        {Setting(SettingMap{}), Block(2, 0)},
        {Setting(true), Block(3, 1)},
        {Setting(std::int8_t{-1}), Block(4, 0xFF)},
        {Setting(std::int16_t{-2}), Block(5, 0xFFFE)},
        {Setting(std::int32_t{-3}), Block(6, 0xFFFFFFFD)},
        {Setting(std::int64_t{-4}), Block(7, 0xFFFFFFFFFFFFFFFC)},
        {Setting(1.5), Block(8, 0x3FF8000000000000)},
        {Setting(hos::rtl::Timestamp{0x0102030405060708}), Block(9, 0x0102030405060708)},
        {Setting(std::string("")), Block(10, 1, {0})},
        {Setting(std::string("ab")), Block(10, 3, {'a', 'b', 0})},
        {Setting(Bytes{}), Block(11, 0)},
        {Setting(Bytes{0, 0xFF}), Block(11, 2, {0, 0xFF})},
        {Setting(std::uint8_t{200}), Block(12, 200)},
        {Setting(std::uint16_t{65000}), Block(13, 65000)},
        {Setting(std::uint32_t{4000000000u}), Block(14, 4000000000u)},
        {Setting(std::uint64_t{~0ULL}), Block(15, ~0ULL)},
        {Setting(std::uint64_t{7}, Attributes{true}), Block(15, 7)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.setting.index());
        std::vector<RawItem> items;
        ASSERT_EQ(settings_manager::Serialize(P({"x", std::uint64_t{3}}), c.setting, items), uvc::ResultOk);
        ASSERT_EQ(items.size(), 1u);
        EXPECT_EQ(items[0].value, c.block);
        EXPECT_EQ(items[0].path, "x/3/");
        Bytes attrib = kClearedAttrib;
        attrib[8] = c.setting.attributes.flag ? 1 : 0;
        EXPECT_EQ(items[0].attrib, attrib);
        uvc::Path path;
        Setting back(std::string("old"));
        ASSERT_EQ(settings_manager::Deserialize(items, path, back), uvc::ResultOk);
        EXPECT_EQ(path, P({"x", std::uint64_t{3}}));
        EXPECT_EQ(back, c.setting);
    }
}

TEST(RawItem, NestedTreeKeepsOrderAttributesAndShape) {
    Setting tree(SettingMap{}, Attributes{true});
    Setting list = SettingList{Setting(1), Setting(SettingMap{{"deep", Setting(std::string("d"), {true})}}),
                               Setting(Bytes{1})};
    uvc::SetItem(tree, "zeta", list, uvc::SetItemInsert);
    uvc::SetItem(tree, "alpha", Setting(SettingMap{}), uvc::SetItemInsert);
    uvc::SetItem(tree, "mid", Setting(false, Attributes{true}), uvc::SetItemInsert);

    std::vector<RawItem> items;
    ASSERT_EQ(settings_manager::Serialize(uvc::Root, tree, items), uvc::ResultOk);
    std::vector<std::string> paths;
    for (const auto& item : items) {
        paths.push_back(item.path);
    }
    EXPECT_EQ(paths, (std::vector<std::string>{"", "alpha/", "mid/", "zeta/", "zeta/0/", "zeta/1/",
                                               "zeta/1/deep/", "zeta/2/"}));
    uvc::Path path = P({"unchanged"});
    Setting back;
    ASSERT_EQ(settings_manager::Deserialize(items, path, back), uvc::ResultOk);
    EXPECT_EQ(path, uvc::Root);
    EXPECT_EQ(back, tree);
}

TEST(RawItem, ListGapsFillAndAuxIsOnlyAReservation) {
    const std::vector<RawItem> items = {
        RawItem(P({"l"}), Setting(SettingList{})),
        RawItem(P({"l", std::uint64_t{0}}), Setting(1)),
        RawItem(P({"l", std::uint64_t{2}}), Setting(3)),
    };
    std::vector<RawItem> withAux = items;
    withAux[0].value = Block(1, 5);
    uvc::Path path;
    Setting back;
    ASSERT_EQ(settings_manager::Deserialize(withAux, path, back), uvc::ResultOk);
    EXPECT_EQ(back, Setting(SettingList{Setting(1), Setting(), Setting(3)}));
}

TEST(RawItem, AttributeFlagIsBitZeroOfItsByte) {
    for (const auto& [flags, expected] :
         {std::pair{0xFE, false}, std::pair{0xFF, true}, std::pair{0x01, true}}) {
        RawItem item(P({"a"}), Setting(1));
        item.attrib[8] = static_cast<unsigned char>(flags);
        Attributes attributes{!expected};
        item.DeserializeAttrib(attributes);
        EXPECT_EQ(attributes.flag, expected) << flags;
    }
}

TEST(RawItem, WritingFailuresLeaveTheItemsUntouched) {
    std::vector<RawItem> items = {RawItem(P({"keep"}), Setting(1))};
    const auto before = items;
    EXPECT_EQ(settings_manager::Serialize(P({"1a"}), Setting(1), items),
              (uvc::Result{static_cast<int>(0x80000046), "[RawSetting] Path to str fail: state = 6"}));
    Setting deep = SettingMap{{"a_b", Setting(1)}};
    EXPECT_EQ(settings_manager::Serialize(P({"x"}), deep, items),
              (uvc::Result{static_cast<int>(0x80000046), "[RawSetting] Path to str fail: state = 7"}));
    EXPECT_EQ(items, before);
}

}  // namespace
