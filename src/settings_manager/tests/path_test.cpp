// Tests that paths convert to and from their one text form with the documented states, that log
// rendering never throws, and that the tree operations SetItem and ForEach keep their contracts.
#include <settings_manager/meta/path_id_rules.h>
#include <settings_manager/path_to_str.h>
#include <settings_manager/setting.h>
#include <uvc/for_each.h>
#include <uvc/path_text.h>
#include <uvc/process_exception.h>
#include <uvc/set_item.h>

#include "support/path_of_ids.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using settings_manager::Setting;
using settings_manager::meta::GetIdSpecification;

using settings_manager::testing::P;

TEST(PathText, FromStringAcceptsTheTextFormAndRefusesEveryBadForm) {
    const struct {
        std::string text;
        uvc::IdState state;
        uvc::Path path;
    } cases[] = {
        {"", uvc::IdStateOk, uvc::Root},
        {"/", uvc::IdStateEmptyId, {}},
        {"a//b", uvc::IdStateEmptyId, {}},
        {"/a", uvc::IdStateEmptyId, {}},
        {"a/b/", uvc::IdStateOk, P({"a", "b"})},
        {"a/b", uvc::IdStateOk, P({"a", "b"})},
        {"0/", uvc::IdStateOk, P({std::uint64_t{0}})},
        {"007/x", uvc::IdStateOk, P({std::uint64_t{7}, "x"})},
        {"65535", uvc::IdStateOk, P({std::uint64_t{65535}})},
        {"65536", uvc::IdStateIndexTooBig, {}},
        {std::string(21, '9'), uvc::IdStateBadIndex, {}},
        {"12x", uvc::IdStateBadChar, {}},
        {"a_b", uvc::IdStateBadChar, {}},
        {"a b/", uvc::IdStateBadChar, {}},
        {"ok/a%b/", uvc::IdStateBadChar, {}},  // a failure never returns the ids read so far
        {"a\\b", uvc::IdStateBadChar, {}},
        {"a.b", uvc::IdStateOk, P({"a.b"})},
        {"list/3/x/", uvc::IdStateOk, P({"list", std::uint64_t{3}, "x"})},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        const auto [path, state] = uvc::FromString(c.text, GetIdSpecification());
        EXPECT_EQ(state, c.state);
        EXPECT_EQ(path, c.path);
    }
}

TEST(PathText, ToStringWritesEveryIdWithItsDelimiterOrRefusesWithTheState) {
    const struct {
        uvc::Path path;
        uvc::IdState state;
        std::string text;
    } cases[] = {
        {uvc::Root, uvc::IdStateOk, ""},
        {P({"locale", "language"}), uvc::IdStateOk, "locale/language/"},
        {P({"list", std::uint64_t{3}, "x"}), uvc::IdStateOk, "list/3/x/"},
        {P({"1a"}), uvc::IdStateDigitName, ""},
        {P({"ok", ""}), uvc::IdStateEmptyName, ""},
        {P({"a_b"}), uvc::IdStateBadChar, ""},
        {P({std::uint64_t{65536}}), uvc::IdStateIndexTooBig, ""},
    };
    for (const auto& c : cases) {
        const auto [text, state] = uvc::ToString(c.path, GetIdSpecification());
        EXPECT_EQ(state, c.state) << c.text;
        EXPECT_EQ(text, c.text);
    }
    const uvc::IdSpec emptySpec{"", 0};
    EXPECT_EQ(uvc::ToString(uvc::Root, emptySpec).second, uvc::IdStateEmptySpec);
    EXPECT_EQ(uvc::FromString("", emptySpec).second, uvc::IdStateEmptySpec);
}

TEST(PathText, TwentyDigitIndexIsReadableButNotWritableWithoutMaxIndex) {
    const uvc::IdSpec unlimited{"/", 0};
    const auto [text, state] = uvc::ToString(P({std::uint64_t{10000000000000000000ULL}}), unlimited);
    EXPECT_EQ(state, uvc::IdStateBadIndex);
    EXPECT_EQ(text, "");
    const auto [path, readState] = uvc::FromString("10000000000000000000/", unlimited);
    EXPECT_EQ(readState, uvc::IdStateOk);
    EXPECT_EQ(path, P({std::uint64_t{10000000000000000000ULL}}));
    EXPECT_EQ(uvc::ToString(P({std::uint64_t{9999999999999999999ULL}}), unlimited).first,
              "9999999999999999999/");
}

TEST(PathToStr, PrintsTheTextOrTheFailureMarker) {
    EXPECT_EQ(settings_manager::PathToStr(P({"locale", "language"})), "locale/language/");
    EXPECT_EQ(settings_manager::PathToStr(P({"1a"})), "<path to str fail: state = 6>");
    EXPECT_EQ(fmt::format("[{}]", P({"a", std::uint64_t{2}})), "[a/2/]");
}

TEST(UvcProcessException, MapsEachKindOfExceptionToItsCodeAndText) {
    auto run = [](auto thrower) {
        try {
            thrower();
        } catch (...) {
            return uvc::ProcessException();
        }
        return uvc::Result{};
    };
    const uvc::Result expected[] = {
        {-5, "pair"},
        {static_cast<int>(0x8000004D), "uvc: Item with given id already exists"},
        {static_cast<int>(0x8000004A), "uvc: std::bad_variant_access"},
        {static_cast<int>(0x8000004B), "uvc: std::exception: boom"},
        {static_cast<int>(0x80000072), "uvc: non-std exception"},
    };
    EXPECT_EQ(run([] { throw uvc::Result{-5, "pair"}; }), expected[0]);
    EXPECT_EQ(run([] { throw uvc::ErrorItemExists; }), expected[1]);
    EXPECT_EQ(run([] { (void)std::get<1>(uvc::Id{std::uint64_t{1}}); }), expected[2]);
    EXPECT_EQ(run([] { throw std::runtime_error("boom"); }), expected[3]);
    EXPECT_EQ(run([] { throw 42; }), expected[4]);
}

TEST(SetItem, HonoursEachOptionAndRefusesWithTheMatchingError) {
    auto code = [](auto call) {
        try {
            call();
        } catch (const uvc::Error& e) {
            return static_cast<unsigned>(e.Code());
        }
        return 0u;
    };
    Setting list = settings_manager::SettingList{};
    Setting& fifth = uvc::SetItem(list, 5, Setting(std::string("v")), uvc::SetItemAppend);
    EXPECT_EQ(std::get<std::string>(fifth), "v");
    const auto& elements = std::get<settings_manager::SettingList>(list);
    ASSERT_EQ(elements.size(), 6u);
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(elements[i].index(), uvc::IndexNone);
    }
    EXPECT_EQ(code([&] { uvc::SetItem(list, 1, Setting(true), uvc::SetItemAppend); }), 0x8000004Du);
    EXPECT_EQ(code([&] { uvc::SetItem(list, 7, Setting(true), uvc::SetItemReplace); }), 0x8000004Cu);
    Setting replaced(true, settings_manager::Attributes{true});
    uvc::SetItem(list, 1, replaced, uvc::SetItemReplace);
    EXPECT_EQ(elements[1], replaced);  // value and attributes alike
    EXPECT_EQ(code([&] { uvc::SetItem(list, "k", Setting(true), 7); }), 0x8000004Au);

    Setting map = settings_manager::SettingMap{};
    EXPECT_EQ(code([&] { uvc::SetItem(map, "k", Setting(1), uvc::SetItemReplace); }), 0x8000004Cu);
    uvc::SetItem(map, "k", Setting(1), uvc::SetItemInsert);
    EXPECT_EQ(code([&] { uvc::SetItem(map, "k", Setting(2), uvc::SetItemInsert); }), 0x8000004Du);
    EXPECT_EQ(std::get<std::int32_t>(uvc::SetItem(map, "k", Setting(2), uvc::SetItemReplace)), 2);
    EXPECT_EQ(code([&] { uvc::SetItem(map, 0, Setting(1), 7); }), 0x8000004Au);
}

TEST(ForEach, WalksInPreOrderWithPathsAndEndsOnStopOrInvalid) {
    Setting tree = settings_manager::SettingMap{};
    uvc::SetItem(tree, "b", Setting(settings_manager::SettingList{Setting(1), Setting(2)}), 7);
    uvc::SetItem(tree, "a", Setting(std::string("x")), 7);
    std::vector<std::string> seen;
    uvc::Path path = P({"root"});
    const auto result = uvc::ForEach(
        tree,
        [&](const uvc::Path& at, const Setting& node) {
            seen.push_back(settings_manager::PathToStr(at) + std::to_string(node.index()));
            return node.index() == uvc::IndexI32 ? uvc::for_each::Skip : uvc::for_each::Ok;
        },
        path);
    EXPECT_EQ(result, uvc::for_each::Skip);
    EXPECT_EQ(seen,
              (std::vector<std::string>{"root/2", "root/a/10", "root/b/1", "root/b/0/6", "root/b/1/6"}));
    EXPECT_EQ(path, P({"root"}));

    int calls = 0;
    EXPECT_EQ(uvc::ForEach(
                  tree,
                  [&](const uvc::Path&, const Setting& node) {
                      ++calls;
                      return node.index() == uvc::IndexString ? uvc::for_each::Stop : uvc::for_each::Ok;
                  },
                  path),
              uvc::for_each::Stop);
    EXPECT_EQ(calls, 2);
}

}  // namespace
